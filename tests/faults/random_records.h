// Random fault records of every kind, well-formed and hostile. The same seed gives the same records
// everywhere: nothing but the generator's own bits decides.
#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <string_view>

namespace vordane::faults {

struct RandomRecord {
  std::u16string kind, first, second;
};

class RandomRecords {
 public:
  explicit RandomRecords(std::uint32_t seed) : random_(seed) {}

  RandomRecord next() { return {kind(), data(), below(3) == 0 ? data() : std::u16string{}}; }

 private:
  std::uint32_t below(std::uint32_t limit) { return static_cast<std::uint32_t>(random_() % limit); }

  std::u16string byte(std::uint32_t value) {
    constexpr std::u16string_view digits = u"0123456789ABCDEF";
    return {digits[value / 16], digits[value % 16]};
  }

  std::u16string kind() {
    if (below(16) == 0) return characters(below(4));
    const std::u16string tail = below(2) == 0 ? u"" : u" MJ ABC0C";
    return byte(below(8) == 0 ? below(256) : below(0x59)) + tail;
  }

  // Mostly small values, so that codes, names and states are met often.
  std::uint32_t value() {
    constexpr std::uint32_t often[] = {0x00, 0x01, 0x02, 0x03, 0x09, 0x0A, 0x0B,
                                       0x10, 0x11, 0x21, 0x63, 0x64, 0x80, 0x81};
    const std::uint32_t way = below(4);
    return way == 0 ? below(256) : way == 1 ? below(20) : often[below(std::size(often))];
  }

  std::u16string data() {
    if (below(6) == 0) return characters(below(30));
    std::u16string text;
    for (std::uint32_t count = below(10); count > 0; --count)
      text += byte(value()) + (count > 1 ? u" " : u"");
    if (!text.empty() && below(5) == 0) text[below(static_cast<std::uint32_t>(text.size()))] = character();
    return text;
  }

  char16_t character() {
    constexpr char16_t some[] =
        u"0123456789ABCDEFabcdefgGzZ  -+&.\t\r\n\\\u0416\u65E5\uFF26\uFF11\xD800\xDFFF";
    return below(8) == 0 ? static_cast<char16_t>(below(0x10000)) : some[below(std::size(some))];
  }

  std::u16string characters(std::uint32_t count) {
    std::u16string text;
    for (; count > 0; --count) text += character();
    return text;
  }

  std::mt19937 random_;
};

}  // namespace vordane::faults
