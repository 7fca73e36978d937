// Where the composed text goes. The plain sink appends to one string and nothing else; the explaining sink
// keeps each piece with the characters of the data text that it was read from.
#pragma once

#include <algorithm>
#include <initializer_list>
#include <string>
#include <string_view>

#include "faults/cFaultDisplay.h"
#include "faults/data_text.h"

namespace vordane::faults {

using Sources = std::initializer_list<Field>;

class PlainSink {
 public:
  explicit PlainSink(std::u16string& result) : result_(result) {}

  void constant(std::u16string_view text) { result_.append(text); }
  void value(std::u16string_view text, Sources) { result_.append(text); }
  void whole(const DataText& data) {
    result_.append(data.first());
    result_.push_back(u' ');
    result_.append(data.second());
  }
  void clear() { result_.clear(); }

 private:
  std::u16string& result_;
};

class ExplainingSink {
 public:
  ExplainingSink(cFaultDisplay::Pieces& pieces, const DataText& data) : pieces_(pieces), size_(data.size()) {}

  void constant(std::u16string_view text) { pieces_.push_back({std::u16string(text), {}}); }
  void value(std::u16string_view text, Sources sources) {
    pieces_.push_back({std::u16string(text), {}});
    for (const Field source : sources) add(source);
  }
  void whole(const DataText& data) {
    std::u16string text(data.first());
    text.append(1, u' ').append(data.second());
    pieces_.push_back({std::move(text), {{0, data.size()}}});
  }
  void clear() { pieces_.clear(); }

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
