// Copying and saving of faults: what a person asks for, gathered or written in pieces between messages, and a
// word about it in the status line. One at a time; other rows give it up. One thread; the desk outlives it.
#pragma once

#include <windows.h>

#include <functional>
#include <optional>
#include <string>

#include "list/copying.h"
#include "list/saving.h"
#include "platform/view.h"

namespace vordane::window::win32 {

class RowOutput {
 public:
  struct Around {
    std::function<ListUse()> use;        // what the form allows now
    std::function<list::Sheet()> sheet;  // what a file says besides its rows
    std::function<void(const std::u16string&, bool onTheWay)> say;
  };

  RowOutput(list::Desk& desk, ViewTexts& texts) : desk_(desk), texts_(texts) {}
  void create(HWND parent, Around around);

  enum class What { rows, csv, message, data };
  void copy(What what, const std::vector<list::Stretch>& rows);
  void save();  // every row shown; asks for the file, and serves messages meanwhile

  bool busy() const { return copying_.has_value() || saving_.has_value() || givenUp_; }
  void work(const std::function<bool()>& again);
  bool escape();  // true when there was something to end
  void giveUp();  // the rows are others; that is said when the list is a person's again
  void forget();  // without a word: the window goes

 private:
  void start();
  void copyOn(const std::function<bool()>& again);
  void saveOn(const std::function<bool()>& again);
  void putThere();
  void end(const std::u16string& words);
  void tellProgress(ViewText which, list::Desk::Progress progress);
  std::u16string dataOf(std::size_t shown, const GridRow& row) const;
  std::u16string savedWords() const;

  list::Desk& desk_;
  ViewTexts& texts_;
  Around around_;
  HWND parent_ = nullptr;
  std::optional<list::Copying> copying_;
  std::optional<list::Saving> saving_;
  std::u16string file_;  // that is saved
  bool gathered_ = false, givenUp_ = false;
  int tries_ = 0;  // to have the clipboard
  ULONGLONG toldAt_ = 0;
};

}  // namespace vordane::window::win32
