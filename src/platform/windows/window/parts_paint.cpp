#include "platform/windows/window/parts_paint.h"

#include <algorithm>

#include "platform/windows/window/fonts.h"
#include "platform/windows/window/geometry.h"

namespace vordane::window::win32 {
namespace {

constexpr int noticePadding = 7, noticeEdge = 12, signSize = 18, signGap = 9, widestNotice = 520;
constexpr UINT wrapped = DT_WORDBREAK | DT_NOPREFIX;

void outline(HDC dc, const RECT& rect, COLORREF colour, int thickness) {
  RECT line = rect;
  SetDCBrushColor(dc, colour);
  for (int n = 0; n < thickness; ++n) {
    FrameRect(dc, &line, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
    InflateRect(&line, -1, -1);
  }
}

void disc(HDC dc, const RECT& place, COLORREF line, int thickness, bool filled) {
  const Pen pen(CreatePen(PS_SOLID, thickness, line));
  const Selected with(dc, pen.get());
  SetDCBrushColor(dc, line);
  const Selected ground(dc, GetStockObject(filled ? DC_BRUSH : NULL_BRUSH));
  Ellipse(dc, place.left, place.top, place.right, place.bottom);
}

struct NoticeInk {
  COLORREF ground, text;
};

NoticeInk noticeInk(NoticeKind kind, const Palette& palette) {
  if (kind == NoticeKind::failure) return {palette.failure, palette.failureText};
  if (kind == NoticeKind::waiting) return {palette.waiting, palette.waitingText};
  return {palette.hint, palette.hintText};
}

void stroke(HDC dc, int x1, int y1, int x2, int y2) {
  MoveToEx(dc, x1, y1, nullptr);
  LineTo(dc, x2, y2);
}

// The sign before the words: a clock, a triangle with a stroke, or a disc with a stroke.
void drawSign(HDC dc, const RECT& place, NoticeKind kind, COLORREF colour, int dpi) {
  const int thick = std::max(1, scaled(2, dpi)), cx = static_cast<int>(place.left + place.right) / 2;
  const int cy = static_cast<int>(place.top + place.bottom) / 2, h = height(place);
  const Pen pen(CreatePen(PS_SOLID, thick, colour));
  const Selected with(dc, pen.get());
  const Selected hollow(dc, GetStockObject(NULL_BRUSH));
  if (kind == NoticeKind::failure) {
    const POINT corners[] = {
        {cx, place.top}, {place.right - 1, place.bottom - 1}, {place.left, place.bottom - 1}};
    Polygon(dc, corners, 3);
    stroke(dc, cx, cy - h / 8, cx, cy + h / 6);
    stroke(dc, cx, cy + h / 3, cx, cy + h / 3 + 1);
    return;
  }
  Ellipse(dc, place.left, place.top, place.right, place.bottom);
  if (kind == NoticeKind::waiting) {
    stroke(dc, cx, cy - h / 4, cx, cy);
    stroke(dc, cx, cy, cx + h / 5, cy);
    return;
  }
  stroke(dc, cx, cy - h / 4, cx, cy - h / 4 + 1);
  stroke(dc, cx, cy - h / 24, cx, cy + h / 4);
}

RECT wordsBox(HDC dc, const std::u16string& words, int width) {
  RECT box{0, 0, width, 0};
  DrawTextW(dc, wide(words), static_cast<int>(words.size()), &box, wrapped | DT_CALCRECT);
  return box;
}

}  // namespace

void fillRect(HDC dc, const RECT& rect, COLORREF colour) {
  SetDCBrushColor(dc, colour);
  FillRect(dc, &rect, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
}

void drawLamp(const LampDrawing& lamp, const Palette& palette) {
  const COLORREF ink = lamp.lit ? palette.lampLitText : palette.lampClearText;
  fillRect(lamp.dc, lamp.place, lamp.lit ? palette.lampLit : palette.lampClear);
  outline(lamp.dc, lamp.place, lamp.lit ? ink : palette.lampFrame, scaled(lamp.lit ? 2 : 1, lamp.dpi));
  const int size = scaled(10, lamp.dpi), left = static_cast<int>(lamp.place.left) + scaled(10, lamp.dpi);
  const int top = (static_cast<int>(lamp.place.top + lamp.place.bottom) - size) / 2;
  disc(lamp.dc, {left, top, left + size, top + size}, ink, std::max(1, scaled(1, lamp.dpi)), lamp.lit);
  RECT words = lamp.place;
  words.left = left + size + scaled(6, lamp.dpi);
  const Selected font(lamp.dc, lamp.lit ? lamp.bold : lamp.plain);
  SetBkMode(lamp.dc, TRANSPARENT);
  SetTextColor(lamp.dc, ink);
  DrawTextW(lamp.dc, wide(lamp.words), static_cast<int>(lamp.words.size()), &words,
            DT_SINGLELINE | DT_VCENTER | DT_LEFT | DT_NOPREFIX | DT_END_ELLIPSIS);
}

void drawFrame(HDC dc, const RECT& place, const std::u16string& caption, HFONT font, int dpi,
               const Palette& palette) {
  const Selected with(dc, font);
  const int textWidth = caption.empty() ? 0 : win32::captionWidth(font, caption);
  RECT words{place.left + scaled(10, dpi), place.top, place.left + scaled(10, dpi) + textWidth, place.bottom};
  const int lineTop = static_cast<int>(place.top) + lineHeight(font) / 2;
  const Pen pen(CreatePen(PS_SOLID, 1, palette.systemOnly ? palette.panelText : RGB(200, 200, 200)));
  {
    const Selected line(dc, pen.get());
    const Selected hollow(dc, GetStockObject(NULL_BRUSH));
    const int saved = SaveDC(dc);
    if (textWidth > 0)
      ExcludeClipRect(dc, words.left - scaled(4, dpi), place.top, words.right + scaled(4, dpi),
                      place.top + lineHeight(font));
    RoundRect(dc, place.left, lineTop, place.right, place.bottom, scaled(6, dpi), scaled(6, dpi));
    RestoreDC(dc, saved);
  }
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, palette.panelText);
  DrawTextW(dc, wide(caption), static_cast<int>(caption.size()), &words, DT_SINGLELINE | DT_LEFT | DT_NOCLIP);
}

void drawNotice(const NoticeDrawing& notice, const Palette& palette) {
  const NoticeInk ink = noticeInk(notice.kind, palette);
  const Selected font(notice.dc, notice.font);
  SetBkMode(notice.dc, TRANSPARENT);
  SetTextColor(notice.dc, ink.text);
  const int edge = scaled(noticeEdge, notice.dpi), sign = scaled(signSize, notice.dpi),
            between = scaled(signGap, notice.dpi), pad = scaled(noticePadding, notice.dpi);
  const int room = std::min(width(notice.place) - 2 * edge - sign - between,
                            notice.bar ? width(notice.place) : scaled(widestNotice, notice.dpi));
  RECT words = wordsBox(notice.dc, notice.words, std::max(room, 1));
  const int content = std::max(height(words), sign);
  RECT card = notice.place;
  if (!notice.bar) {
    fillRect(notice.dc, notice.place, palette.surface);
    const int cardWidth = width(words) + sign + between + 4 * pad, cardHeight = content + 4 * pad;
    card.left = notice.place.left + (width(notice.place) - cardWidth) / 2;
    card.top = notice.place.top + std::max(0, (height(notice.place) - cardHeight) / 3);
    card.right = card.left + cardWidth;
    card.bottom = card.top + cardHeight;
  }
  fillRect(notice.dc, card, ink.ground);
  if (!notice.bar || palette.systemOnly) outline(notice.dc, card, ink.text, 1);
  const int left = static_cast<int>(card.left) + (notice.bar ? edge : 2 * pad);
  const int middle = static_cast<int>(card.top + card.bottom) / 2;
  drawSign(notice.dc, {left, middle - sign / 2, left + sign, middle - sign / 2 + sign}, notice.kind, ink.text,
           notice.dpi);
  OffsetRect(&words, left + sign + between, middle - height(words) / 2);
  DrawTextW(notice.dc, wide(notice.words), static_cast<int>(notice.words.size()), &words, wrapped);
}

int noticeCardBottom(const std::u16string& words, SIZE place, HFONT font, int dpi) {
  const HDC dc = measuringDc();
  const Selected with(dc, font);
  const int room = std::min(static_cast<int>(place.cx) - scaled(2 * noticeEdge + signSize + signGap, dpi),
                            scaled(widestNotice, dpi));
  const int tall = std::max(height(wordsBox(dc, words, std::max(room, 1))), scaled(signSize, dpi)) +
                   4 * scaled(noticePadding, dpi);
  return std::max(0, (static_cast<int>(place.cy) - tall) / 3) + tall;
}

int noticeBarHeight(const std::u16string& words, int barWidth, HFONT font, int dpi) {
  const HDC dc = measuringDc();
  const Selected with(dc, font);
  const int room = barWidth - scaled(2 * noticeEdge + signSize + signGap, dpi);
  return std::max(height(wordsBox(dc, words, std::max(room, 1))), scaled(signSize, dpi)) +
         2 * scaled(noticePadding, dpi);
}

}  // namespace vordane::window::win32
