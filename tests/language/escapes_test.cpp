#include <gtest/gtest.h>

#include "language/comLanguage.h"
#include "language/message_numbers.h"

namespace vordane {
namespace {

std::u16string expand(std::u16string_view text, std::u16string substitution = {}) {
  return comLanguage::ExpandEscapes(text, substitution);
}

TEST(Escapes, TokensBecomeWhatTheyStandFor) {
  EXPECT_EQ(expand(u""), u"");
  EXPECT_EQ(expand(u"plain"), u"plain");
  EXPECT_EQ(expand(u"a&%CR&b"), u"a\rb");
  EXPECT_EQ(expand(u"a&%AND&b"), u"a&b");
  EXPECT_EQ(expand(u"a&%SP&b"), u"a b");
  EXPECT_EQ(expand(u"a&%SP4&b"), u"a    b");
  EXPECT_EQ(expand(u"%cr"), u"%cr");
  EXPECT_EQ(expand(u"Fault&%SP&List"), u"Fault List");
}

TEST(Escapes, APromptTakesItsSubstitution) {
  EXPECT_EQ(expand(u"Cannot open&%SP&%ST&.&%CR&Retry", u"FAULT.MDB"), u"Cannot open FAULT.MDB.\rRetry");
}

TEST(Escapes, MinusOneDropsWhatStoodBefore) {
  EXPECT_EQ(expand(u"all&gone&-1"), u"-1");
  EXPECT_EQ(expand(u"gone&-1&%SP&kept"), u"-1 kept");
}

TEST(Escapes, BlanksAroundATokenShiftTheCut) {
  EXPECT_EQ(expand(u"A & B"), u"AB");
  EXPECT_EQ(expand(u"A "), u"A");
  EXPECT_EQ(expand(u"  A"), u"AA");
  EXPECT_EQ(expand(u"a&&b"), u"ab");
  EXPECT_EQ(expand(u"a&"), u"a");
}

TEST(Escapes, AnyTokenHoldingTheMarkIsTheSubstitution) {
  EXPECT_EQ(expand(u"x%STy", u"piece"), u"piece");
  EXPECT_EQ(expand(u"%ST&%ST", u"ab"), u"abab");  // without a percent sign it is not consumed
  EXPECT_EQ(expand(u"[&%ST&]", u" "), u"[ ]");
}

TEST(Escapes, APercentSignInTheSubstitutionCountsItsBytes) {
  std::u16string substitution = u"ab%cdefgh";  // at place 2: 4 characters go in, the rest from the seventh
  EXPECT_EQ(comLanguage::ExpandEscapes(u"%ST", substitution), u"ab%c");
  EXPECT_EQ(substitution, u"fgh");
  EXPECT_EQ(comLanguage::ExpandEscapes(u"%ST", substitution), u"fgh");
  EXPECT_EQ(substitution, u"fgh");
}

TEST(Escapes, APercentSignAtTheFrontGivesNothing) {
  std::u16string substitution = u"%abcd";
  EXPECT_EQ(comLanguage::ExpandEscapes(u"%ST", substitution), u"");
  EXPECT_EQ(substitution, u"bcd");
}

TEST(Escapes, APercentSignNearTheEndTakesWhatThereIs) {
  std::u16string substitution = u"90 %";
  EXPECT_EQ(comLanguage::ExpandEscapes(u"%ST", substitution), u"90 %");
  EXPECT_EQ(substitution, u"");
}

TEST(FilledTexts, PlacesTakeTheirValues) {
  EXPECT_EQ(fillText(u"{1} of {2}", {u"3", u"7"}), u"3 of 7");
  EXPECT_EQ(fillText(u"{2}{1}{2}", {u"a", u"b"}), u"bab");
  EXPECT_EQ(fillText(u"{1", {u"a"}), u"{1");
  EXPECT_EQ(fillText(u"{3} {0} {x}", {u"a"}), u"{3} {0} {x}");
  EXPECT_EQ(fillText(u"{1}", {u"{1}"}), u"{1}");  // a value is never read again
}

TEST(Brief, IsTheWholeTextOrItsBeginningWithDots) {
  EXPECT_EQ(brief(u"abc", 3), u"abc");
  EXPECT_EQ(brief(u"abcd", 3), u"abc...");
  EXPECT_EQ(brief(u"", 0), u"");
  EXPECT_EQ(brief(u"ab\U0001F600", 3), u"ab...") << "no half of a character";
}

TEST(FilledTexts, AValueOfAnyLengthTakesItsPlaceInBrief) {
  const std::u16string most(400, u'x');
  EXPECT_EQ(fillText(u"{1}!", {most}), most + u"!");
  EXPECT_EQ(fillText(u"{1}!", {most + u"y"}), most + u"...!");
}

}  // namespace
}  // namespace vordane
