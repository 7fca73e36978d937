// Notes to faults: the one of the selected fault is shown, and written when the person asks for it. What is
// being written belongs to the fault that it was begun for, whatever is selected meanwhile, and stays until
// it is kept or given up; what keeps it from being kept is said below it. It rests while an answer is waited
// for or a box stands, and where nobody looks there is nothing of it. One thread.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "platform/database.h"
#include "platform/windows/window/grid.h"
#include "platform/windows/window/note_bar.h"

namespace vordane::window::win32 {

class NoteWork {
 public:
  struct Around {
    std::function<ListUse()> use;                    // what the form allows now
    std::function<database::RowList*()> rows;        // of the exchange shown; null for none
    std::function<void()> written;                   // a note is another one than it was
    std::function<void()> placeAgain;                // the bar needs another place
    std::function<void()> barMade;                   // its windows are there
    NoteBar::Tip tip;                                // gives a window its tool tip
    std::function<void(const std::u16string&)> say;  // in the status line
  };

  NoteWork(Grid& grid, ViewTexts& texts) : grid_(grid), texts_(texts) {}
  void create(HWND parent, Around around);

  void look();    // another fault may be selected, or its note may be another
  void write();   // the person asks for it
  void keep();    // what is being written
  bool escape();  // the key Esc: true when there was something to end
  NoteBar& bar() { return bar_; }
  const NoteBar& bar() const { return bar_; }

 private:
  database::Notes* notes();
  std::u16string reason();
  void begin(database::Notes& notes, std::int64_t fault);
  void put(database::Notes& notes, const database::Note& now);
  void changedMeanwhile(database::Notes& notes);
  void end();
  std::u16string failed(const database::DatabaseError& error) const;
  std::u16string heading(const database::Note& note) const;

  Grid& grid_;
  ViewTexts& texts_;
  Around around_;
  NoteBar bar_;
  std::int64_t fault_ = 0;  // that is written to, and what there was
  database::Note before_;
};

}  // namespace vordane::window::win32
