// Numbers in texts, as the exchange writes them and as the window shows them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vordane::text {

// The value of the leading hexadecimal digits as a 16-bit signed number ("FFFF" is -1); 0 when the field
// begins with anything else, a blank included, or is empty. Digits beyond what 16 bits hold give 0.
std::int16_t hexField(std::u16string_view field);

// The value of the leading decimal digits, 0 when there are none; a sign is not a digit. Saturates.
std::int32_t decimalField(std::u16string_view field);

// Decimal without padding; negative numbers with "-".
std::u16string decimal(std::int64_t value);

// At least `digits` digits, padded with zeros: the patterns "00" and "000".
std::u16string decimalPadded(std::int64_t value, int digits);

// A whole text as a decimal number with an optional sign and surrounding blanks; nothing when it is
// anything else or does not fit 32 bits.
std::optional<std::int32_t> parseInteger(std::u16string_view text);

bool isHexDigit(char16_t character);
bool isDecimalDigit(char16_t character);
int hexDigitValue(char16_t character);

}  // namespace vordane::text
