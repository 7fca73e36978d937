#include "platform/windows/window/exchange_list.h"

#include <algorithm>

#include "platform/windows/window/fonts.h"
#include "platform/windows/window/geometry.h"
#include "platform/windows/window/grid_paint.h"

namespace vordane::window::win32 {
namespace {

constexpr int entryEdge = 4, numberGap = 10;
constexpr UINT entryLine = DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS;

bool isChosen(const DRAWITEMSTRUCT& item) {
  return (item.itemState & ODS_SELECTED) != 0;
}

void drawGround(const DRAWITEMSTRUCT& item) {
  FillRect(item.hDC, &item.rcItem, GetSysColorBrush(isChosen(item) ? COLOR_HIGHLIGHT : COLOR_WINDOW));
}

COLORREF inkOf(const DRAWITEMSTRUCT& item) {
  if ((item.itemState & ODS_DISABLED) != 0) return GetSysColor(COLOR_GRAYTEXT);
  return GetSysColor(isChosen(item) ? COLOR_HIGHLIGHTTEXT : COLOR_WINDOWTEXT);
}

void drawFocus(const DRAWITEMSTRUCT& item) {
  if ((item.itemState & ODS_FOCUS) != 0 && (item.itemState & ODS_NOFOCUSRECT) == 0)
    DrawFocusRect(item.hDC, &item.rcItem);
}

}  // namespace

void drawExchange(const DRAWITEMSTRUCT& item, const std::u16string& name, const std::u16string& newFaults,
                  const Palette& palette, int dpi) {
  drawGround(item);
  const COLORREF ink = inkOf(item);
  SetBkMode(item.hDC, TRANSPARENT);
  SetTextColor(item.hDC, ink);
  RECT words = item.rcItem;
  InflateRect(&words, -scaled(entryEdge, dpi), 0);
  if (!newFaults.empty()) {
    SIZE size{};
    GetTextExtentPoint32W(item.hDC, wide(newFaults), static_cast<int>(newFaults.size()), &size);
    RECT number = words;
    number.left = std::max(words.left, words.right - size.cx);
    DrawTextW(item.hDC, wide(newFaults), static_cast<int>(newFaults.size()), &number, entryLine);
    const bool plain = palette.systemOnly || isChosen(item) || (item.itemState & ODS_DISABLED) != 0;
    const int dot = newDotWidth(dpi);
    RECT sign = number;
    sign.left = std::max<LONG>(words.left, number.left - dot);
    drawNewDot(item.hDC, sign, plain ? ink : palette.accent, dpi);
    words.right = std::max<LONG>(words.left, sign.left - scaled(numberGap, dpi));
  }
  DrawTextW(item.hDC, wide(name), static_cast<int>(name.size()), &words, entryLine);
  drawFocus(item);
}

void drawNoExchange(const DRAWITEMSTRUCT& item) {
  drawGround(item);
  drawFocus(item);
}

HWND listOf(HWND box) {
  COMBOBOXINFO info{};
  info.cbSize = sizeof info;
  return box != nullptr && GetComboBoxInfo(box, &info) ? info.hwndList : nullptr;
}

void redrawExchanges(HWND box) {
  if (box == nullptr) return;
  InvalidateRect(box, nullptr, FALSE);
  const HWND list = listOf(box);
  if (list != nullptr && IsWindowVisible(list)) InvalidateRect(list, nullptr, FALSE);
}

}  // namespace vordane::window::win32
