#include "text/numbers.h"

#include <limits>

#include "text/text.h"

namespace vordane::text {

std::int32_t decimalField(std::u16string_view field) {
  std::int64_t value = 0;
  for (const char16_t character : field) {
    if (!isDecimalDigit(character)) break;
    value = value * 10 + (character - u'0');
    if (value > std::numeric_limits<std::int32_t>::max()) return std::numeric_limits<std::int32_t>::max();
  }
  return static_cast<std::int32_t>(value);
}

std::u16string decimal(std::int64_t value) {
  return decimalPadded(value, 1);
}

std::u16string decimalPadded(std::int64_t value, int digits) {
  auto rest = value < 0 ? 0 - static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
  std::u16string reversed;
  for (; rest > 0 || static_cast<int>(reversed.size()) < digits; rest /= 10)
    reversed.push_back(static_cast<char16_t>(u'0' + rest % 10));
  if (value < 0) reversed.push_back(u'-');
  return {reversed.rbegin(), reversed.rend()};
}

std::u16string hexadecimal(std::uint32_t value) {
  constexpr std::u16string_view digits = u"0123456789ABCDEF";
  std::u16string text = u"0x";
  for (unsigned shift = 32; shift > 0; shift -= 4) text += digits[(value >> (shift - 4)) & 0xFU];
  return text;
}

std::optional<std::int32_t> parseInteger(std::u16string_view text) {
  text = trim(text);
  const bool negative = !text.empty() && text.front() == u'-';
  if (!text.empty() && (text.front() == u'-' || text.front() == u'+')) text.remove_prefix(1);
  if (text.empty()) return std::nullopt;
  std::int64_t value = 0;
  for (const char16_t character : text) {
    if (!isDecimalDigit(character)) return std::nullopt;
    value = value * 10 + (character - u'0');
    if (value > std::int64_t{1} + std::numeric_limits<std::int32_t>::max()) return std::nullopt;
  }
  if (negative) value = -value;
  if (value > std::numeric_limits<std::int32_t>::max()) return std::nullopt;
  return static_cast<std::int32_t>(value);
}

}  // namespace vordane::text
