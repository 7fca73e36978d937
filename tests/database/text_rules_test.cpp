// How stored texts compare: the encodings are part of the files.
#include "database/fault_index.h"

namespace vordane::sqlite {
namespace {

TEST(TextRules, OrderGoesByCodePointOfTheFoldedText) {
  EXPECT_EQ(compareTexts(u"ABC  ", u"abc"), 0);
  EXPECT_LT(compareTexts(u"a", u"b"), 0);
  EXPECT_LT(compareTexts(u"\uFFFD", u"\xD83D\xDE00"), 0);  // a pair stands behind the whole plane
  EXPECT_LT(compareTexts(u"\xD800", u"\uE000"), 0);
  EXPECT_LT(compareTexts(u"_", u"Z"), 0);  // 'z' is what 'Z' counts as
  EXPECT_FALSE(equalTexts(u"ａ", u"a"));
  EXPECT_FALSE(equalTexts(u" a", u"a"));
  // Where texts part inside of what may be a pair, the whole characters are compared.
  EXPECT_GT(compareTexts(u"\xD83D\xDE00", u"\xD83D\uE000"), 0);
  EXPECT_GT(compareTexts(u"x\xD83D\xDE00", u"x\xD83D\uE000"), 0);
}

TEST(TextRules, WhatStandsAroundATextIsNoPartOfIt) {
  constexpr std::u16string_view around = u"XXXXabcd1234";
  EXPECT_LT(compareTexts(around.substr(4), u"abcdXXXX"), 0);
  EXPECT_EQ(compareTexts(around.substr(4, 4), u"abcd"), 0);
}

TEST(TextRules, TheKeysOrderAsTheTextsDo) {
  std::mt19937 random(9);
  for (int i = 0; i < 20000; ++i) {
    const std::u16string a = randomText(random), b = randomText(random);
    std::string x, y;
    appendSortKey(a, x);
    appendSortKey(b, y);
    const int order = compareTexts(a, b);
    ASSERT_EQ(order < 0, x < y);
    ASSERT_EQ(order == 0, x == y);
    ASSERT_EQ(order == 0, equalTexts(a, b));
  }
}

TEST(TextRules, TheSortKeyIsTheFoldedTextInUtf8) {
  std::string key;
  appendSortKey(u"Ab\u00C4\u65E5\xD83D\xDE00  ", key);
  EXPECT_EQ(key, "ab\xC3\xA4\xE6\x97\xA5\xF0\x9F\x98\x80");
}

// The hash is part of the files: it is the same on every system.
TEST(TextRules, TheHashIsFixed) {
  FoldedHash hash;
  hash.addText(u"Fault LINE 0A  ");
  hash.addNull();
  hash.addText(u"");
  FoldedHash same;
  same.addText(u"fault line 0a");
  same.addNull();
  same.addText(u" ");
  EXPECT_EQ(hash.value(), same.value());
  EXPECT_EQ(hash.value(), INT64_C(1967629999871058178));
  FoldedHash beyondAscii;
  beyondAscii.addText(u"Störung 主処理装置 Ж");
  EXPECT_EQ(beyondAscii.value(), INT64_C(-9064206712796417750));
}

}  // namespace
}  // namespace vordane::sqlite
