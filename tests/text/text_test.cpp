#include "text/text.h"

#include <gtest/gtest.h>

#include "text/blanks.h"

namespace vordane::text {
namespace {

TEST(Trim, RemovesBlanksAndNothingElse) {
  EXPECT_EQ(trim(u"  a b  "), u"a b");
  EXPECT_EQ(trim(u"\ta\u00A0"), u"\ta\u00A0");
  EXPECT_EQ(trim(u"   "), u"");
  EXPECT_EQ(trim(u""), u"");
}

TEST(TrailingBlanks, AloneAreTakenAway) {
  EXPECT_EQ(withoutTrailingBlanks(u"  a b  "), u"  a b");
  EXPECT_EQ(withoutTrailingBlanks(u"a\t"), u"a\t");
  EXPECT_EQ(withoutTrailingBlanks(u"   "), u"");
  EXPECT_EQ(withoutTrailingBlanks(u""), u"");
}

TEST(StoredTexts, AreEqualWithoutCaseAndTrailingBlanks) {
  EXPECT_TRUE(equalAsStored(u"PBX-1 ", u"pbx-1"));
  EXPECT_FALSE(equalAsStored(u" PBX-1", u"PBX-1"));
  EXPECT_FALSE(equalAsStored(u"PBX-1", u"PBX-10"));
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

TEST(Beginning, NeverPartsACharacterOfTwoUnits) {
  EXPECT_EQ(beginning(u"a\U0001F600b", 1), u"a");
  EXPECT_EQ(beginning(u"a\U0001F600b", 2), u"a");
  EXPECT_EQ(beginning(u"a\U0001F600b", 3), u"a\U0001F600");
  EXPECT_EQ(beginning(u"\U0001F600", 2), u"\U0001F600");
  EXPECT_EQ(beginning(u"\U0001F600", 1), u"");
  EXPECT_EQ(beginning(u"abc", 0), u"");
  EXPECT_EQ(beginning(u"abc", 5), u"abc");
  EXPECT_EQ(beginning(u"a\xD83D", 2), u"a\xD83D");  // a half that is stored as it is stays
}

TEST(Split, KeepsEmptyPiecesButHasNoneForAnEmptyText) {
  EXPECT_EQ(split(u"a,,b,", u','), (std::vector<std::u16string>{u"a", u"", u"b", u""}));
  EXPECT_TRUE(split(u"", u',').empty());
}

TEST(Lines, EndWithAnyOfTheThreeLineEnds) {
  using Lines = std::vector<std::u16string_view>;
  EXPECT_EQ(lines(u"a\r\nb\rc\n\nd"), (Lines{u"a", u"b", u"c", u"", u"d"}));
  EXPECT_EQ(lines(u"a\n\rb"), (Lines{u"a", u"", u"b"}));
  EXPECT_EQ(lines(u"a\r\n"), (Lines{u"a", u""}));
  EXPECT_EQ(lines(u""), (Lines{u""}));
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

TEST(PathCase, TakesTheCapitalsThatFileSystemsKnow) {
  EXPECT_EQ(toUpperPath(u"C:\\Quilmar 32\\Größe\\élan\\ÿ"), u"C:\\QUILMAR 32\\GRÖßE\\ÉLAN\\Ÿ");
  EXPECT_EQ(toUpperPath(u"Почта\\Ωμέγα\\հայ\\ａｂ"), u"ПОЧТА\\ΩΜΈΓΑ\\ՀԱՅ\\ＡＢ");
  EXPECT_EQ(toUpperPath(u"障害\\ア"), u"障害\\ア");
}

// The capital's small letter is another one: dotless i, micro sign, long s, final sigma, the round theta.
TEST(PathCase, LeavesLettersThatTheirCapitalDoesNotGiveBack) {
  EXPECT_EQ(toUpperPath(u"Yazılım"), u"YAZıLıM");
  EXPECT_EQ(toUpperPath(u"µ ſ Πίνακας ϑ"), u"µ ſ ΠΊΝΑΚΑς ϑ");
  EXPECT_EQ(toUpperPath(u"ǆ ǅ Ǆ"), u"Ǆ ǅ Ǆ");
}

// Capitals that came after Unicode 5.0, and letters that did; the last that came with it.
TEST(PathCase, LeavesLettersWhoseCapitalIsNewerThanTheTablesOfFileSystems) {
  EXPECT_EQ(toUpperPath(u"საქართველო"), u"საქართველო");
  EXPECT_EQ(toUpperPath(u"ɐ ɡ"), u"ɐ ɡ");
  EXPECT_EQ(toUpperPath(u"\uA641 \u0371 \u0525"), u"\uA641 \u0371 \u0525");
  EXPECT_EQ(toUpperPath(u"\u0513 \u2C66 \u024F"), u"\u0512 \u023E \u024E");
}

TEST(PathCase, EveryCapitalGivesItsLetterBack) {
  int changed = 0;
  for (char32_t code = 0; code <= 0xFFFF; ++code) {
    const auto letter = static_cast<char16_t>(code);
    if (upperInPath(letter) == letter) continue;
    ++changed;
    EXPECT_EQ(lower(upperInPath(letter)), letter);
    EXPECT_EQ(upperInPath(upperInPath(letter)), upperInPath(letter));
  }
  EXPECT_GT(changed, 800);
}

}  // namespace
}  // namespace vordane::text
