#include "platform/windows/window/grid.h"

#include <windows.h>

#include <algorithm>
#include <cwchar>
#include <utility>

#include "platform/windows/window/geometry.h"
#include "platform/windows/window/input_messages.h"
#include "platform/windows/window/theme.h"

namespace vordane::window::win32 {
namespace {

constexpr int headingPadding = 5, narrowestDescription = 220;

int formatOf(int column) {
  return column == countColumn ? LVCFMT_RIGHT : LVCFMT_LEFT;
}

}  // namespace

void Grid::create(HWND parent, int id, Events events) {
  events_ = std::move(events);
  takesInput_ = true;
  window_ = CreateWindowExW(0, WC_LISTVIEWW, L"",
                            WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_TABSTOP | LVS_REPORT |
                                LVS_OWNERDATA | LVS_OWNERDRAWFIXED | LVS_SINGLESEL | LVS_SHOWSELALWAYS,
                            0, 0, 0, 0, parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
                            GetModuleHandleW(nullptr), nullptr);
  ListView_SetExtendedListViewStyle(window_,
                                    LVS_EX_FULLROWSELECT | LVS_EX_HEADERDRAGDROP | LVS_EX_DOUBLEBUFFER);
  drawAsExplorer(window_);
  watch_.start(window_,
               [this](UINT message, WPARAM wide, LPARAM low) { return rowsHeard(message, wide, low); });
  headingWatch_.start(
      heading(), [this](UINT message, WPARAM wide, LPARAM low) { return headingHeard(message, wide, low); });
  addColumns();
}

void Grid::addColumns() {
  for (int column = 0; column < columnCount; ++column) {
    LVCOLUMNW info{};
    info.mask = LVCF_FMT | LVCF_TEXT | LVCF_WIDTH | LVCF_SUBITEM;
    info.fmt = formatOf(column);
    info.iSubItem = column;
    info.cx = 80;
    wchar_t empty[] = L"";
    info.pszText = empty;
    ListView_InsertColumn(window_, column, &info);
  }
}

void Grid::setLook(const Control* control, int dpi, const Palette& palette) {
  const ColumnLayout kept = layout();
  look_.make(fontOf(control), dpi, palette);
  SendMessageW(window_, WM_SETFONT, reinterpret_cast<WPARAM>(look_.plain.get()), FALSE);
  headFont_ = makeFont(headFontOf(control), dpi);
  SendMessageW(heading(), WM_SETFONT, reinterpret_cast<WPARAM>(headFont_.get()), TRUE);
  setColours(palette);
  setLayout(kept);
  askRowHeightAgain();
}

void Grid::setColours(const Palette& palette) {
  look_.palette = palette;
  ListView_SetBkColor(window_, palette.surface);
  ListView_SetTextBkColor(window_, palette.surface);
  InvalidateRect(window_, nullptr, FALSE);
}

// A list view measures its rows once; a change of its place makes it ask again.
void Grid::askRowHeightAgain() {
  RECT place;
  GetWindowRect(window_, &place);
  WINDOWPOS position{};
  position.hwnd = window_;
  position.cx = width(place);
  position.cy = height(place);
  position.flags = SWP_NOACTIVATE | SWP_NOMOVE | SWP_NOOWNERZORDER | SWP_NOZORDER;
  SendMessageW(window_, WM_WINDOWPOSCHANGED, 0, reinterpret_cast<LPARAM>(&position));
  InvalidateRect(window_, nullptr, FALSE);
}

void Grid::setHeading(int column, const std::u16string& caption) {
  LVCOLUMNW info{};
  info.mask = LVCF_TEXT | LVCF_FMT;
  info.fmt = formatOf(column);
  info.pszText = const_cast<wchar_t*>(wide(caption));
  ListView_SetColumn(window_, column, &info);
  showSortMark(column);  // the format took it away
}

void Grid::setRows(GridSource* source, std::optional<Place> place) {
  rows_.setSource(source);
  ++generation_;
  filling_ = true;
  unselect();
  selected_.reset();
  selection_.clear();
  ListView_SetItemCountEx(window_, static_cast<int>(std::min<std::size_t>(size(), 100'000'000)), 0);
  if (size() > 0) selectFirst(place);
  filling_ = false;
  moved_ = place.has_value();
  fit();
  InvalidateRect(window_, nullptr, FALSE);
  events_.selectionChanged();
  tellOthers(EVENT_OBJECT_REORDER);
}

// Whoever reads the window from outside.
void Grid::tellOthers(DWORD event) const {
  NotifyWinEvent(event, window_, OBJID_CLIENT, CHILDID_SELF);
}

void Grid::selectFirst(std::optional<Place> place) {
  if (!place) return select(0);
  selection_.only(place->row);
  ListView_SetItemState(window_, static_cast<int>(place->row), LVIS_SELECTED | LVIS_FOCUSED,
                        LVIS_SELECTED | LVIS_FOCUSED);
  scrollTo(place->row, place->line);
}

void Grid::refresh() {
  rows_.forget();
  ++generation_;
  if (static_cast<std::size_t>(ListView_GetItemCount(window_)) != size()) return setRows(rows_.source());
  InvalidateRect(window_, nullptr, FALSE);
}

int Grid::line() const {
  return selected_ ? static_cast<int>(*selected_) - top() : 0;
}

void Grid::scrollBy(int lines) {
  ListView_Scroll(window_, 0, lines * look_.rowHeight());
}

void Grid::rowsChanged(std::optional<std::size_t> row, std::optional<int> wanted) {
  const int page = std::max(1, ListView_GetCountPerPage(window_));
  const int line = wanted.value_or(std::clamp(this->line(), 0, page - 1));
  rows_.forget();
  ++generation_;
  filling_ = true;
  unselect();
  selected_.reset();
  ListView_SetItemCountEx(window_, static_cast<int>(size()), LVSICF_NOSCROLL);
  selection_.clear();
  if (row) {
    selection_.only(*row);
    const int item = static_cast<int>(*row);
    ListView_SetItemState(window_, item, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    scrollTo(*row, line);
  }
  filling_ = false;
  fit();
  InvalidateRect(window_, nullptr, FALSE);
  events_.selectionChanged();
  tellOthers(EVENT_OBJECT_REORDER);
}

// Scrolls so that the row stands in that line of the page, as far as there are rows for it.
void Grid::scrollTo(std::size_t row, int line) {
  const int page = std::max(1, ListView_GetCountPerPage(window_));
  const int last = std::max(0, static_cast<int>(size()) - page);
  const int by = std::clamp(static_cast<int>(row) - line, 0, last) - top();
  if (by != 0) scrollBy(by);
  if (line >= 0 && line < page) ListView_EnsureVisible(window_, static_cast<int>(row), FALSE);
}

void Grid::setSortMark(int column, bool descending) {
  sortColumn_ = column;
  sortDescending_ = descending;
  for (int n = 0; n < columnCount; ++n) showSortMark(n);
}

void Grid::showSortMark(int column) {
  HDITEMW item{};
  item.mask = HDI_FORMAT;
  Header_GetItem(heading(), column, &item);
  item.fmt &= ~(HDF_SORTUP | HDF_SORTDOWN);
  if (column == sortColumn_) item.fmt |= sortDescending_ ? HDF_SORTDOWN : HDF_SORTUP;
  Header_SetItem(heading(), column, &item);
}

void Grid::setLayout(const ColumnLayout& layout) {
  std::array<int, columnCount> order = layout.order;
  fits_ = layout.widths[descriptionColumn] == takesTheRest;
  ownWidths_ = true;
  for (int column = 0; column < columnCount; ++column) {
    const int wide = scaled(layout.widths[static_cast<std::size_t>(column)], look_.dpi);
    const bool fits = column == descriptionColumn && fits_;
    if (!fits && ListView_GetColumnWidth(window_, column) != wide)
      ListView_SetColumnWidth(window_, column, wide);
  }
  ownWidths_ = false;
  ListView_SetColumnOrderArray(window_, columnCount, order.data());
  fit();
}

void Grid::fit() {
  if (!fits_ || window_ == nullptr) return;
  RECT client;
  GetClientRect(window_, &client);
  int room = width(client);
  for (int column = 0; column < columnCount; ++column)
    if (column != descriptionColumn) room -= ListView_GetColumnWidth(window_, column);
  room = std::max(room, scaled(narrowestDescription, look_.dpi));
  if (room == ListView_GetColumnWidth(window_, descriptionColumn)) return;
  ownWidths_ = true;
  ListView_SetColumnWidth(window_, descriptionColumn, room);
  ownWidths_ = false;
}

void Grid::widthChanged(int column) {
  if (ownWidths_) return;
  if (column == descriptionColumn)
    fits_ = false;
  else
    fit();
}

ColumnLayout Grid::layout() const {
  ColumnLayout kept;
  for (int column = 0; column < columnCount; ++column)
    kept.widths[static_cast<std::size_t>(column)] =
        MulDiv(ListView_GetColumnWidth(window_, column), designDpi, look_.dpi);
  if (fits_) kept.widths[descriptionColumn] = takesTheRest;
  ListView_GetColumnOrderArray(window_, columnCount, kept.order.data());
  return kept;
}

// A list view may walk through all its rows to take the selection off one. Taken off that row by its
// number beforehand, there is nothing left to walk for, however many rows there are.
void Grid::unselect() {
  if (!selected_) return;
  const bool was = std::exchange(filling_, true);
  ListView_SetItemState(window_, static_cast<int>(*selected_), 0, LVIS_SELECTED);
  filling_ = was;
}

LRESULT Grid::rowsHeard(UINT message, WPARAM wide, LPARAM low) {
  if (!takesInput_ && message == WM_NCHITTEST) return HTTRANSPARENT;
  if (!takesInput_ && isInput(message)) return 0;
  if (message == WM_GETOBJECT)
    if (const LRESULT object = events_.objectAsked(wide, low)) return object;
  if (message == WM_KEYDOWN && selectionKey(wide)) return 0;
  const bool moves = message == WM_KEYDOWN && wide >= VK_PRIOR && wide <= VK_DOWN;
  if (moves || message == WM_LBUTTONDOWN || message == WM_RBUTTONDOWN)
    return moveSelection(message, wide, low);
  // The list view draws its own selected row anew when the focus comes or goes, and no other.
  const bool focus = message == WM_SETFOCUS || message == WM_KILLFOCUS;
  if (focus && selection_.size() > 1) InvalidateRect(window_, nullptr, FALSE);
  if (message != WM_PAINT) return watch_.pass(message, wide, low);
  painting_ = lookAtPlaces();
  const auto together = rows_.readTogether();
  const LRESULT answer = watch_.pass(message, wide, low);
  painting_.reset();
  if (std::exchange(paintedTop_, top()) != top()) events_.scrolled();
  return answer;
}

// A position of -1 speaks of all rows at once.
void Grid::itemChanged(const NMLISTVIEW& change) {
  const bool is = (change.uNewState & LVIS_SELECTED) != 0, was = (change.uOldState & LVIS_SELECTED) != 0;
  const auto before = selected_;
  if (is && change.iItem >= 0) selected_ = static_cast<std::size_t>(change.iItem);
  if (was && !is && (change.iItem < 0 || selected_ == static_cast<std::size_t>(change.iItem)))
    selected_.reset();
  if (selected_ == before) return;
  RECT edge;  // the bar before the selected row may stand beside what the list view draws anew
  GetClientRect(window_, &edge);
  edge.right = scaled(4, look_.dpi);
  InvalidateRect(window_, &edge, FALSE);
  if (filling_) return;
  moved_ = true;
  if (selection_.size() > 1) InvalidateRect(window_, nullptr, FALSE);
  if (selected_) selection_.only(*selected_);
  events_.selectionChanged();
}

const ShownRow* Grid::selectedRow() {
  const auto row = selected();
  return row ? rows_.row(*row) : nullptr;
}

void Grid::select(std::size_t row) {
  const int item = static_cast<int>(row);
  if (selected_ != row) unselect();
  if (selection_.size() > 1) InvalidateRect(window_, nullptr, FALSE);
  selection_.only(row);
  moved_ = true;
  ListView_SetItemState(window_, item, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
  ListView_EnsureVisible(window_, item, FALSE);
}

POINT Grid::menuPlace() const {
  RECT row{};
  const auto chosen = selected();
  if (chosen) ListView_GetItemRect(window_, static_cast<int>(*chosen), &row, LVIR_BOUNDS);
  POINT place{row.left + scaled(24, look_.dpi), std::max<LONG>(row.top, 0) + look_.rowHeight() / 2};
  ClientToScreen(window_, &place);
  return place;
}

bool Grid::isOnHeading(POINT place) const {
  RECT heading;
  return GetWindowRect(this->heading(), &heading) && PtInRect(&heading, place);
}

bool Grid::notified(const NMHDR& header, LPARAM message, LRESULT& answer) {
  if (header.hwndFrom == heading()) return headingNotified(header, message);
  if (header.hwndFrom != window_) return false;
  switch (header.code) {
    case LVN_GETDISPINFOW:
      giveText(*reinterpret_cast<NMLVDISPINFOW*>(message));
      return true;
    case LVN_ITEMCHANGED:
      itemChanged(*reinterpret_cast<NMLISTVIEW*>(message));
      return true;
    case LVN_COLUMNCLICK:
      events_.headingClicked(reinterpret_cast<NMLISTVIEW*>(message)->iSubItem);
      return true;
    case LVN_ODFINDITEMW:
      answer = -1;  // typed letters look nothing up: the look-up bar does
      return true;
    case LVN_KEYDOWN:
      if (reinterpret_cast<NMLVKEYDOWN*>(message)->wVKey == 'C' && GetKeyState(VK_CONTROL) < 0)
        events_.copy();
      return true;
    default:
      return false;
  }
}

bool Grid::headingNotified(const NMHDR& header, LPARAM message) {
  if (header.code == HDN_ITEMCHANGEDW) {
    const NMHEADERW& changed = *reinterpret_cast<NMHEADERW*>(message);
    if (changed.pitem != nullptr && (changed.pitem->mask & HDI_WIDTH) != 0) widthChanged(changed.iItem);
  }
  if (header.code == HDN_ENDTRACKW || header.code == HDN_ITEMCHANGEDW || header.code == HDN_ENDDRAG)
    InvalidateRect(window_, nullptr, FALSE);
  return false;
}

void Grid::giveText(NMLVDISPINFOW& asked) {
  if ((asked.item.mask & LVIF_TEXT) == 0 || asked.item.cchTextMax <= 0 || asked.item.pszText == nullptr)
    return;
  const ShownRow* row = rows_.row(static_cast<std::size_t>(asked.item.iItem));
  const std::u16string text = row != nullptr ? cellText(*row, asked.item.iSubItem) : std::u16string{};
  std::wcsncpy(asked.item.pszText, wide(text), static_cast<std::size_t>(asked.item.cchTextMax));
  asked.item.pszText[asked.item.cchTextMax - 1] = L'\0';
}

// The heading gets a little more room than its letters need.
LRESULT Grid::headingHeard(UINT message, WPARAM wide, LPARAM low) {
  if (!takesInput_ && message == WM_NCHITTEST) return HTTRANSPARENT;
  if (!takesInput_ && isInput(message)) return 0;
  const LRESULT answer = headingWatch_.pass(message, wide, low);
  if (message == HDM_LAYOUT && answer != FALSE) {
    const HDLAYOUT& asked = *reinterpret_cast<HDLAYOUT*>(low);
    if (!headFont_) return answer;
    const int tall = lineHeight(headFont_.get()) + 2 * scaled(headingPadding, look_.dpi);
    asked.prc->top += tall - asked.pwpos->cy;
    asked.pwpos->cy = tall;
  }
  return answer;
}

// The headings stand where the cells of each row begin.
Grid::Places Grid::lookAtPlaces() const {
  Places places{};
  RECT client;
  GetClientRect(window_, &client);
  places.right = client.right;
  POINT origin{};
  MapWindowPoints(heading(), window_, &origin, 1);
  places.left = origin.x;
  for (int column = 0; column < columnCount; ++column) {
    RECT& place = places.columns[static_cast<std::size_t>(column)];
    Header_GetItemRect(heading(), column, &place);
    OffsetRect(&place, origin.x, 0);
  }
  places.focused = GetFocus() == window_;
  return places;
}

void Grid::setNews(std::function<bool(std::size_t)> isNew, std::u16string word) {
  isNew_ = std::move(isNew);
  newWord_ = std::move(word);
}

void Grid::marksChanged() {
  InvalidateRect(window_, nullptr, FALSE);
}

std::u16string Grid::newWord(std::size_t row) const {
  return isNew_ && isNew_(row) ? newWord_ : std::u16string{};
}

void Grid::draw(const DRAWITEMSTRUCT& item) {
  const Places places = painting_ ? *painting_ : lookAtPlaces();
  RowDrawing drawing{};
  drawing.dc = item.hDC;
  drawing.place = item.rcItem;
  drawing.place.left = places.left;
  drawing.place.right = std::max(drawing.place.right, places.right);
  drawing.cells = places.columns;
  for (RECT& cell : drawing.cells) {
    cell.top = item.rcItem.top;
    cell.bottom = item.rcItem.bottom;
  }
  drawing.row = rows_.row(item.itemID);
  drawing.newWord = newWord(item.itemID);
  drawing.odd = item.itemID % 2 != 0;
  drawing.selected = selection_.has(item.itemID);
  drawing.needle = needle_;
  drawing.gridFocused = places.focused;
  drawing.focusMark = drawing.gridFocused && (item.itemState & ODS_FOCUS) != 0;
  drawRow(look_, drawing);
}

}  // namespace vordane::window::win32
