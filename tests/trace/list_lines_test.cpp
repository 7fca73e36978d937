#include "trace/list_lines.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace vordane::trace {
namespace {

constexpr Moment moment = 1'795'416'312'345'678;
#define AT R"({"at":"2026-11-23T06:45:12.345678Z","event":"entries",)"

class LinesOfAList : public testing::Test {
 protected:
  // As the recorder does it: what the open line does not take begins another.
  void read(int column, std::int16_t index, std::u16string_view text, std::int64_t object = 7) {
    if (!lines.takes(object, column, index, text.size())) {
      end();
      lines.begin(moment, object, index);
    }
    lines.add(column, index, text);
  }
  void end() {
    if (lines.isOpen()) out += lines.end();
  }
  void entry(std::int16_t index) {
    read(0, index, u"LEA0");
    read(1, index, u"15 \"MJ\"");
    read(2, index, u"");
    read(3, index, u"x");
  }
  std::size_t count() const { return static_cast<std::size_t>(std::count(out.begin(), out.end(), '\n')); }

  std::string out;
  ListLines lines;
};

TEST_F(LinesOfAList, ALineHoldsTheEntriesThatFollowOneAnother) {
  entry(0);
  entry(1);
  EXPECT_TRUE(lines.isOpen());
  EXPECT_EQ(lines.values(), 8U);
  end();
  EXPECT_FALSE(lines.isOpen());
  EXPECT_EQ(out,
            AT R"("object":7,"first":0,"entries":[["LEA0","15 \"MJ\"","","x"],["LEA0","15 \"MJ\"","","x"]]})"
               "\n");
}

TEST_F(LinesOfAList, WhatWasNotReadOfAnEntryIsNull) {
  read(0, 3, u"a");
  read(2, 3, u"b");
  read(0, 4, u"c");
  end();
  read(3, 4, u"d");
  read(0, 5, u"e");
  end();
  EXPECT_EQ(out, AT R"("object":7,"first":3,"entries":[["a",null,"b",null],["c",null,null,null]]})"
                    "\n" AT R"("object":7,"first":4,"entries":[[null,null,null,"d"],["e",null,null,null]]})"
                    "\n");
}

TEST_F(LinesOfAList, OtherPlacesAndOtherObjectsBeginALine) {
  read(0, 0, u"a");
  read(0, 5, u"b");
  read(0, 5, u"c");
  read(3, 6, u"d", 8);
  end();
  EXPECT_EQ(out, AT R"("object":7,"first":0,"entries":[["a",null,null,null]]})"
                    "\n" AT R"("object":7,"first":5,"entries":[["b",null,null,null]]})"
                    "\n" AT R"("object":7,"first":5,"entries":[["c",null,null,null]]})"
                    "\n" AT R"("object":8,"first":6,"entries":[[null,null,null,"d"]]})"
                    "\n");
}

TEST_F(LinesOfAList, ALongListHasALineForEachThousand) {
  for (std::int16_t i = 0; i < 2500; ++i) entry(i);
  end();
  EXPECT_EQ(count(), 3U);
  EXPECT_NE(out.find(R"("first":1024,)"), out.npos);
  EXPECT_NE(out.find(R"("first":2048,)"), out.npos);
}

TEST_F(LinesOfAList, LongTextsHaveRoomHoweverMuchTheyGrow) {
  const std::u16string zeros(ListLines::longestText, u'\0');
  for (std::int16_t i = 0; i < 5; ++i)
    for (int column = 0; column < 4; ++column) read(column, i, zeros);
  end();
  EXPECT_EQ(count(), 10U) << "two of them in each";
  EXPECT_GT(out.size(), 20 * 6 * zeros.size());
}

}  // namespace
}  // namespace vordane::trace
