#include "platform/windows/window/grid_paint.h"

#include <algorithm>

#include "platform/windows/window/geometry.h"
#include "text/text.h"

namespace vordane::window::win32 {
namespace {

constexpr int cellPadding = 8, rowPadding = 4, accentWidth = 3, shapeSize = 11, shapeGap = 5;
constexpr int sheetWidth = 8, sheetHeight = 9, sheetGap = 4, beforeSheet = 14;
constexpr int dotSize = 7, dotGap = 4;
constexpr UINT oneLine = DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS;

struct Ink {
  COLORREF ground, text, quiet, major, minor;
};

Ink inkFor(const Palette& palette, const RowDrawing& drawing) {
  if (!drawing.selected)
    return {drawing.odd ? palette.alternate : palette.surface, palette.text, palette.quiet, palette.major,
            palette.minor};
  const COLORREF ground = drawing.gridFocused ? palette.selected : palette.resting;
  const COLORREF text = drawing.gridFocused ? palette.selectedText : palette.restingText;
  if (palette.systemOnly) return {ground, text, text, text, text};
  return {ground, text, palette.quiet, palette.major, palette.minor};
}

void fill(HDC dc, const RECT& rect, COLORREF colour) {
  SetDCBrushColor(dc, colour);
  FillRect(dc, &rect, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
}

void frame(HDC dc, const RECT& rect, COLORREF colour) {
  SetDCBrushColor(dc, colour);
  FrameRect(dc, &rect, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
}

class RowPainter {
 public:
  RowPainter(const GridLook& look, const RowDrawing& drawing)
      : look_(look), drawing_(drawing), ink_(inkFor(look.palette, drawing)) {}

  void paint() {
    fill(drawing_.dc, drawing_.place, ink_.ground);
    SetBkMode(drawing_.dc, TRANSPARENT);
    for (int column = 0; column < columnCount; ++column) cell(column);
    if (drawing_.selected) {
      RECT bar = drawing_.place;
      bar.right = bar.left + px(accentWidth);
      fill(drawing_.dc, bar, look_.palette.systemOnly ? ink_.text : look_.palette.accent);
    }
    if (drawing_.focusMark) frame(drawing_.dc, drawing_.place, focusColour());
  }

 private:
  int px(int length) const { return scaled(length, look_.dpi); }
  COLORREF focusColour() const { return look_.palette.systemOnly ? ink_.text : look_.palette.accent; }

  void cell(int column) {
    const RECT& place = drawing_.cells[static_cast<std::size_t>(column)];
    if (place.right <= place.left || !RectVisible(drawing_.dc, &place)) return;
    const RECT edge{place.right - 1, place.top, place.right, place.bottom};
    if (!drawing_.selected) fill(drawing_.dc, edge, look_.palette.line);
    if (drawing_.row == nullptr) return;
    RECT inside = place;
    InflateRect(&inside, -px(cellPadding), -px(rowPadding));
    content(column, inside);
  }

  void content(int column, RECT inside) {
    if (column == descriptionColumn) return description(inside);
    if (column == alarmColumn) return severity(inside);
    if (column == faultColumn) news(inside);
    const UINT side = column == countColumn ? DT_RIGHT : DT_LEFT;
    line(inside, cellText(*drawing_.row, column), look_.plain.get(), ink_.text, side);
  }

  void description(RECT inside) {
    line(inside, drawing_.row->text.title, look_.plain.get(), ink_.text, DT_LEFT);
    inside.top += look_.lineHeight;
    if (!drawing_.row->note.text.empty()) return detailAndNote(inside);
    line(inside, drawing_.row->text.detail, look_.plain.get(), ink_.quiet, DT_LEFT);
  }

  // Behind the details a sheet, which is always seen, and what a person has written to the fault.
  void detailAndNote(RECT inside) {
    const std::u16string_view detail = drawing_.row->text.detail;
    const int sheet = px(sheetWidth) + px(sheetGap), before = detail.empty() ? 0 : px(beforeSheet);
    RECT words = inside;
    {
      const Selected selected(drawing_.dc, look_.plain.get());
      words.right = std::min(inside.right - sheet - before, inside.left + widthOf(detail));
    }
    line(words, detail, look_.plain.get(), ink_.quiet, DT_LEFT);
    inside.left = words.right + before;
    noteSheet(inside);
    inside.left += sheet;
    line(inside, drawing_.row->note.text, look_.plain.get(), ink_.quiet, DT_LEFT);
  }

  void noteSheet(const RECT& inside) {
    const LONG top = inside.top + (look_.lineHeight - px(sheetHeight)) / 2;
    const RECT sheet{inside.left, top, inside.left + px(sheetWidth), top + px(sheetHeight)};
    frame(drawing_.dc, sheet, ink_.quiet);
    for (const LONG row : {sheet.top + px(3), sheet.top + px(5)})
      fill(drawing_.dc, {sheet.left + px(2), row, sheet.right - px(2), row + px(1)}, ink_.quiet);
  }

  // Below the kind, where the row is empty; a word that would be cut is left to the dot.
  void news(RECT inside) {
    if (drawing_.newWord.empty()) return;
    inside.top += look_.lineHeight;
    inside.bottom = inside.top + look_.lineHeight;
    const bool plain = look_.palette.systemOnly || drawing_.selected;
    drawNewDot(drawing_.dc, inside, plain ? ink_.text : look_.palette.accent, look_.dpi);
    inside.left += newDotWidth(look_.dpi);
    inside.right += px(cellPadding) - px(1);
    const Selected selected(drawing_.dc, look_.plain.get());
    if (widthOf(drawing_.newWord) > width(inside)) return;
    SetTextColor(drawing_.dc, ink_.text);
    DrawTextW(drawing_.dc, wide(drawing_.newWord), -1, &inside, oneLine | DT_LEFT);
  }

  void severity(RECT inside) {
    const std::u16string_view word = text::trim(drawing_.row->fault.alarm);
    const bool major = word == u"MJ";
    if (major || word == u"MN") {
      const int size = px(shapeSize), top = static_cast<int>(inside.top) + (look_.lineHeight - size) / 2;
      const RECT shape{inside.left, top, inside.left + size, top + size};
      drawSeverity(drawing_.dc, shape, major, major ? ink_.major : ink_.minor, px(1));
      inside.left = shape.right + px(shapeGap);
    }
    line(inside, word, major ? look_.bold.get() : look_.plain.get(), ink_.text, DT_LEFT);
  }

  void line(RECT place, std::u16string_view words, HFONT font, COLORREF colour, UINT side) {
    if (words.empty()) return;
    place.bottom = place.top + look_.lineHeight;
    const Selected selected(drawing_.dc, font);
    SetTextColor(drawing_.dc, colour);
    DrawTextW(drawing_.dc, wideBegin(words), static_cast<int>(words.size()), &place, oneLine | side);
    if (!drawing_.needle.empty()) marks(place, words, side);
  }

  int widthOf(std::u16string_view words) const {
    SIZE size{};
    GetTextExtentPoint32W(drawing_.dc, wideBegin(words), static_cast<int>(words.size()), &size);
    return static_cast<int>(size.cx);
  }

  // The same words once more, clipped to each hit.
  void marks(RECT place, std::u16string_view words, UINT side) {
    const std::u16string lower = text::toLower(words);
    const std::size_t length = drawing_.needle.size();
    const int begin = static_cast<int>(side == DT_RIGHT ? place.right - widthOf(words) : place.left);
    for (auto at = lower.find(drawing_.needle); at != lower.npos;
         at = lower.find(drawing_.needle, at + length)) {
      RECT hit = place;
      hit.left = std::max<LONG>(place.left, begin + widthOf(words.substr(0, at)));
      hit.right = std::min<LONG>(place.right, begin + widthOf(words.substr(0, at + length)));
      if (hit.left >= hit.right) continue;
      const int saved = SaveDC(drawing_.dc);
      IntersectClipRect(drawing_.dc, hit.left, hit.top, hit.right, hit.bottom);
      fill(drawing_.dc, hit, markGround());
      SetTextColor(drawing_.dc, markInk());
      DrawTextW(drawing_.dc, wideBegin(words), static_cast<int>(words.size()), &place, oneLine | side);
      RestoreDC(drawing_.dc, saved);
    }
  }
  // A mark in the colours of the selection shows in a selected row as its contrary.
  bool turned() const { return look_.palette.systemOnly && drawing_.selected; }
  COLORREF markGround() const { return turned() ? look_.palette.surface : look_.palette.mark; }
  COLORREF markInk() const { return turned() ? look_.palette.text : look_.palette.markText; }

  const GridLook& look_;
  const RowDrawing& drawing_;
  const Ink ink_;
};

}  // namespace

void GridLook::make(const FontChoice& choice, int atDpi, const Palette& colours) {
  dpi = atDpi;
  palette = colours;
  plain = makeFont(choice, dpi);
  bold = makeFont(choice, dpi, FontStyle::bold);
  lineHeight = win32::lineHeight(plain.get()) + scaled(1, dpi);
}

int GridLook::rowHeight() const {
  return 2 * lineHeight + 2 * scaled(rowPadding, dpi);
}

void drawRow(const GridLook& look, const RowDrawing& drawing) {
  RowPainter(look, drawing).paint();
}

void drawSeverity(HDC dc, const RECT& place, bool filled, COLORREF colour, int penWidth) {
  const Pen pen(CreatePen(PS_SOLID, penWidth, colour));
  const Selected line(dc, pen.get());
  SetDCBrushColor(dc, colour);
  const Selected ground(dc, GetStockObject(filled ? DC_BRUSH : NULL_BRUSH));
  const POINT corners[] = {{(place.left + place.right) / 2, place.top},
                           {place.right - 1, place.bottom - 1},
                           {place.left, place.bottom - 1}};
  Polygon(dc, corners, 3);
}

int newDotWidth(int dpi) {
  return scaled(dotSize, dpi) + scaled(dotGap, dpi);
}

void drawNewDot(HDC dc, const RECT& place, COLORREF colour, int dpi) {
  const int size = scaled(dotSize, dpi), left = static_cast<int>(place.left);
  const int top = (static_cast<int>(place.top + place.bottom) - size) / 2;
  const Selected line(dc, GetStockObject(DC_PEN));
  const Selected ground(dc, GetStockObject(DC_BRUSH));
  SetDCPenColor(dc, colour);
  SetDCBrushColor(dc, colour);
  Ellipse(dc, left, top, left + size, top + size);
}

}  // namespace vordane::window::win32
