// The drawn parts around the grid: lamps, the frame about them, and the notice.
#pragma once

#include <string>

#include "platform/view.h"
#include "platform/windows/window/handles.h"
#include "platform/windows/window/theme.h"

namespace vordane::window::win32 {

// A lamp says its state in words and shape besides colour: filled disc and bold words when lit.
struct LampDrawing {
  HDC dc;
  RECT place;
  std::u16string words;
  bool lit;
  HFONT plain, bold;
  int dpi;
};
void drawLamp(const LampDrawing& lamp, const Palette& palette);

// A thin frame with its caption in the upper line.
void drawFrame(HDC dc, const RECT& place, const std::u16string& caption, HFONT font, int dpi,
               const Palette& palette);

struct NoticeDrawing {
  HDC dc;
  RECT place;
  std::u16string words;
  NoticeKind kind;
  bool bar;  // a bar above the rows; else in the empty grid's place
  HFONT font;
  int dpi;
};
void drawNotice(const NoticeDrawing& notice, const Palette& palette);
// What a notice bar of this width needs.
int noticeBarHeight(const std::u16string& words, int width, HFONT font, int dpi);
// Where the card of a notice that is no bar ends, from the top of a place of this size.
int noticeCardBottom(const std::u16string& words, SIZE place, HFONT font, int dpi);

void fillRect(HDC dc, const RECT& rect, COLORREF colour);

}  // namespace vordane::window::win32
