#include "platform/windows/window/help_popup.h"

#include "platform/windows/window/children.h"
#include "platform/windows/window/fonts.h"
#include "platform/windows/window/geometry.h"
#include "platform/windows/window/guard.h"
#include "platform/windows/window/parts_paint.h"

namespace vordane::window::win32 {
namespace {

constexpr int padding = 9, widest = 340;
constexpr UINT wrapped = DT_WORDBREAK | DT_NOPREFIX;

void registerOnce(WNDPROC procedure) {
  WNDCLASSEXW type{};
  type.cbSize = sizeof type;
  type.style = CS_DROPSHADOW | CS_SAVEBITS;
  type.lpfnWndProc = procedure;
  type.hInstance = GetModuleHandleW(nullptr);
  type.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  type.lpszClassName = helpClassName;
  RegisterClassExW(&type);
}

RECT measured(const std::u16string& help, HFONT font, int dpi) {
  const HDC dc = measuringDc();
  const Selected with(dc, font);
  RECT box{0, 0, scaled(widest, dpi), 0};
  DrawTextW(dc, wide(help), static_cast<int>(help.size()), &box, wrapped | DT_CALCRECT);
  InflateRect(&box, scaled(padding, dpi), scaled(padding, dpi));
  return box;
}

}  // namespace

void HelpPopup::show(HWND owner, HWND beside, const std::u16string& help, HFONT font, int dpi) {
  close();
  registerOnce(procedure);
  help_ = help;
  font_ = font;
  dpi_ = dpi;
  RECT anchor{};
  GetWindowRect(beside != nullptr ? beside : owner, &anchor);
  const RECT box = measured(help_, font_, dpi_);
  RECT place{anchor.left, anchor.bottom + scaled(3, dpi_), anchor.left + width(box),
             anchor.bottom + scaled(3, dpi_) + height(box)};
  place = pulledBack(place, workAreas(), height(box), width(box));
  window_ = CreateWindowExW(WS_EX_TOOLWINDOW | WS_EX_NOACTIVATE | WS_EX_TOPMOST, helpClassName, wide(help_),
                            WS_POPUP, place.left, place.top, width(place), height(place), owner, nullptr,
                            GetModuleHandleW(nullptr), this);
  ShowWindow(window_, SW_SHOWNOACTIVATE);
  SetCapture(window_);
}

void HelpPopup::close() {
  if (window_ != nullptr) DestroyWindow(std::exchange(window_, nullptr));
}

void HelpPopup::paint() {
  PAINTSTRUCT state;
  const HDC dc = BeginPaint(window_, &state);
  RECT client;
  GetClientRect(window_, &client);
  fillRect(dc, client, GetSysColor(COLOR_INFOBK));
  SetDCBrushColor(dc, GetSysColor(COLOR_INFOTEXT));
  FrameRect(dc, &client, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
  InflateRect(&client, -scaled(padding, dpi_), -scaled(padding, dpi_));
  const Selected with(dc, font_);
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, GetSysColor(COLOR_INFOTEXT));
  DrawTextW(dc, wide(help_), static_cast<int>(help_.size()), &client, wrapped);
  EndPaint(window_, &state);
}

LRESULT CALLBACK HelpPopup::procedure(HWND window, UINT message, WPARAM wide, LPARAM low) {
  if (message == WM_NCCREATE)
    SetWindowLongPtrW(window, GWLP_USERDATA,
                      reinterpret_cast<LONG_PTR>(reinterpret_cast<CREATESTRUCTW*>(low)->lpCreateParams));
  auto* self = reinterpret_cast<HelpPopup*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  if (self == nullptr || self->window_ != window) return DefWindowProcW(window, message, wide, low);
  switch (message) {
    case WM_PAINT:
      if (!guarded([&] { self->paint(); })) ValidateRect(window, nullptr);
      return 0;
    case WM_LBUTTONDOWN:
    case WM_RBUTTONDOWN:
    case WM_MBUTTONDOWN:
    case WM_CAPTURECHANGED:
      self->close();
      return 0;
    default:
      return DefWindowProcW(window, message, wide, low);
  }
}

}  // namespace vordane::window::win32
