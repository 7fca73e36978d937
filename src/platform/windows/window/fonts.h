// The faces the window is drawn in: those of the controls' own font properties, at the density of the
// screen it stands on, and the workstation's own where a control names none.
#pragma once

#include "platform/window.h"
#include "platform/windows/window/handles.h"

namespace vordane::window::win32 {

struct FontChoice {
  std::u16string face;  // empty: the workstation's
  double points = 0;    // not above 0: the workstation's
  bool operator==(const FontChoice&) const = default;
};

// The face that the workstation writes its messages in, smoothing included.
LOGFONTW workstationFont(int dpi);
bool sameFont(const LOGFONTW& a, const LOGFONTW& b);

// What a control asks for: FontName and FontSize, else Font.Name and Font.Size.
FontChoice fontOf(const Control* control);
// The heading's, of a grid: HeadFont.Name and HeadFont.Size, else the control's.
FontChoice headFontOf(const Control* control);

enum class FontStyle { plain, bold, fixedWidth };

// The caller owns it. The stored character set is not asked for: windows draw UTF-16, and a face that lacks
// the set would be replaced by another one altogether.
Font makeFont(const FontChoice& choice, int dpi, FontStyle style = FontStyle::plain);

// A surface like the screen's, to measure on: for the window's thread, as long as the process lives. What is
// selected into it is put back.
HDC measuringDc();

int lineHeight(HFONT font);
int textWidth(HFONT font, std::u16string_view text);
// Without the ampersand that marks the access key.
int captionWidth(HFONT font, const std::u16string& caption);

}  // namespace vordane::window::win32
