// Numbers in texts, as the exchange writes them and as the window shows them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vordane::text {

// The value of the leading hexadecimal digits as a 16-bit signed number ("FFFF" is -1); 0 when the field
// begins with anything else, a blank included, or is empty. Digits beyond what 16 bits hold give 0.
constexpr std::int16_t hexField(std::u16string_view field);

// The value of the leading decimal digits, 0 when there are none; a sign is not a digit. Saturates.
std::int32_t decimalField(std::u16string_view field);

// Decimal without padding; negative numbers with "-".
std::u16string decimal(std::int64_t value);

// Eight digits behind "0x", as error numbers are written.
std::u16string hexadecimal(std::uint32_t value);

// At least `digits` digits, padded with zeros: the patterns "00" and "000".
std::u16string decimalPadded(std::int64_t value, int digits);

// A whole text as a decimal number with an optional sign and surrounding blanks; nothing when it is
// anything else or does not fit 32 bits.
std::optional<std::int32_t> parseInteger(std::u16string_view text);

constexpr bool isDecimalDigit(char16_t character) {
  return character >= u'0' && character <= u'9';
}

// -1 for anything else.
constexpr int hexDigitValue(char16_t character) {
  if (isDecimalDigit(character)) return character - u'0';
  if (character >= u'A' && character <= u'F') return character - u'A' + 10;
  if (character >= u'a' && character <= u'f') return character - u'a' + 10;
  return -1;
}

constexpr bool isHexDigit(char16_t character) {
  return hexDigitValue(character) >= 0;
}

// Decoding millions of fields, this one is worth being seen by the compiler.
constexpr std::int16_t hexField(std::u16string_view field) {
  std::uint32_t value = 0;
  for (const char16_t character : field) {
    const int digit = hexDigitValue(character);
    if (digit < 0) break;
    value = value * 16 + static_cast<std::uint32_t>(digit);
    if (value > 0xFFFF) return 0;
  }
  return static_cast<std::int16_t>(static_cast<std::uint16_t>(value));
}

}  // namespace vordane::text
