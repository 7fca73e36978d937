#include "text/utf8.h"

#include <cstdint>

namespace vordane::text {
namespace {

constexpr char16_t replacement = 0xFFFD;

void appendCodePoint(std::u16string& out, char32_t point) {
  if (point < 0x10000) {
    out.push_back(static_cast<char16_t>(point));
    return;
  }
  point -= 0x10000;
  out.push_back(static_cast<char16_t>(0xD800 + (point >> 10)));
  out.push_back(static_cast<char16_t>(0xDC00 + (point & 0x3FF)));
}

// How many continuation bytes follow a lead byte; -1 when it is no lead byte.
int continuationCount(std::uint8_t lead) {
  if (lead < 0x80) return 0;
  if (lead >= 0xC2 && lead <= 0xDF) return 1;
  if (lead >= 0xE0 && lead <= 0xEF) return 2;
  if (lead >= 0xF0 && lead <= 0xF4) return 3;
  return -1;
}

bool isOverlongOrSurrogate(char32_t point, int count) {
  return (count == 2 && point < 0x800) || (count == 3 && point < 0x10000) || point > 0x10FFFF ||
         (point >= 0xD800 && point <= 0xDFFF);
}

}  // namespace

void appendUtf16(std::string_view text, std::u16string& out) {
  for (std::size_t i = 0; i < text.size();) {
    const auto lead = static_cast<std::uint8_t>(text[i]);
    if (lead < 0x80) {
      out.push_back(lead);
      ++i;
      continue;
    }
    const int count = continuationCount(lead);
    char32_t point = count <= 0 ? lead : lead & (0x3F >> count);
    bool valid = count >= 0 && i + static_cast<std::size_t>(count) < text.size();
    for (int k = 1; valid && k <= count; ++k) {
      const auto byte = static_cast<std::uint8_t>(text[i + static_cast<std::size_t>(k)]);
      valid = (byte & 0xC0) == 0x80;
      point = (point << 6) | (byte & 0x3F);
    }
    if (!valid || isOverlongOrSurrogate(point, count)) {
      out.push_back(replacement);
      ++i;
      continue;
    }
    appendCodePoint(out, point);
    i += static_cast<std::size_t>(count) + 1;
  }
}

void appendUtf8(std::u16string_view text, std::string& out) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t point = text[i];
    if (point >= 0xD800 && point <= 0xDFFF) {
      const bool paired =
          point < 0xDC00 && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF;
      point = paired ? 0x10000 + ((point - 0xD800) << 10) + (text[++i] - 0xDC00u) : replacement;
    }
    if (point < 0x80) {
      out.push_back(static_cast<char>(point));
    } else if (point < 0x800) {
      out.push_back(static_cast<char>(0xC0 | (point >> 6)));
      out.push_back(static_cast<char>(0x80 | (point & 0x3F)));
    } else if (point < 0x10000) {
      out.push_back(static_cast<char>(0xE0 | (point >> 12)));
      out.push_back(static_cast<char>(0x80 | ((point >> 6) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | (point & 0x3F)));
    } else {
      out.push_back(static_cast<char>(0xF0 | (point >> 18)));
      out.push_back(static_cast<char>(0x80 | ((point >> 12) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | ((point >> 6) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | (point & 0x3F)));
    }
  }
}

std::u16string fromUtf8(std::string_view text) {
  std::u16string out;
  out.reserve(text.size());
  appendUtf16(text, out);
  return out;
}

std::string toUtf8(std::u16string_view text) {
  std::string out;
  out.reserve(text.size());
  appendUtf8(text, out);
  return out;
}

}  // namespace vordane::text
