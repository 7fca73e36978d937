#include <gtest/gtest.h>

#include <set>
#include <string>

#include "golden_lines.h"
#include "places.h"
#include "recognisable_texts.h"

namespace vordane::faults {
namespace {

std::vector<GoldenLine> recognisableLines() {
  return goldenLines(test::dataFolder() / "faults/golden.tsv");
}

TEST(Golden, EveryLineIsDecodedToTheLetter) {
  Decoder decode;
  for (const GoldenLine& line : recognisableLines()) {
    SCOPED_TRACE(line.what + " (" + line.width + ")");
    for (const bool wide : {true, false}) {
      if (!line.holdsFor(wide)) continue;
      decode.wide = wide;
      EXPECT_EQ(oneLine(decode(line.record, line.first, line.second)), line.description);
    }
  }
}

TEST(Golden, EveryKindHasALine) {
  std::set<int> kinds;
  for (const GoldenLine& line : recognisableLines()) kinds.insert(text::hexField(text::left(line.record, 2)));
  for (const FaultKind& row : faultKinds)
    EXPECT_TRUE(kinds.contains(row.kind))
        << kindName(row.kind) << " has no line in tests/data/faults/golden.tsv";
}

TEST(Golden, EveryLineWithAWidthHasItsPartner) {
  std::multiset<std::string> wide, narrow;
  for (const GoldenLine& line : recognisableLines()) {
    if (line.width == "wide") wide.insert(line.what);
    if (line.width == "narrow") narrow.insert(line.what);
  }
  EXPECT_FALSE(wide.empty());
  EXPECT_EQ(wide, narrow);
}

}  // namespace
}  // namespace vordane::faults
