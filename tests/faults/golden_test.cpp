#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "places.h"
#include "recognisable_texts.h"
#include "text/text.h"
#include "text/utf8.h"

namespace vordane::faults {
namespace {

struct Line {
  std::string what;
  std::string width;  // wide, narrow or both
  std::u16string record, first, second;
  std::string description;
};

std::vector<Line> goldenLines() {
  std::ifstream file(test::dataFolder() / "faults/golden.tsv", std::ios::binary);
  std::vector<Line> lines;
  for (std::string text; std::getline(file, text);) {
    if (text.starts_with('#')) continue;
    const std::vector<std::u16string> fields = text::split(text::fromUtf8(text), u'\t');
    EXPECT_EQ(fields.size(), 6u) << text;
    if (fields.size() != 6) continue;
    lines.push_back({text::toUtf8(fields[0]), text::toUtf8(fields[1]), fields[2], fields[3], fields[4],
                     text::toUtf8(fields[5])});
  }
  return lines;
}

// One line: CR and LF as \r and \n.
std::string oneLine(std::u16string_view description) {
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

TEST(Golden, EveryLineIsDecodedToTheLetter) {
  Decoder decode;
  for (const Line& line : goldenLines()) {
    SCOPED_TRACE(line.what + " (" + line.width + ")");
    for (const bool wide : {true, false}) {
      if (line.width == (wide ? "narrow" : "wide")) continue;
      decode.wide = wide;
      EXPECT_EQ(oneLine(decode(line.record, line.first, line.second)), line.description);
    }
  }
}

TEST(Golden, EveryKindHasALine) {
  std::set<int> kinds;
  for (const Line& line : goldenLines()) kinds.insert(text::hexField(text::left(line.record, 2)));
  for (const FaultKind& row : faultKinds) EXPECT_TRUE(kinds.contains(row.kind)) << static_cast<int>(row.kind);
}

TEST(Golden, EveryLineWithAWidthHasItsPartner) {
  std::multiset<std::string> wide, narrow;
  for (const Line& line : goldenLines()) {
    if (line.width == "wide") wide.insert(line.what);
    if (line.width == "narrow") narrow.insert(line.what);
  }
  EXPECT_FALSE(wide.empty());
  EXPECT_EQ(wide, narrow);
}

}  // namespace
}  // namespace vordane::faults
