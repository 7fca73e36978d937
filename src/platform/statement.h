// A statement as a value: its shape and its values, or a text that holds no value. It knows its text, which
// is what an engine that runs texts gets; an engine of our own goes from the values to what it has prepared.
#pragma once

#include <algorithm>
#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

namespace vordane::database {

class StatementPattern;

// A number, or a text that is seen and not kept.
class StatementValue {
 public:
  StatementValue() = default;
  template <std::convertible_to<std::u16string_view> Text>
  StatementValue(const Text& text) : text_(text) {}
  // As wide as the numbers that statements compare with.
  template <std::integral Number>
  requires(sizeof(Number) <= sizeof(std::int32_t)) StatementValue(Number number)
      : isNumber_(true), number_(number) {}

  bool isNumber() const { return isNumber_; }
  std::u16string_view text() const { return text_; }
  std::int32_t number() const { return number_; }

 private:
  bool isNumber_ = false;
  std::int32_t number_ = 0;
  std::u16string_view text_;
};

// What it was made of must outlive it: mostly it is an argument of the call that runs it.
class Statement {
 public:
  template <std::convertible_to<std::u16string_view> Text>
  Statement(const Text& text) : text_(text) {}
  Statement(const StatementPattern& pattern, std::span<const StatementValue> values);

  // Exactly as documented: the values joined in as they come, nothing escaped.
  std::u16string text() const;

  // Whether its values can be taken for what its text says: a text stands in quotes and holds none of that
  // kind, a number stands alone. Of any other, and of one without a pattern, only the text can tell.
  bool isPlain() const { return plain_; }
  const StatementPattern& pattern() const { return *pattern_; }  // of one that is plain
  std::span<const StatementValue> values() const { return {values_.data(), count_}; }

  friend bool operator==(const Statement& statement, std::u16string_view text) {
    return statement.text() == text;
  }

  static constexpr std::size_t mostValues = 6;

 private:
  bool findPlain() const;

  const StatementPattern* pattern_ = nullptr;
  std::u16string_view text_;  // without a pattern
  std::array<StatementValue, mostValues> values_;
  std::size_t count_ = 0;
  bool plain_ = false;
};

}  // namespace vordane::database
