// The data text of a fault: the first data, one blank, the second data. Every field stands at a fixed
// place in it; the two parts are read where they lie and never copied together.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "text/numbers.h"

namespace vordane::faults {

// A field's place: byte n is {3n - 2, 2}, its high digit {3n - 2, 1}, its low digit {3n - 1, 1}.
struct Field {
  std::uint8_t start = 0;  // character, from 1; 0: no field
  std::uint8_t length = 0;
};

// Up to four characters taken from the data text, as they stand there.
class FieldText {
 public:
  void add(char16_t character) { characters_[size_++] = character; }
  std::u16string_view view() const { return {characters_, size_}; }
  int hexadecimal() const { return text::hexField(view()); }
  int decimal() const { return text::decimalField(view()); }

 private:
  char16_t characters_[4] = {};
  std::size_t size_ = 0;
};

class DataText {
 public:
  DataText(std::u16string_view first, std::u16string_view second) : first_(first), second_(second) {}

  std::u16string_view first() const { return first_; }
  std::u16string_view second() const { return second_; }
  std::size_t size() const { return first_.size() + 1 + second_.size(); }

  // `position` from 0, below size().
  char16_t operator[](std::size_t position) const {
    if (position < first_.size()) return first_[position];
    return position == first_.size() ? u' ' : second_[position - first_.size() - 1];
  }

  // Shorter or empty where the data text ends early. Two fields joined hold at most four characters.
  FieldText read(Field field) const {
    FieldText text;
    append(field, text);
    return text;
  }
  FieldText read(Field high, Field low) const {
    FieldText text;
    append(high, text);
    append(low, text);
    return text;
  }

 private:
  void append(Field field, FieldText& text) const {
    if (field.start + field.length - 1U <= first_.size()) {  // nearly always
      for (std::size_t i = 0; i < field.length; ++i) text.add(first_[field.start - 1U + i]);
      return;
    }
    const std::size_t end = std::min<std::size_t>(field.start + field.length - 1U, size());
    for (std::size_t position = field.start - 1U; position < end; ++position) text.add((*this)[position]);
  }

  std::u16string_view first_, second_;
};

}  // namespace vordane::faults
