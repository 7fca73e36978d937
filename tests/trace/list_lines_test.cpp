#include "trace/list_lines.h"

#include <gtest/gtest.h>

namespace vordane::trace {
namespace {

constexpr Moment moment = 1'795'416'312'345'678;
#define AT R"({"at":"2026-11-23T06:45:12.345678Z","event":"entries",)"

class Lines : public testing::Test {
 protected:
  void entry(std::int16_t index) {
    lines.read(0, index, u"LEA0");
    lines.read(1, index, u"15 \"MJ\"");
    lines.read(2, index, u"");
    lines.read(3, index, u"x");
  }
  std::string out;
  ListLines lines{out};
};

TEST_F(Lines, ALineHoldsTheEntriesThatFollowOneAnother) {
  lines.begin(moment, 7);
  EXPECT_EQ(out, "") << "nothing was read yet";
  entry(0);
  entry(1);
  EXPECT_TRUE(lines.lineIsOpen());
  EXPECT_TRUE(lines.end());
  EXPECT_FALSE(lines.end());
  EXPECT_EQ(out,
            AT R"("object":7,"first":0,"entries":[["LEA0","15 \"MJ\"","","x"],["LEA0","15 \"MJ\"","","x"]]})"
               "\n");
  EXPECT_EQ(lines.lines(), 1U);
}

TEST_F(Lines, WhatWasNotReadOfAnEntryIsNull) {
  lines.begin(moment, 7);
  lines.read(0, 3, u"a");
  lines.read(2, 3, u"b");
  lines.end();
  lines.read(3, 3, u"c");
  lines.read(0, 4, u"d");
  lines.end();
  EXPECT_EQ(out, AT R"("object":7,"first":3,"entries":[["a",null,"b",null]]})"
                    "\n" AT R"("object":7,"first":3,"entries":[[null,null,null,"c"],["d",null,null,null]]})"
                    "\n");
}

TEST_F(Lines, OtherPlacesAndOtherObjectsBeginALine) {
  lines.begin(moment, 7);
  lines.read(0, 0, u"a");
  lines.read(0, 5, u"b");
  lines.read(0, 5, u"c");
  lines.begin(moment, 8);
  lines.read(3, 6, u"d");
  lines.begin(moment, 9);
  EXPECT_EQ(out, AT R"("object":7,"first":0,"entries":[["a",null,null,null]]})"
                    "\n" AT R"("object":7,"first":5,"entries":[["b",null,null,null]]})"
                    "\n" AT R"("object":7,"first":5,"entries":[["c",null,null,null]]})"
                    "\n" AT R"("object":8,"first":6,"entries":[[null,null,null,"d"]]})"
                    "\n");
  EXPECT_EQ(lines.lines(), 4U);
}

}  // namespace
}  // namespace vordane::trace
