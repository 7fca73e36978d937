#include "trace/json_text.h"

#include <bit>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstring>

namespace vordane::trace {
namespace {

static_assert(std::endian::native == std::endian::little, "four characters at once are read as they lie");

constexpr std::uint64_t eachOf(std::uint64_t character) {
  return character * 0x0001'0001'0001'0001U;
}
constexpr std::uint64_t highest = eachOf(0x8000);

// Whether none of the four, each below 0x80, is `character`.
constexpr bool without(std::uint64_t four, char16_t character) {
  return ((((four ^ eachOf(character)) | highest) - eachOf(1)) & highest) == highest;
}

// Whether all four stand in a JSON string as they are.
constexpr bool isPlain(std::uint64_t four) {
  return (four & eachOf(0xFF80)) == 0 && (((four | highest) - eachOf(0x20)) & highest) == highest &&
         without(four, u'"') && without(four, u'\\');
}

// The low bytes of the four.
constexpr std::uint32_t narrowed(std::uint64_t four) {
  const std::uint64_t pairs = (four | (four >> 8U)) & 0x0000'FFFF'0000'FFFFU;
  return static_cast<std::uint32_t>(pairs | (pairs >> 16U));
}

constexpr bool isHigh(char16_t unit) {
  return unit >= 0xD800 && unit < 0xDC00;
}
constexpr bool isLow(char16_t unit) {
  return unit >= 0xDC00 && unit < 0xE000;
}

char* putEscaped(char16_t unit, char* out) {
  constexpr char digits[] = "0123456789abcdef";
  *out++ = '\\';
  *out++ = 'u';
  for (unsigned shift = 16; shift > 0;) *out++ = digits[(unit >> (shift -= 4U)) & 15U];
  return out;
}

char* putUtf8(char32_t character, char* out) {
  const auto rest = [&](unsigned shift) {
    *out++ = static_cast<char>(0x80U | ((static_cast<unsigned>(character) >> shift) & 0x3FU));
  };
  if (character < 0x800) {
    *out++ = static_cast<char>(0xC0U | (static_cast<unsigned>(character) >> 6U));
  } else if (character < 0x10000) {
    *out++ = static_cast<char>(0xE0U | (static_cast<unsigned>(character) >> 12U));
    rest(6);
  } else {
    *out++ = static_cast<char>(0xF0U | (static_cast<unsigned>(character) >> 18U));
    rest(12);
    rest(6);
  }
  rest(0);
  return out;
}

// Writes the character that begins at `at`, and leads `at` behind it.
char* putCharacter(const char16_t*& at, const char16_t* end, char* out) {
  const char16_t unit = *at++;
  if (unit == u'"' || unit == u'\\') {
    *out++ = '\\';
    *out++ = static_cast<char>(unit);
    return out;
  }
  if (unit < 0x20) return putEscaped(unit, out);
  if (unit < 0x80) {
    *out++ = static_cast<char>(unit);
    return out;
  }
  if (isHigh(unit) && at != end && isLow(*at)) {
    const char32_t low = *at++ - 0xDC00U;
    return putUtf8(0x10000U + ((static_cast<char32_t>(unit) - 0xD800U) << 10U) + low, out);
  }
  return isHigh(unit) || isLow(unit) ? putEscaped(unit, out) : putUtf8(unit, out);
}

struct Parts {
  std::chrono::year_month_day day;
  std::int64_t second, micro;  // of the day, of the second
};

Parts partsOf(Moment moment) {
  using std::chrono::microseconds;
  const std::chrono::sys_time<microseconds> time{microseconds(moment)};
  const auto day = std::chrono::floor<std::chrono::days>(time);
  const std::int64_t micros = (time - day).count();
  return {std::chrono::year_month_day(day), micros / 1'000'000, micros % 1'000'000};
}

}  // namespace

char* putJson(std::u16string_view text, char* out) noexcept {
  const char16_t* at = text.data();
  const char16_t* const end = at + text.size();
  *out++ = '"';
  while (at != end) {
    while (end - at >= 4) {
      std::uint64_t four = 0;
      std::memcpy(&four, at, sizeof four);
      if (!isPlain(four)) break;
      const std::uint32_t bytes = narrowed(four);
      std::memcpy(out, &bytes, sizeof bytes);
      at += 4;
      out += 4;
    }
    // Up to the next four that may be plain.
    for (int i = 0; i < 4 && at != end; ++i) out = putCharacter(at, end, out);
  }
  *out++ = '"';
  return out;
}

void appendJson(std::u16string_view text, std::string& out) {
  const std::size_t before = out.size();
  out.resize(before + text.size() * longestOfCharacter + 2);
  out.resize(static_cast<std::size_t>(putJson(text, out.data() + before) - out.data()));
}

void appendMoment(Moment moment, std::string& out) {
  const Parts parts = partsOf(moment);
  char text[40];
  const int length = std::snprintf(
      text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02d.%06dZ", static_cast<int>(parts.day.year()),
      static_cast<unsigned>(parts.day.month()), static_cast<unsigned>(parts.day.day()),
      static_cast<int>(parts.second / 3600), static_cast<int>(parts.second / 60 % 60),
      static_cast<int>(parts.second % 60), static_cast<int>(parts.micro));
  out.append(text, static_cast<std::size_t>(length));
}

std::string stampOf(Moment moment) {
  std::string text;
  appendMoment(moment, text);
  std::string stamp;
  for (const char character : text.substr(0, 19)) {
    if (character == 'T') stamp += '-';
    if (character >= '0' && character <= '9') stamp += character;
  }
  return stamp;
}

std::string hexadecimal(std::int32_t code) {
  std::string text = "0x";
  for (int shift = 28; shift >= 0; shift -= 4)
    text += "0123456789abcdef"[(static_cast<std::uint32_t>(code) >> static_cast<unsigned>(shift)) & 15U];
  return text;
}

void appendNumber(std::int64_t number, std::string& out) {
  char text[24];
  const auto end = std::to_chars(text, text + sizeof text, number).ptr;
  out.append(text, static_cast<std::size_t>(end - text));
}

}  // namespace vordane::trace
