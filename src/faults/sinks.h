// Where the composed text goes. The plain sink appends to one string and nothing else; the explaining sink
// keeps each piece with the characters of the data text that it was read from.
#pragma once

#include <algorithm>
#include <cstring>
#include <initializer_list>
#include <string>
#include <string_view>
#include <type_traits>

#include "faults/cFaultDisplay.h"
#include "faults/data_text.h"

namespace vordane::faults {

using Sources = std::initializer_list<Field>;
using Parts = std::initializer_list<std::u16string_view>;

// Most pieces are a few characters, for which the library's copy costs more in its call than in its work:
// two blocks of a fixed size, which may overlap, are single instructions.
inline void copyCharacters(const char16_t* from, std::size_t count, char16_t* to) {
  const auto twoBlocks = [&](auto block) {
    std::memcpy(to, from, block * sizeof(char16_t));
    std::memcpy(to + count - block, from + count - block, block * sizeof(char16_t));
  };
  if (count > 32) {
    std::memcpy(to, from, count * sizeof(char16_t));
  } else if (count >= 16) {
    twoBlocks(std::integral_constant<std::size_t, 16>());
  } else if (count >= 8) {
    twoBlocks(std::integral_constant<std::size_t, 8>());
  } else if (count >= 4) {
    twoBlocks(std::integral_constant<std::size_t, 4>());
  } else {
    for (std::size_t i = 0; i < count; ++i) to[i] = from[i];
  }
}

// Collects in a buffer of its own, which holds nearly every description, so that the string grows once
// and to the right size.
class PlainSink {
 public:
  explicit PlainSink(std::u16string& result) : result_(result) { result_.clear(); }

  void character(char16_t character) {
    if (used_ == capacity) return spill({&character, 1});
    buffer_[used_++] = character;
  }
  void constant(std::u16string_view text) {
    if (text.size() > capacity - used_) return spill(text);
    copyCharacters(text.data(), text.size(), buffer_ + used_);
    used_ += text.size();
  }
  void joined(std::u16string_view text, Parts) { constant(text); }
  void value(std::u16string_view text, Sources) { constant(text); }
  void whole(const DataText& data) {
    constant(data.first());
    character(u' ');
    constant(data.second());
  }
  void finish() { result_.append(buffer_, used_); }
  void drop() { result_.clear(); }

 private:
  static constexpr std::size_t capacity = 512;

  void spill(std::u16string_view text) {
    result_.reserve(result_.size() + used_ + text.size() + capacity);
    result_.append(buffer_, used_).append(text);
    used_ = 0;
  }

  std::u16string& result_;
  std::size_t used_ = 0;
  char16_t buffer_[capacity];
};

class ExplainingSink {
 public:
  ExplainingSink(cFaultDisplay::Pieces& pieces, const DataText& data) : pieces_(pieces), size_(data.size()) {}

  void character(char16_t character) { constant({&character, 1}); }
  void constant(std::u16string_view text) { pieces_.push_back({std::u16string(text), {}}); }
  void joined(std::u16string_view, Parts parts) {
    for (const std::u16string_view part : parts) constant(part);
  }
  void value(std::u16string_view text, Sources sources) {
    pieces_.push_back({std::u16string(text), {}});
    for (const Field source : sources) add(source);
  }
  void whole(const DataText& data) {
    std::u16string text(data.first());
    text.append(1, u' ').append(data.second());
    pieces_.push_back({std::move(text), {{0, data.size()}}});
  }
  void finish() {}
  void drop() { pieces_.clear(); }

 private:
  // Only the characters that are there: a short data text gives values that came from nothing.
  void add(Field source) {
    const std::size_t begin = source.start - 1U;
    const std::size_t end = std::min<std::size_t>(begin + source.length, size_);
    if (begin < end) pieces_.back().sources.push_back({begin, end});
  }

  cFaultDisplay::Pieces& pieces_;
  std::size_t size_;
};

}  // namespace vordane::faults
