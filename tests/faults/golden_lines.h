// Files of expected descriptions: one fault a line, the columns separated by one tab. Lines that begin with
// # are comments.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "text/text.h"
#include "text/utf8.h"

namespace vordane::faults {

struct GoldenLine {
  std::string what;
  std::string width;  // wide, narrow or both
  std::u16string record, first, second;
  std::string description;  // one line: CR and LF as \r and \n

  bool holdsFor(bool wide) const { return width != (wide ? "narrow" : "wide"); }
};

// A line with another number of columns fails the test.
inline std::vector<GoldenLine> goldenLines(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::vector<GoldenLine> lines;
  for (std::string text; std::getline(file, text);) {
    if (text.starts_with('#')) continue;
    const std::vector<std::u16string> fields = text::split(text::fromUtf8(text), u'\t');
    EXPECT_EQ(fields.size(), 6u) << text;
    if (fields.size() != 6) continue;
    lines.push_back({text::toUtf8(fields[0]), text::toUtf8(fields[1]), fields[2], fields[3], fields[4],
                     text::toUtf8(fields[5])});
  }
  EXPECT_FALSE(lines.empty()) << path;
  return lines;
}

inline std::string oneLine(std::u16string_view description) {
  std::string out;
  for (const char character : text::toUtf8(description)) {
    if (character == '\r') {
      out += "\\r";
    } else if (character == '\n') {
      out += "\\n";
    } else {
      out += character;
    }
  }
  return out;
}

// As the records and the tables write it.
inline std::string kindName(int kind) {
  constexpr char digits[] = "0123456789ABCDEF";
  return {'k', 'i', 'n', 'd', ' ', digits[kind / 16], digits[kind % 16]};
}

}  // namespace vordane::faults
