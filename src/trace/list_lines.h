// The entries of an exchange's list as lines of a trace: one line for many entries, written as they are read.
// Used by the thread that writes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "trace/json_text.h"

namespace vordane::trace {

class ListLines {
 public:
  // The values of an entry, in the order in which they are read: CMD, FirstData, SecondData, ExtraData.
  static constexpr int columns = 4;

  explicit ListLines(std::string& out) : out_(out) {}

  // Entries of another object, or later ones of the same, begin here.
  void begin(Moment at, std::int64_t object);
  void read(int column, std::int16_t index, std::u16string_view text);
  // Ends the line that is open; true when there was one.
  bool end();
  bool lineIsOpen() const { return lineOpen_; }
  std::size_t lines() const { return lines_; }  // ended since the last `forget`
  void forget() { lines_ = 0; }

 private:
  void beginLine(std::int16_t index);
  void endEntry();

  std::string& out_;
  Moment at_ = 0;
  std::int64_t object_ = 0;
  bool lineOpen_ = false, entryOpen_ = false;
  std::int16_t index_ = 0;
  int next_ = 0;  // the column that the open entry comes to
  std::size_t lines_ = 0;
};

}  // namespace vordane::trace
