// Faults with their notes as bytes for other programs, row by row, so that a million need no more room than
// one: files to save, pieces for the clipboard. All in UTF-8. Pure.
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "platform/notes.h"
#include "platform/view.h"

namespace vordane::list {

// What a file says besides its rows.
struct Sheet {
  std::u16string title;                        // of the window
  std::u16string exchange, received;           // its name, and when its list came
  std::vector<std::u16string> words;           // of the lamps, of how many rows are shown
  std::array<std::u16string, 6> headings;      // of the columns, as GridRow has them
  std::size_t stored = 0;                      // rows of the exchange, shown or not
  std::array<std::u16string, 3> noteHeadings;  // of a note's text, of who wrote it and when
  std::u16string noteBegin;                    // before a note in a line of its own: by {1}, at {2}
};

class RowWriter {
 public:
  virtual ~RowWriter() = default;
  // Each behind what `out` holds.
  virtual void begin(std::string& out) = 0;
  virtual void row(const window::GridRow& row, const database::Note& note, std::string& out) = 0;
  virtual void end(std::string& out) = 0;
};

enum class RowForm {
  csvFile,  // the signature of UTF-8, then as the next
  csv,      // RFC 4180, the headings first; an apostrophe stands before what would run as a formula
  page,     // HTML: a whole page as the screen shows it, to be printed
  json,     // docs/saved-faults.md
  table,    // HTML: the page's table alone
  lines,  // tabs between the columns, line ends within them become a dot; of several rows the headings first
  messages,  // the descriptions whole, each with its note below it, an empty line between two
};
// For that many rows. `sheet` is copied.
std::unique_ptr<RowWriter> makeRowWriter(RowForm form, const Sheet& sheet, std::size_t rows);

}  // namespace vordane::list
