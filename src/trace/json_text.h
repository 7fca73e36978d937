// Texts and moments as they stand in a line of a trace. Pure; any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace vordane::trace {

// Microseconds since 1970-01-01, UTC.
using Moment = std::int64_t;

// Appends `text` as a JSON string, in quotes. Nothing of it is lost: half of a character beyond the basic
// plane becomes "\udXXX", a control character "\u00XX".
void appendJson(std::u16string_view text, std::string& out);
// The same into memory that holds `longestOfCharacter` bytes for each character and two; returns its end.
char* putJson(std::u16string_view text, char* out) noexcept;
inline constexpr std::size_t longestOfCharacter = 6;

// Appends "YYYY-MM-DDTHH:MM:SS.ffffffZ", without quotes.
void appendMoment(Moment moment, std::string& out);

// "YYYYMMDD-HHMMSS": moments in the order of their texts.
std::string stampOf(Moment moment);

// "0x8000ffff".
std::string hexadecimal(std::int32_t code);

// Appends an integer's digits.
void appendNumber(std::int64_t number, std::string& out);

}  // namespace vordane::trace
