// Which rows of the grid a person selects, by mouse and keys.
#include <windows.h>

#include <algorithm>
#include <utility>

#include "platform/windows/window/grid.h"

namespace vordane::window::win32 {

// A key or click that may select another row; one row always stays selected.
LRESULT Grid::moveSelection(UINT message, WPARAM wide, LPARAM low) {
  press_ = Press{false, false, message == WM_RBUTTONDOWN, {}};
  if (message != WM_KEYDOWN) {
    LVHITTESTINFO hit{};
    hit.pt = {static_cast<short>(LOWORD(low)), static_cast<short>(HIWORD(low))};
    const int row = ListView_HitTest(window_, &hit);
    if (row >= 0) press_->row = static_cast<std::size_t>(row);
    press_->shift = (wide & MK_SHIFT) != 0;
    press_->control = (wide & MK_CONTROL) != 0;
  }
  if (message == WM_KEYDOWN || press_->row) moved_ = true;
  before_ = selected_;
  unselect();
  filling_ = true;
  const LRESULT answer = watch_.pass(message, wide, low);
  settleSelection();
  filling_ = false;
  return answer;
}

void Grid::settleSelection() {
  if (!filling_) return;
  if (!selected_ && before_ && *before_ < size())
    ListView_SetItemState(window_, static_cast<int>(*before_), LVIS_SELECTED, LVIS_SELECTED);
  const std::vector<list::Stretch> stretches = selection_.stretches();
  applyPress();
  selectionMoved(stretches, std::exchange(before_, selected_) != selected_);
}

// What the press does to the other selected rows.
void Grid::applyPress() {
  if (!press_) return;
  const Press press = *std::exchange(press_, std::nullopt);
  const bool several = press.row && (press.shift || press.control) && !press.right;
  if (press.row && *press.row < size() && (several || press.right)) moveCaret(*press.row);
  if (several && press.shift)
    selection_.extend(*press.row, press.control);
  else if (several)
    selection_.toggle(*press.row);
  else if (selected_ && !(press.right && press.row && selection_.has(*press.row)))
    selection_.only(*selected_);
}

// Of the keyboard alone; the other selected rows stay.
void Grid::moveCaret(std::size_t row) {
  const bool was = std::exchange(filling_, true);
  const int item = static_cast<int>(row);
  if (selected_ != row) {
    unselect();
    ListView_SetItemState(window_, item, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
  }
  ListView_EnsureVisible(window_, item, FALSE);
  filling_ = was;
}

void Grid::choose(std::size_t row, Choose how) {
  if (row >= size()) return;
  const std::vector<list::Stretch> stretches = selection_.stretches();
  const auto caret = selected_;
  moved_ = true;
  moveCaret(row);
  if (how == Choose::only) selection_.only(row);
  if (how == Choose::extend) selection_.extend(row, false);
  if (how == Choose::add && !selection_.has(row)) selection_.toggle(row);
  if (how == Choose::remove && selection_.has(row)) selection_.toggle(row);
  selectionMoved(stretches, caret != selected_);
}

void Grid::selectionMoved(const std::vector<list::Stretch>& before, bool caretMoved) {
  if (!caretMoved && before == selection_.stretches()) return;
  const auto many = [](const std::vector<list::Stretch>& rows) {
    return rows.size() != 1 || rows.front().end - rows.front().begin != 1;
  };
  if (many(before) || many(selection_.stretches())) {
    InvalidateRect(window_, nullptr, FALSE);
    tellOthers(EVENT_OBJECT_SELECTIONWITHIN);  // the list view itself knows of one
  }
  events_.selectionChanged();
}

std::vector<list::Stretch> Grid::chosen() const {
  if (selection_.size() > 0 || !selected_) return selection_.stretches();
  return {{*selected_, *selected_ + 1}};
}

void Grid::mark(const std::u16string& needle) {
  if (needle == needle_) return;
  needle_ = needle;
  InvalidateRect(window_, nullptr, FALSE);
}

// Keys that select several rows; true when it was one.
bool Grid::selectionKey(WPARAM key) {
  const bool control = GetKeyState(VK_CONTROL) < 0, shift = GetKeyState(VK_SHIFT) < 0;
  if (GetKeyState(VK_MENU) < 0 || !selected_ || !(control || shift)) return false;
  const bool moves =
      key == VK_UP || key == VK_DOWN || key == VK_PRIOR || key == VK_NEXT || key == VK_HOME || key == VK_END;
  const bool all = control && key == 'A', toggles = control && key == VK_SPACE;
  if (!moves && !all && !toggles) return false;
  moved_ = true;
  const std::vector<list::Stretch> stretches = selection_.stretches();
  const auto caret = selected_;
  if (all) selection_.all(size());
  if (toggles) selection_.toggle(*selected_);
  if (moves) moveCaret(targetOf(key));
  if (moves && shift) selection_.extend(*selected_, control);
  selectionMoved(stretches, caret != selected_);
  if (caret != selected_) InvalidateRect(window_, nullptr, FALSE);
  return true;
}

std::size_t Grid::targetOf(WPARAM key) const {
  const std::size_t last = size() - 1, at = *selected_;
  const auto page = static_cast<std::size_t>(std::max(2, ListView_GetCountPerPage(window_))) - 1;
  switch (key) {
    case VK_UP:
      return at > 0 ? at - 1 : 0;
    case VK_PRIOR:
      return at > page ? at - page : 0;
    case VK_DOWN:
      return std::min(last, at + 1);
    case VK_NEXT:
      return std::min(last, at + page);
    case VK_HOME:
      return 0;
    default:
      return last;
  }
}

}  // namespace vordane::window::win32
