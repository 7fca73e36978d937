// How a fault's row looks: two lines, the severity as a shape and a word besides a colour.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include "platform/windows/window/columns.h"
#include "platform/windows/window/fonts.h"
#include "platform/windows/window/theme.h"

namespace vordane::window::win32 {

struct GridLook {
  int dpi = 96;
  Palette palette;
  Font plain, bold;
  int lineHeight = 16;

  void make(const FontChoice& choice, int atDpi, const Palette& colours);
  int rowHeight() const;  // two lines and the room around them
};

// `row` is null for a row that has gone since; its ground is drawn all the same. `cells` are the columns'
// places within the row, by column.
struct RowDrawing {
  HDC dc;
  RECT place;
  std::array<RECT, columnCount> cells;
  const ShownRow* row;
  std::u16string_view needle;  // in small letters: marked wherever a cell holds it
  std::u16string newWord;      // of a row that is new to the person; else empty
  bool odd, selected, gridFocused, focusMark;
};
void drawRow(const GridLook& look, const RowDrawing& drawing);

// A triangle that fills `place`: filled for a major fault, hollow for a minor one.
void drawSeverity(HDC dc, const RECT& place, bool filled, COLORREF colour, int penWidth);

// A dot for what is new to the person, from the left of `place` on, and the width that it takes with the gap
// behind it.
void drawNewDot(HDC dc, const RECT& place, COLORREF colour, int dpi);
int newDotWidth(int dpi);

}  // namespace vordane::window::win32
