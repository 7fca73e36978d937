#include "platform/windows/window/kind_list.h"

#include <windows.h>

#include <commctrl.h>

#include <algorithm>

#include "platform/windows/window/child_window.h"
#include "platform/windows/window/fonts.h"
#include "platform/windows/window/geometry.h"
#include "platform/windows/window/handles.h"
#include "platform/windows/window/theme.h"
#include "text/numbers.h"

namespace vordane::window::win32 {
namespace {

constexpr int kindColumn = 0, titleColumn = 1, countColumn = 2;
constexpr int tickWidth = 40, cellPadding = 16, scrollBar = 24, widest = 560, mostLines = 14;
constexpr UINT on = INDEXTOSTATEIMAGEMASK(2), off = INDEXTOSTATEIMAGEMASK(1);

}  // namespace

void KindList::create(HWND parent, int id, const std::u16string& allKinds, Events events) {
  allKinds_ = allKinds;
  events_ = std::move(events);
  window_ =
      makeChild(parent, id, WC_LISTVIEWW, {},
                WS_BORDER | WS_TABSTOP | LVS_REPORT | LVS_NOCOLUMNHEADER | LVS_SINGLESEL | LVS_SHOWSELALWAYS);
  ListView_SetExtendedListViewStyle(window_, LVS_EX_CHECKBOXES | LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER);
  drawAsExplorer(window_);
  for (int column = kindColumn; column <= countColumn; ++column) {
    LVCOLUMNW info{};
    info.mask = LVCF_FMT | LVCF_SUBITEM;
    info.fmt = column == countColumn ? LVCFMT_RIGHT : LVCFMT_LEFT;
    info.iSubItem = column;
    ListView_InsertColumn(window_, column, &info);
  }
}

void KindList::reword(const std::u16string& allKinds) {
  allKinds_ = allKinds;
  const std::vector<list::Tally> kinds = kinds_;
  fill(kinds, list::KindRule(rule_));
}

void KindList::setFont(HFONT font, int dpi) {
  font_ = font;
  dpi_ = dpi;
  SendMessageW(window_, WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
}

void KindList::setColours(COLORREF ground, COLORREF text) {
  ListView_SetBkColor(window_, ground);
  ListView_SetTextBkColor(window_, ground);
  ListView_SetTextColor(window_, text);
}

void KindList::fill(const std::vector<list::Tally>& kinds, const list::KindRule& rule) {
  kinds_ = kinds;
  rule_ = rule;
  if (window_ == nullptr) return;
  filling_ = true;
  ListView_DeleteAllItems(window_);
  const auto put = [&](int row, int column, const std::u16string& text) {
    LVITEMW item{};
    item.mask = LVIF_TEXT;
    item.iItem = row;
    item.iSubItem = column;
    item.pszText = const_cast<wchar_t*>(wide(text));
    column == kindColumn ? ListView_InsertItem(window_, &item) : ListView_SetItem(window_, &item);
  };
  put(0, kindColumn, allKinds_);
  for (std::size_t i = 0; i < kinds_.size(); ++i) {
    const int row = static_cast<int>(i) + 1;
    put(row, kindColumn, kinds_[i].shown);
    put(row, titleColumn, kinds_[i].title);
    put(row, countColumn, text::decimal(static_cast<std::int64_t>(kinds_[i].rows)));
  }
  filling_ = false;
  showTicks();
}

void KindList::showTicks() {
  filling_ = true;
  ListView_SetItemState(window_, 0, shownKinds() == kinds_.size() ? on : off, LVIS_STATEIMAGEMASK);
  for (std::size_t i = 0; i < kinds_.size(); ++i)
    ListView_SetItemState(window_, static_cast<int>(i) + 1, rule_.shows(kinds_[i].key) ? on : off,
                          LVIS_STATEIMAGEMASK);
  filling_ = false;
}

std::size_t KindList::shownKinds() const {
  return static_cast<std::size_t>(std::count_if(
      kinds_.begin(), kinds_.end(), [&](const list::Tally& kind) { return rule_.shows(kind.key); }));
}

bool KindList::open() const {
  return window_ != nullptr && (GetWindowLongPtrW(window_, GWL_STYLE) & WS_VISIBLE) != 0;
}

void KindList::place(const RECT& button, const RECT& client) {
  int kindWidth = textWidth(font_, allKinds_), titleWidth = 0, countWidth = 0;
  for (const list::Tally& kind : kinds_) {
    kindWidth = std::max(kindWidth, textWidth(font_, kind.shown));
    titleWidth = std::max(titleWidth, textWidth(font_, kind.title));
    countWidth = std::max(countWidth, textWidth(font_, text::decimal(static_cast<std::int64_t>(kind.rows))));
  }
  const int padding = scaled(cellPadding, dpi_);
  const int first = kindWidth + scaled(tickWidth, dpi_), last = countWidth + padding;
  const int bar = scaled(scrollBar, dpi_);
  const int room = std::min(scaled(widest, dpi_), width(client)) - first - last - bar;
  const int title = std::max(0, std::min(titleWidth + padding, room));
  ListView_SetColumnWidth(window_, kindColumn, first);
  ListView_SetColumnWidth(window_, titleColumn, title);
  ListView_SetColumnWidth(window_, countColumn, last);
  const int lines = static_cast<int>(std::min<std::size_t>(kinds_.size() + 1, mostLines));
  RECT line{};
  ListView_GetItemRect(window_, 0, &line, LVIR_BOUNDS);
  const int lineTall = std::max(height(line), lineHeight(font_));
  const int w = first + title + last + bar;
  const int h = std::min(lines * lineTall + scaled(4, dpi_),
                         std::max<int>(lineTall, static_cast<int>(client.bottom - button.bottom)));
  const int x = std::max(0, std::min<int>(button.left, static_cast<int>(client.right) - w));
  SetWindowPos(window_, HWND_TOP, x, button.bottom, w, h, SWP_NOACTIVATE);
}

void KindList::show() {
  ShowWindow(window_, SW_SHOW);
  ListView_SetItemState(window_, 0, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
  SetFocus(window_);
}

void KindList::hide() {
  ShowWindow(window_, SW_HIDE);
}

void KindList::ticked(int item, bool shown) {
  if (item == 0)
    rule_ = shown ? list::KindRule{} : list::KindRule{list::KindRule::Way::only, {}};
  else
    rule_.set(kinds_[static_cast<std::size_t>(item) - 1].key, shown);
  showTicks();
  events_.changed();
}

bool KindList::notified(const NMHDR& header, LPARAM message) {
  if (header.hwndFrom != window_ || window_ == nullptr) return false;
  if (header.code == NM_KILLFOCUS) events_.left();
  if (header.code == LVN_ITEMCHANGED && !filling_) {
    const NMLISTVIEW& change = *reinterpret_cast<const NMLISTVIEW*>(message);
    const UINT now = change.uNewState & LVIS_STATEIMAGEMASK, before = change.uOldState & LVIS_STATEIMAGEMASK;
    if (now != 0 && before != 0 && now != before && change.iItem >= 0) ticked(change.iItem, now == on);
  }
  return true;
}

}  // namespace vordane::window::win32
