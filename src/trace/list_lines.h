// The entries of an exchange's list as lines of a trace, one line for many entries. There are hundreds of
// thousands of them, so each costs a few copies into memory that is there already. One thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "trace/json_text.h"

namespace vordane::trace {

class ListLines {
 public:
  // The values of an entry, in the order in which they are read: CMD, FirstData, SecondData, ExtraData.
  static constexpr int columns = 4;
  static constexpr int entriesOfLine = 1024;
  static constexpr std::size_t longestText = 65'536;  // characters

  ListLines() = default;
  ListLines(const ListLines&) = delete;
  ListLines& operator=(const ListLines&) = delete;

  // A line is open: entries of `object` are being read.
  bool isOpen() const { return object_ != 0; }
  // Whether the value goes on with the line that is open. Otherwise that one is to be ended first.
  bool takes(std::int64_t object, int column, std::int16_t index, std::size_t length) const {
    if (object != object_ || static_cast<std::size_t>(end_ - at_) < length * longestOfCharacter + ofFraming)
      return false;
    if (entryOpen_ && index == index_ && column >= next_) return true;
    return index == index_ + 1 && entries_ < entriesOfLine;
  }
  void begin(Moment at, std::int64_t object, std::int16_t index);
  // A value of the open line; `text` is at most `longestText` long.
  void add(int column, std::int16_t index, std::u16string_view text) noexcept {
    if (!entryOpen_ || index != index_ || column < next_) beginEntry(index);
    if (next_ < column) put(column - next_);
    at_ = putJson(text, at_);
    ++values_;
    next_ = column + 1;
    *at_++ = next_ < columns ? ',' : ']';
    entryOpen_ = next_ < columns;
  }
  // Ends the line; it is valid until the next one begins.
  std::string_view end() noexcept;
  std::size_t values() const { return values_; }  // of the line

 private:
  static constexpr std::size_t room = 1 << 20, ofFraming = 256;

  void put(std::string_view text) noexcept;
  void put(int unread) noexcept;  // so many nulls, each with a comma
  void beginEntry(std::int16_t index) noexcept;
  void endEntry() noexcept;

  std::vector<char> buffer_ = std::vector<char>(room);
  char* at_ = buffer_.data();
  char* const end_ = buffer_.data() + room;
  std::int64_t object_ = 0;  // of the open line; 0: none is
  bool entryOpen_ = false;
  std::int16_t index_ = 0;
  int next_ = 0;  // the column that the open entry comes to
  int entries_ = 0;
  std::size_t values_ = 0;
};

}  // namespace vordane::trace
