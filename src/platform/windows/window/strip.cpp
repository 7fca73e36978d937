#include "platform/windows/window/strip.h"

#include <commctrl.h>

#include <algorithm>

#include "platform/windows/window/accessible_name.h"
#include "platform/windows/window/child_window.h"
#include "platform/windows/window/fonts.h"
#include "platform/windows/window/geometry.h"
#include "platform/windows/window/handles.h"
#include "platform/windows/window/parts_paint.h"

namespace vordane::window::win32 {
namespace {

constexpr int edge = 14, signSize = 12, signGap = 10, focusInset = 3;

void drawSign(HDC dc, const RECT& place, Strip::Sign sign, COLORREF colour, int thick) {
  const Pen pen(CreatePen(PS_SOLID, thick, colour));
  const Selected with(dc, pen.get());
  const int middle = static_cast<int>(place.left + place.right) / 2;
  const auto line = [&](int x1, int y1, int x2, int y2) {
    MoveToEx(dc, x1, y1, nullptr);
    LineTo(dc, x2, y2);
  };
  if (sign == Strip::Sign::above) {  // an arrow
    line(middle, place.bottom, middle, place.top);
    line(place.left, middle - place.left + place.top, middle, place.top);
    line(place.right, place.right - middle + place.top, middle, place.top);
    return;
  }
  for (int n = 0; n < 4; ++n) {  // bars that grow
    const int x = place.left + n * width(place) / 3;
    line(x, place.bottom, x, place.bottom - (n + 1) * height(place) / 4);
  }
}

}  // namespace

void Strip::create(HWND parent, int id, Sign sign) {
  sign_ = sign;
  words_.clear();
  window_ = makeChild(parent, id, WC_BUTTONW, {}, WS_TABSTOP | BS_OWNERDRAW);
}

void Strip::tell(const std::u16string& words, const std::u16string& action) {
  if (words == words_ && action == action_) return;
  words_ = words;
  action_ = action;
  setWindowText(window_, words);
  InvalidateRect(window_, nullptr, FALSE);
  ShowWindow(window_, words.empty() ? SW_HIDE : SW_SHOWNA);
  tellLive(window_);
}

// At the right, underlined by a line of its own; returns where the room for other words ends.
int Strip::drawAction(HDC dc, const RECT& place, HFONT font, int dpi) const {
  RECT box = place;
  box.left = std::max(box.left, box.right - textWidth(font, action_));
  const int top = (static_cast<int>(box.top + box.bottom) - lineHeight(font)) / 2;
  DrawTextW(dc, wide(action_), static_cast<int>(action_.size()), &box,
            DT_LEFT | DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX);
  fillRect(dc, {box.left, top + lineHeight(font) - 1, box.right, top + lineHeight(font)}, GetTextColor(dc));
  return static_cast<int>(box.left) - scaled(2 * signGap, dpi);
}

void Strip::draw(const DRAWITEMSTRUCT& item, HFONT font, int dpi, const Palette& palette) const {
  fillRect(item.hDC, item.rcItem, palette.hint);
  const RECT foot{item.rcItem.left, item.rcItem.bottom - 1, item.rcItem.right, item.rcItem.bottom};
  fillRect(item.hDC, foot, palette.systemOnly ? palette.hintText : palette.line);
  const int size = scaled(signSize, dpi), left = static_cast<int>(item.rcItem.left) + scaled(edge, dpi);
  const int top = (static_cast<int>(item.rcItem.top + item.rcItem.bottom) - size) / 2;
  drawSign(item.hDC, {left, top, left + size, top + size}, sign_, palette.hintText,
           std::max(1, scaled(2, dpi)));
  RECT words = item.rcItem;
  words.left = left + size + scaled(signGap, dpi);
  words.right -= scaled(edge, dpi);
  const Selected with(item.hDC, font);
  SetBkMode(item.hDC, TRANSPARENT);
  SetTextColor(item.hDC, palette.hintText);
  if (!action_.empty()) words.right = drawAction(item.hDC, words, font, dpi);
  const int lines = 1 + static_cast<int>(std::count(words_.begin(), words_.end(), u'\n'));
  words.top += (height(words) - lines * lineHeight(font)) / 2;
  for (std::size_t begin = 0; begin <= words_.size();) {
    const std::size_t end = std::min(words_.find(u'\n', begin), words_.size());
    const std::u16string line = words_.substr(begin, end - begin);
    DrawTextW(item.hDC, wide(line), static_cast<int>(line.size()), &words,
              DT_LEFT | DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
    words.top += lineHeight(font);
    begin = end + 1;
  }
  if ((item.itemState & ODS_FOCUS) == 0) return;
  RECT focus = item.rcItem;
  InflateRect(&focus, -scaled(focusInset, dpi), -scaled(focusInset, dpi));
  DrawFocusRect(item.hDC, &focus);
}

}  // namespace vordane::window::win32
