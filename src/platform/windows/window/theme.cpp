#include "platform/windows/window/theme.h"

#include "platform/windows/com/system_function.h"

namespace vordane::window::win32 {
namespace {

bool highContrast() {
  HIGHCONTRASTW state{};
  state.cbSize = sizeof state;
  return SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof state, &state, 0) &&
         (state.dwFlags & HCF_HIGHCONTRASTON) != 0;
}

// The accents are chosen for dark text on a near-white ground.
bool lightGround() {
  const COLORREF ground = GetSysColor(COLOR_WINDOW);
  const COLORREF ink = GetSysColor(COLOR_WINDOWTEXT);
  return GetRValue(ground) > 220 && GetGValue(ground) > 220 && GetBValue(ground) > 220 &&
         GetRValue(ink) + GetGValue(ink) + GetBValue(ink) < 200;
}

Palette systemPalette() {
  Palette palette{};
  palette.systemOnly = true;
  palette.panel = GetSysColor(COLOR_BTNFACE);
  palette.panelText = GetSysColor(COLOR_BTNTEXT);
  palette.surface = palette.alternate = GetSysColor(COLOR_WINDOW);
  palette.text = palette.quiet = palette.line = GetSysColor(COLOR_WINDOWTEXT);
  palette.selected = palette.resting = palette.accent = GetSysColor(COLOR_HIGHLIGHT);
  palette.selectedText = palette.restingText = GetSysColor(COLOR_HIGHLIGHTTEXT);
  palette.major = palette.minor = palette.text;
  palette.mark = palette.selected;
  palette.markText = palette.selectedText;
  palette.lampLit = palette.selected;
  palette.lampLitText = palette.selectedText;
  palette.lampClear = palette.surface;
  palette.lampClearText = palette.lampFrame = palette.text;
  palette.hint = palette.failure = palette.waiting = palette.surface;
  palette.hintText = palette.failureText = palette.waitingText = palette.text;
  return palette;
}

}  // namespace

Palette currentPalette() {
  Palette palette = systemPalette();
  if (highContrast() || !lightGround()) return palette;
  palette.systemOnly = false;
  palette.panel = RGB(243, 243, 243);
  palette.panelText = RGB(27, 27, 27);
  palette.surface = RGB(255, 255, 255);
  palette.alternate = RGB(250, 251, 253);
  palette.text = RGB(27, 27, 27);
  palette.quiet = RGB(84, 84, 84);
  palette.line = RGB(229, 229, 229);
  palette.selected = RGB(204, 228, 247);
  palette.resting = RGB(225, 229, 233);
  palette.selectedText = palette.restingText = RGB(0, 0, 0);
  palette.accent = RGB(0, 95, 184);
  palette.major = RGB(196, 0, 0);
  palette.minor = RGB(140, 88, 0);
  palette.mark = RGB(255, 226, 150);
  palette.markText = RGB(0, 0, 0);
  palette.lampLit = RGB(255, 0, 0);
  palette.lampClear = RGB(255, 255, 255);
  palette.lampLitText = palette.lampClearText = RGB(0, 0, 0);
  palette.lampFrame = RGB(122, 122, 122);
  palette.hint = RGB(238, 245, 252);
  palette.hintText = RGB(20, 50, 90);
  palette.waiting = RGB(255, 247, 224);
  palette.waitingText = RGB(86, 62, 0);
  palette.failure = RGB(253, 235, 233);
  palette.failureText = RGB(128, 12, 12);
  return palette;
}

void drawAsExplorer(HWND list) {
  using Set = HRESULT(WINAPI*)(HWND, LPCWSTR, LPCWSTR);
  static const auto set = com::systemFunction<Set>(L"uxtheme.dll", "SetWindowTheme");
  if (set != nullptr) set(list, L"Explorer", nullptr);
}

}  // namespace vordane::window::win32
