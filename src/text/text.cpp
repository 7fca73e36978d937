#include "text/text.h"

#include <cstring>

#include <algorithm>

namespace vordane::text {

std::u16string_view trim(std::u16string_view text) {
  const auto first = text.find_first_not_of(u' ');
  if (first == std::u16string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(u' ') - first + 1);
}

std::u16string_view middle(std::u16string_view text, std::size_t start, std::size_t length) {
  if (start < 1 || start > text.size()) return {};
  return text.substr(start - 1, length);
}

std::u16string_view left(std::u16string_view text, std::size_t length) {
  return text.substr(0, length);
}

std::u16string_view right(std::u16string_view text, std::size_t length) {
  return text.size() <= length ? text : text.substr(text.size() - length);
}

std::u16string_view beginning(std::u16string_view text, std::size_t most) {
  const bool parted = most > 0 && text.size() > most && text[most - 1] >= 0xD800 && text[most - 1] < 0xDC00;
  return left(text, parted ? most - 1 : most);
}

std::vector<std::u16string> split(std::u16string_view text, char16_t separator) {
  std::vector<std::u16string> pieces;
  if (text.empty()) return pieces;
  for (;;) {
    const auto end = text.find(separator);
    pieces.emplace_back(text.substr(0, end));
    if (end == std::u16string_view::npos) return pieces;
    text.remove_prefix(end + 1);
  }
}

std::vector<std::u16string_view> lines(std::u16string_view text) {
  std::vector<std::u16string_view> found;
  for (;;) {
    const std::size_t end = text.find_first_of(crlf);
    found.push_back(text.substr(0, end));
    if (end == text.npos) return found;
    text.remove_prefix(end + (text.substr(end, 2) == crlf ? 2 : 1));
  }
}

bool startsWith(std::u16string_view text, std::u16string_view prefix) {
  return text.starts_with(prefix);
}

bool contains(std::u16string_view text, std::u16string_view part) {
  return text.find(part) != std::u16string_view::npos;
}

std::u16string toLower(std::u16string_view text) {
  std::u16string result(text);
  std::transform(result.begin(), result.end(), result.begin(), lower);
  return result;
}

std::u16string toUpper(std::u16string_view text) {
  std::u16string result(text);
  std::transform(result.begin(), result.end(), result.begin(), upper);
  return result;
}

std::u16string toUpperPath(std::u16string_view path) {
  std::u16string result(path);
  std::transform(result.begin(), result.end(), result.begin(), upperInPath);
  return result;
}

bool equalIgnoringCase(std::u16string_view a, std::u16string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char16_t x, char16_t y) { return x == y || lower(x) == lower(y); });
}

std::size_t find(std::u16string_view text, char16_t character) {
  // The library finds bytes many at a time.
  const char* const first = reinterpret_cast<const char*>(text.data());
  const char* const end = first + text.size() * sizeof(char16_t);
  for (const char* at = first; at != end; ++at) {
    at = static_cast<const char*>(std::memchr(at, character & 0xFF, static_cast<std::size_t>(end - at)));
    if (at == nullptr) break;
    const auto position = static_cast<std::size_t>(at - first) / sizeof(char16_t);
    if (text[position] == character) return position;
  }
  return std::u16string_view::npos;
}

}  // namespace vordane::text
