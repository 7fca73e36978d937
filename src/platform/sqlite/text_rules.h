// How stored texts compare in a statement: trailing blanks dropped, each character folded to lower case by
// the program's own table, order by code point. The encodings below are part of the files: never change
// them without a new version of the index of events.
#pragma once

#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

namespace vordane::sqlite {

// Below, equal to or above 0. The texts may hold anything, lone surrogates and NULs included.
int compareTexts(std::u16string_view a, std::u16string_view b);
// Character by character.
inline bool isSame(std::u16string_view a, std::u16string_view b) {
  // The library compares characters of this width one by one.
  return a.size() == b.size() &&
         (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(char16_t)) == 0);
}
bool equalTexts(std::u16string_view a, std::u16string_view b);

// Appends bytes whose plain byte order is the order of the folded texts: UTF-8, lone surrogates encoded
// like any other character. Never contains the byte 0xFF.
void appendSortKey(std::u16string_view text, std::string& key);

// The same for a column: nothing for Null, which sorts first.
void appendField(std::optional<std::u16string_view> text, std::string& key);

// Looks for one text, given in lower case and not empty, in others, case not regarded.
class FoldedNeedle {
 public:
  explicit FoldedNeedle(std::u16string_view needle);
  bool isIn(std::u16string_view text) const;
  // Whether it may stand in a whole number.
  bool mayBeInteger() const { return mayBeInteger_; }

 private:
  static constexpr std::size_t lookedAtOnce = 16;
  struct Character {
    char16_t small, large;
  };
  // Whether the needle may stand at one of the places from `from` on; `to` is where its end would be.
  bool mayStand(const char16_t* from, const char16_t* to) const;
  bool standsWithin(std::u16string_view text, std::size_t begin, std::size_t end) const;
  bool stands(std::u16string_view text, std::size_t at) const;

  std::u16string needle_;
  Character first_, last_;
  bool mayBeInteger_;
};

// A 64-bit hash that equal texts share, the same on every system.
class FoldedHash {
 public:
  void addNumber(std::int64_t number);
  void addText(std::u16string_view text);
  void addNull();
  std::int64_t value() const;

 private:
  void mix(std::uint64_t word);
  std::uint64_t state_ = 0x9E3779B97F4A7C15U;
};

}  // namespace vordane::sqlite
