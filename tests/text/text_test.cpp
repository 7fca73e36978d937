#include "text/text.h"

#include <gtest/gtest.h>

namespace vordane::text {
namespace {

TEST(Trim, RemovesBlanksAndNothingElse) {
  EXPECT_EQ(trim(u"  a b  "), u"a b");
  EXPECT_EQ(trim(u"\ta\u00A0"), u"\ta\u00A0");
  EXPECT_EQ(trim(u"   "), u"");
  EXPECT_EQ(trim(u""), u"");
}

TEST(Middle, CountsFromOneAndStopsAtTheEnd) {
  EXPECT_EQ(middle(u"abcdef", 2, 3), u"bcd");
  EXPECT_EQ(middle(u"abcdef", 5, 9), u"ef");
  EXPECT_EQ(middle(u"abc", 4, 1), u"");
  EXPECT_EQ(middle(u"abc", 0, 1), u"");
  EXPECT_EQ(middle(u"abc", 2), u"bc");
}

TEST(Sides, AreWholeWhenTheTextIsShort) {
  EXPECT_EQ(right(u"abc", 2), u"bc");
  EXPECT_EQ(right(u"abc", 5), u"abc");
  EXPECT_EQ(left(u"abc", 2), u"ab");
  EXPECT_EQ(left(u"abc", 5), u"abc");
}

TEST(Split, KeepsEmptyPiecesButHasNoneForAnEmptyText) {
  EXPECT_EQ(split(u"a,,b,", u','), (std::vector<std::u16string>{u"a", u"", u"b", u""}));
  EXPECT_TRUE(split(u"", u',').empty());
}

TEST(Case, FoldsOneForOneInEveryScript) {
  EXPECT_EQ(toLower(u"PBX Ärger ПОЧТА"), u"pbx ärger почта");
  EXPECT_EQ(toUpper(u"straße i ı"), u"STRAßE I I");
  EXPECT_TRUE(equalIgnoringCase(u"FirstData", u"FIRSTDATA"));
  EXPECT_FALSE(equalIgnoringCase(u"FirstData", u"FirstDat"));
  // Width and kana stay apart.
  EXPECT_FALSE(equalIgnoringCase(u"Ａ", u"a"));
  EXPECT_FALSE(equalIgnoringCase(u"ア", u"あ"));
}

}  // namespace
}  // namespace vordane::text
