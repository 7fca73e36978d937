// The virtual grid: an owner-data list view that is told only how many rows there are and asks for the ones
// in sight. The list view itself has one selected row, where the keyboard stands, which is the fault that the
// window speaks of; which rows are selected besides is kept here, since a list view walks through all of
// them. One thread; owns its window's fonts, not the window, which dies with its parent.
#pragma once

#include <functional>

#include "list/selection.h"
#include "platform/windows/window/grid_paint.h"
#include "platform/windows/window/watch.h"

namespace vordane::window::win32 {

class Grid {
 public:
  struct Events {
    std::function<void(int column)> headingClicked;  // the column's own index
    std::function<void()> selectionChanged;
    std::function<void()> copy;
    std::function<void()> scrolled;                               // other rows are in sight
    std::function<LRESULT(WPARAM wide, LPARAM low)> objectAsked;  // WM_GETOBJECT; 0: the list view's own
  };

  void create(HWND parent, int id, Events events);
  HWND window() const { return window_; }
  HWND heading() const { return ListView_GetHeader(window_); }
  // The column that the rows are sorted by, -1 for none, and whether downwards.
  std::pair<int, bool> sortMark() const { return {sortColumn_, sortDescending_}; }

  void setLook(const Control* control, int dpi, const Palette& palette);
  void setColours(const Palette& palette);
  void takeInput(bool takes) { takesInput_ = takes; }  // when not, it looks as ever and stays as it is
  void setHeading(int column, const std::u16string& caption);
  // A row and the line of the screen, from 0, that it stands in; others are above and below what is in sight.
  struct Place {
    std::size_t row;
    int line;
  };
  // Instant, however many there are; the first row becomes selected, or the one of `place`.
  void setRows(GridSource* source, std::optional<Place> place = std::nullopt);
  void forgetRows() { rows_.setSource(nullptr); }  // the window goes; the source may go first
  void refresh();                                  // fetches the rows in sight again
  void setSortMark(int column, bool descending);
  void setLayout(const ColumnLayout& layout);
  ColumnLayout layout() const;
  void fit();  // lets the description take what the other columns leave, unless a person gave it a width

  std::size_t size() const { return rows_.size(); }
  std::optional<std::size_t> selected() const { return selected_; }
  const list::Selection& selection() const { return selection_; }
  // Of any row; null when it has gone. Good until the next call.
  const ShownRow* row(std::size_t position) { return rows_.row(position); }
  // Counts how often other rows came: a position means the same fault as long as it stays.
  unsigned generation() const { return generation_; }
  // A choice of the person that comes neither by key nor by mouse.
  enum class Choose { only, add, remove, extend };
  void choose(std::size_t row, Choose how);
  // The selected rows; where a person has taken the selection off all, the one the keyboard stands on.
  std::vector<list::Stretch> chosen() const;
  const ShownRow* selectedRow();
  GridSource* source() const { return rows_.source(); }
  void select(std::size_t row);  // and brings it into sight
  // The source shows other rows now: `row` becomes selected and stands in that line, or where the selected
  // one stood.
  void rowsChanged(std::optional<std::size_t> row, std::optional<int> line = std::nullopt);
  int top() const { return ListView_GetTopIndex(window_); }  // the first row in sight
  int line() const;                                          // of the selected row
  void scrollBy(int lines);
  int rowHeight() const { return look_.rowHeight(); }
  // Since the rows came somebody has selected one of them, or scrolled.
  bool moved() const { return moved_ || (window_ != nullptr && top() > 0); }
  void mark(const std::u16string& needle);  // in small letters; in every row that holds it
  // Which rows are new to the person, and the word for that; `marksChanged` when others are.
  void setNews(std::function<bool(std::size_t)> isNew, std::u16string word);
  void marksChanged();
  std::u16string newWord(std::size_t row) const;  // empty for one that is not new
  POINT menuPlace() const;                        // of the selected row, in screen coordinates
  // For a menu that opens while the press that selects is still under way: whoever shows the selected row is
  // told now.
  void settleSelection();
  bool isOnHeading(POINT place) const;  // in screen coordinates

  // What the parent hands on; true when it was the grid's.
  bool notified(const NMHDR& header, LPARAM message, LRESULT& answer);
  void measure(MEASUREITEMSTRUCT& item) const { item.itemHeight = static_cast<UINT>(look_.rowHeight()); }
  void draw(const DRAWITEMSTRUCT& item);

 private:
  void addColumns();
  void showSortMark(int column);
  void askRowHeightAgain();
  void giveText(NMLVDISPINFOW& asked);
  // What all rows have in common while they are painted.
  struct Places {
    std::array<RECT, columnCount> columns;
    LONG left, right;
    bool focused;
  };
  Places lookAtPlaces() const;
  void itemChanged(const NMLISTVIEW& change);
  bool headingNotified(const NMHDR& header, LPARAM message);
  void widthChanged(int column);
  void unselect();
  void moveCaret(std::size_t row);
  void applyPress();
  bool selectionKey(WPARAM key);
  std::size_t targetOf(WPARAM key) const;
  void selectionMoved(const std::vector<list::Stretch>& before, bool caretMoved);
  void tellOthers(DWORD event) const;
  void selectFirst(std::optional<Place> place);
  void scrollTo(std::size_t row, int line);
  LRESULT moveSelection(UINT message, WPARAM wide, LPARAM low);
  LRESULT rowsHeard(UINT message, WPARAM wide, LPARAM low);
  LRESULT headingHeard(UINT message, WPARAM wide, LPARAM low);

  HWND window_ = nullptr;
  Watch watch_, headingWatch_;
  std::optional<Places> painting_;
  Events events_;
  RowCache rows_;
  GridLook look_;
  Font headFont_;
  int sortColumn_ = -1;
  bool sortDescending_ = false;
  bool filling_ = false, takesInput_ = true;
  // The press under way: what is held with it, and the row that it is on.
  struct Press {
    bool shift, control, right;
    std::optional<std::size_t> row;
  };
  std::optional<Press> press_;
  list::Selection selection_;
  std::u16string needle_, newWord_;
  std::function<bool(std::size_t)> isNew_;
  std::optional<std::size_t> before_;    // selected when the press or key under way began
  std::optional<std::size_t> selected_;  // asking the list view would walk through all its rows
  unsigned generation_ = 0;
  bool fits_ = true, ownWidths_ = false, moved_ = false;
  int paintedTop_ = 0;
};

}  // namespace vordane::window::win32
