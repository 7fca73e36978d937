#include "platform/sqlite/text_rules.h"

#include <algorithm>

#include "text/text.h"

namespace vordane::sqlite {
namespace {

inline char16_t fold(char16_t character) {
  if (character < 0x80) return character >= u'A' && character <= u'Z' ? char16_t(character + 32) : character;
  return text::lower(character);
}

std::u16string_view withoutTrailingBlanks(std::u16string_view text) {
  while (!text.empty() && text.back() == u' ') text.remove_suffix(1);
  return text;
}

bool isPair(std::u16string_view text, std::size_t i) {
  return (text[i] & 0xFC00) == 0xD800 && i + 1 < text.size() && (text[i + 1] & 0xFC00) == 0xDC00;
}

void appendPoint(char32_t point, std::string& key) {
  const auto tail = [&](int shift) { key.push_back(static_cast<char>(0x80 | ((point >> shift) & 0x3F))); };
  if (point < 0x80) {
    key.push_back(static_cast<char>(point));
  } else if (point < 0x800) {
    key.push_back(static_cast<char>(0xC0 | (point >> 6)));
    tail(0);
  } else if (point < 0x10000) {
    key.push_back(static_cast<char>(0xE0 | (point >> 12)));
    tail(6), tail(0);
  } else {
    key.push_back(static_cast<char>(0xF0 | (point >> 18)));
    tail(12), tail(6), tail(0);
  }
}

// The code point that begins at `i`; a lone surrogate counts as itself.
char32_t pointAt(std::u16string_view text, std::size_t& i) {
  if (!isPair(text, i)) return fold(text[i++]);
  const char32_t point = 0x10000 + ((text[i] - 0xD800U) << 10) + (text[i + 1] - 0xDC00U);
  i += 2;
  return point;
}

}  // namespace

int compareTexts(std::u16string_view a, std::u16string_view b) {
  a = withoutTrailingBlanks(a);
  b = withoutTrailingBlanks(b);
  std::size_t i = 0, k = 0;
  while (i < a.size() && k < b.size()) {
    if (a[i] == b[k] && (a[i] & 0xF800) != 0xD800) {
      ++i, ++k;
      continue;
    }
    const char32_t x = pointAt(a, i), y = pointAt(b, k);
    if (x != y) return x < y ? -1 : 1;
  }
  return static_cast<int>(i < a.size()) - static_cast<int>(k < b.size());
}

bool equalTexts(std::u16string_view a, std::u16string_view b) {
  a = withoutTrailingBlanks(a);
  b = withoutTrailingBlanks(b);
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char16_t x, char16_t y) { return x == y || fold(x) == fold(y); });
}

void appendSortKey(std::u16string_view text, std::string& key) {
  text = withoutTrailingBlanks(text);
  for (std::size_t i = 0; i < text.size();) appendPoint(pointAt(text, i), key);
}

void FoldedHash::mix(std::uint64_t word) {
  state_ = (state_ ^ word) * 0xFF51AFD7ED558CCDU;
  state_ ^= state_ >> 32;
}

void FoldedHash::addNumber(std::int64_t number) {
  mix(static_cast<std::uint64_t>(number));
}

void FoldedHash::addText(std::u16string_view text) {
  text = withoutTrailingBlanks(text);
  std::uint64_t word = 0;
  std::size_t i = 0;
  for (; i + 4 <= text.size(); i += 4) {
    word = fold(text[i]) | std::uint64_t{fold(text[i + 1])} << 16 | std::uint64_t{fold(text[i + 2])} << 32 |
           std::uint64_t{fold(text[i + 3])} << 48;
    mix(word);
  }
  for (word = 0; i < text.size(); ++i) word = word << 16 | fold(text[i]);
  mix(word);
  mix(text.size() + 1);
}

void FoldedHash::addNull() {
  mix(0);
}

std::int64_t FoldedHash::value() const {
  std::uint64_t x = state_;
  x = (x ^ (x >> 33)) * 0xC4CEB9FE1A85EC53U;
  return static_cast<std::int64_t>(x ^ (x >> 33));
}

}  // namespace vordane::sqlite
