#include "platform/windows/window/fonts.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <cwchar>
#include <optional>

#include "platform/windows/window/geometry.h"

namespace vordane::window::win32 {
namespace {

std::optional<FontChoice> read(const Control& control, std::u16string_view face, std::u16string_view size) {
  if (!control.has(face) || !control.has(size)) return std::nullopt;
  try {
    return FontChoice{control.text(face), automation::toDouble(control.get(size))};
  } catch (const std::exception&) {
    return std::nullopt;  // a designed value of a wrong type draws as the workstation's face
  }
}

int extent(HFONT font, std::u16string_view text, UINT format) {
  const HDC dc = measuringDc();
  const Selected selected(dc, font);
  RECT box{};
  DrawTextW(dc, wideBegin(text), static_cast<int>(text.size()), &box, DT_CALCRECT | DT_SINGLELINE | format);
  return width(box);
}

}  // namespace

LOGFONTW workstationFont(int dpi) {
  NONCLIENTMETRICSW metrics{};
  metrics.cbSize = sizeof metrics;
  if (SystemParametersInfoForDpi(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0,
                                 static_cast<UINT>(dpi)))
    return metrics.lfMessageFont;
  LOGFONTW plain{};
  plain.lfHeight = -MulDiv(9, dpi, 72);
  return plain;
}

bool sameFont(const LOGFONTW& a, const LOGFONTW& b) {
  return std::memcmp(&a, &b, offsetof(LOGFONTW, lfFaceName)) == 0 &&
         std::wcsncmp(a.lfFaceName, b.lfFaceName, LF_FACESIZE) == 0;
}

FontChoice fontOf(const Control* control) {
  if (control == nullptr) return {};
  if (const auto own = read(*control, u"FontName", u"FontSize")) return *own;
  return read(*control, u"Font.Name", u"Font.Size").value_or(FontChoice{});
}

FontChoice headFontOf(const Control* control) {
  if (control == nullptr) return {};
  if (const auto head = read(*control, u"HeadFont.Name", u"HeadFont.Size")) return *head;
  return fontOf(control);
}

Font makeFont(const FontChoice& choice, int dpi, FontStyle style) {
  LOGFONTW font = workstationFont(dpi);
  if (choice.points > 0) font.lfHeight = -static_cast<LONG>(std::lround(choice.points * dpi / 72.0));
  if (!choice.face.empty()) std::wcsncpy(font.lfFaceName, wide(choice.face), LF_FACESIZE - 1);
  font.lfCharSet = DEFAULT_CHARSET;
  if (style == FontStyle::bold) font.lfWeight = FW_BOLD;
  if (style == FontStyle::fixedWidth) {
    font.lfPitchAndFamily = FIXED_PITCH | FF_MODERN;
    std::wcsncpy(font.lfFaceName, L"Consolas", LF_FACESIZE - 1);
  }
  font.lfFaceName[LF_FACESIZE - 1] = L'\0';
  return Font(CreateFontIndirectW(&font));
}

// The screen's own surface would be asked for and given back with each text.
HDC measuringDc() {
  static const MemoryDc dc(CreateCompatibleDC(nullptr));
  return dc.get();
}

int lineHeight(HFONT font) {
  const HDC dc = measuringDc();
  const Selected selected(dc, font);
  TEXTMETRICW metrics{};
  GetTextMetricsW(dc, &metrics);
  return static_cast<int>(metrics.tmHeight);
}

int textWidth(HFONT font, std::u16string_view text) {
  return extent(font, text, DT_NOPREFIX);
}

int captionWidth(HFONT font, const std::u16string& caption) {
  return extent(font, caption, 0);
}

}  // namespace vordane::window::win32
