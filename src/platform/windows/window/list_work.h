// The window's own ways of looking at the stored faults: the desk with the rows shown, the bar with the
// filter, the count of the faults that hold a text, copying and saving, the place in a list that is renewed,
// the latest flood of faults, and the timers by which their work goes on between messages. While an answer is
// waited for or a box stands it rests; where nobody looks there is nothing of it. One thread.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "list/desk.h"
#include "list/finder.h"
#include "list/flood_digest.h"
#include "list/steady.h"
#include "platform/windows/window/filter_bar.h"
#include "platform/windows/window/grid.h"
#include "platform/windows/window/row_output.h"
#include "platform/windows/window/strip.h"

namespace vordane::window::win32 {

class ListWork {
 public:
  struct Around {
    std::function<ListUse()> use;        // what the form allows now
    std::function<void()> placeAgain;    // the bar needs another place, the empty grid another notice
    std::function<void()> countAgain;    // `count` says something else
    std::function<void()> foundAgain;    // `found` does
    std::function<void()> barMade;       // the filter bar's windows are there
    std::function<list::Sheet()> sheet;  // what a saved file says besides its rows
    std::function<void(const std::u16string&, bool onTheWay)> say;  // in the status line
  };

  ListWork(Grid& grid, ViewTexts& texts) : grid_(grid), texts_(texts) {}
  void create(HWND parent, Around around);
  void forgetRows();  // the window goes; the source may go first

  // The rows that the form gives; what is shown of them is the desk's business. Rows of the same exchange are
  // shown where the person is in them, unless they come `byChoice`.
  void setRows(GridSource* rows, const std::u16string& exchange);
  // Rows that come while it runs have been chosen by the person.
  void byChoice(const std::function<void()>& choice);
  void selectionMoved();
  void scrolled();
  const Strip& newer() const { return newer_; }  // that newer faults are above
  const Strip& flood() const { return flood_; }  // that there was a flood of them
  void reword();                                 // the texts say something else now, and so may the rows
  void enable(bool enabled);
  database::RowList* rows() { return desk_.list(); }  // null for none, and while a long step runs
  void noteWritten();                                 // what filter and count make of it is looked for anew
  std::size_t storedSize() const { return desk_.storedSize(); }
  // What the status line says instead of the number of rows.
  std::optional<std::u16string> count();
  // What stands in the empty grid's place since no row passes the filter; empty otherwise.
  std::u16string notice() const;
  HWND showAllButton() const { return showAll_; }
  // The next row shown that holds the text, by its place; as ViewEvents::lookUp, which knows of no filter.
  std::optional<std::size_t> lookUp(ViewEvents& events, const std::u16string& text, LookUpWay way);
  // Marks what holds the text, and counts the rows shown that do; an empty one ends it.
  void seek(const std::u16string& text);
  // What is known of it: the selected row's number among them, or how many there are, or how far it is.
  std::u16string found() const;
  bool counting() const { return finder_.busy(); }  // `found` says how far it is

  // Of the selected rows.
  void copy(RowOutput::What what);
  void save();  // of all rows shown

  list::Desk& desk() { return desk_; }

  FilterBar& bar() { return bar_; }
  const FilterBar& bar() const { return bar_; }
  void open();   // by the person: with the focus in it
  void close();  // and shows every row again
  // The key Esc: true when there was something to end.
  bool escape();
  // The person's choice in the menu of the selected row.
  enum class Only { kind, otherKinds, processor, day };
  // What the menu says of it; empty where the row has no such value.
  std::u16string menuText(Only what, const GridRow& row) const;
  void show(Only what, const GridRow& row);

  // What the parent hands on; true when it was the list's.
  bool command(int id, int code);
  bool timer(WPARAM id);

 private:
  std::optional<Grid::Place> placeIn(GridSource& rows, bool another);
  bool keepsNotes();
  void tellNewer();
  void goToNewest();
  void tellFlood();
  void showFlood();
  void rowsMoveFor(bool strip);
  void follow(const list::Filter& filter);
  void wake();
  void slice();
  void deskSlice(const std::function<bool()>& again);
  void rowsResized();
  void showBar(bool focus);
  void tell();
  int barHeight() const;
  std::u16string message() const;

  Grid& grid_;
  ViewTexts& texts_;
  Around around_;
  HWND parent_ = nullptr, showAll_ = nullptr;
  list::Desk desk_;
  list::Finder finder_{desk_};
  RowOutput output_{desk_, texts_};
  FilterBar bar_;
  list::Steady steady_;
  list::FloodDigest digest_{desk_};
  Strip flood_, newer_;
  bool byChoice_ = false;
  std::optional<int> line_;  // of the screen, to be kept until the filter has chosen among renewed rows
  std::u16string exchange_;  // that the bar speaks of
  bool opened_ = false;      // by the person
  bool resized_ = false;     // the number of rows is not the one that the form knows
  bool longWork_ = false, longCount_ = false;  // more than a slice: progress is told
  list::Mistake mistake_ = list::Mistake::none;
  std::size_t lastSelected_ = 0;  // among the stored rows, also while no row is shown
};

}  // namespace vordane::window::win32
