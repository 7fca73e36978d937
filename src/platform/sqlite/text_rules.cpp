#include "platform/sqlite/text_rules.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "text/blanks.h"
#include "text/text.h"

namespace vordane::sqlite {
namespace {

inline char16_t fold(char16_t character) {
  if (character < 0x80) return character >= u'A' && character <= u'Z' ? char16_t(character + 32) : character;
  return text::lower(character);
}

// Four characters at once: what is stored is nearly always plain ASCII.
static_assert(std::endian::native == std::endian::little);
constexpr std::size_t together = 4;
constexpr std::uint64_t eachOfFour = 0x0001000100010001U;

std::uint64_t fourAt(const char16_t* characters) {
  std::uint64_t word = 0;
  std::memcpy(&word, characters, sizeof word);
  return word;
}

constexpr bool areAscii(std::uint64_t four) {
  return (four & (0xFF80U * eachOfFour)) == 0;
}

// Adding reaches bit 7 from 'A' on, and from behind 'Z' on; bit 7 moved to bit 5 is what makes a letter
// small.
constexpr std::uint64_t foldAscii(std::uint64_t four) {
  const std::uint64_t fromA = four + (0x80U - u'A') * eachOfFour;
  const std::uint64_t behindZ = four + (0x7FU - u'Z') * eachOfFour;
  return four + ((fromA & ~behindZ & (0x80U * eachOfFour)) >> 2);
}
static_assert(foldAscii(0x0040'0041'005A'005B) == 0x0040'0061'007A'005B);

// Where two texts begin to differ, as far as can be told without folding: never inside a pair.
std::size_t samePrefix(std::u16string_view a, std::u16string_view b) {
  const std::size_t shorter = std::min(a.size(), b.size());
  std::size_t i = 0;
  while (i + together <= shorter && fourAt(a.data() + i) == fourAt(b.data() + i)) i += together;
  while (i < shorter && a[i] == b[i]) ++i;
  return i > 0 && (a[i - 1] & 0xFC00) == 0xD800 ? i - 1 : i;
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
  a = text::withoutTrailingBlanks(a);
  b = text::withoutTrailingBlanks(b);
  std::size_t i = samePrefix(a, b), k = i;
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
  a = text::withoutTrailingBlanks(a);
  b = text::withoutTrailingBlanks(b);
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char16_t x, char16_t y) { return x == y || fold(x) == fold(y); });
}

void appendSortKey(std::u16string_view text, std::string& key) {
  text = text::withoutTrailingBlanks(text);
  for (std::size_t i = 0; i < text.size();) {
    const std::uint64_t four = i + together <= text.size() ? fourAt(text.data() + i) : 0xFFFF;
    if (!areAscii(four)) {
      appendPoint(pointAt(text, i), key);
      continue;
    }
    const std::uint64_t folded = foldAscii(four);
    const char bytes[together] = {static_cast<char>(folded), static_cast<char>(folded >> 16),
                                  static_cast<char>(folded >> 32), static_cast<char>(folded >> 48)};
    key.append(bytes, together);
    i += together;
  }
}

void appendField(std::optional<std::u16string_view> text, std::string& key) {
  if (!text) return;
  key.push_back('\1');
  appendSortKey(*text, key);
}

FoldedNeedle::FoldedNeedle(std::u16string_view needle)
    : needle_(needle),
      first_{needle.front(), text::upper(needle.front())},
      last_{needle.back(), text::upper(needle.back())},
      mayBeInteger_(needle.find_first_not_of(u"-0123456789") == needle.npos) {}

// Only where its first and its last character stand it is looked at whole, and where there are characters
// beyond ASCII. No branch inside: the compiler looks at eight at once.
bool FoldedNeedle::mayStand(const char16_t* from, const char16_t* to) const {
  std::uint16_t any = 0;
  for (std::size_t i = 0; i < lookedAtOnce; ++i) {
    const char16_t begins = from[i], ends = to[i];
    const int first = (begins == first_.small) | (begins == first_.large);
    const int last = (ends == last_.small) | (ends == last_.large);
    any = static_cast<std::uint16_t>(any | (first & last) | ((begins | ends) & 0xFF80));
  }
  return any != 0;
}

bool FoldedNeedle::isIn(std::u16string_view text) const {
  if (text.size() < needle_.size()) return false;
  const std::size_t places = text.size() - needle_.size() + 1, behind = needle_.size() - 1;
  std::size_t i = 0;
  for (; i + lookedAtOnce <= places; i += lookedAtOnce) {
    const char16_t* const from = text.data() + i;
    if (mayStand(from, from + behind) && standsWithin(text, i, i + lookedAtOnce)) return true;
  }
  return standsWithin(text, i, places);
}

bool FoldedNeedle::standsWithin(std::u16string_view text, std::size_t begin, std::size_t end) const {
  for (; begin < end; ++begin)
    if (stands(text, begin)) return true;
  return false;
}

bool FoldedNeedle::stands(std::u16string_view text, std::size_t at) const {
  for (std::size_t i = 0; i < needle_.size(); ++i)
    if (fold(text[at + i]) != needle_[i]) return false;
  return true;
}

void FoldedHash::mix(std::uint64_t word) {
  state_ = (state_ ^ word) * 0xFF51AFD7ED558CCDU;
  state_ ^= state_ >> 32;
}

void FoldedHash::addNumber(std::int64_t number) {
  mix(static_cast<std::uint64_t>(number));
}

void FoldedHash::addText(std::u16string_view text) {
  text = text::withoutTrailingBlanks(text);
  std::uint64_t word = 0;
  std::size_t i = 0;
  for (; i + together <= text.size(); i += together) {
    word = fourAt(text.data() + i);
    if (areAscii(word)) {
      mix(foldAscii(word));
      continue;
    }
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
