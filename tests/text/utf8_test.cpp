#include "text/utf8.h"

#include <gtest/gtest.h>

namespace vordane::text {
namespace {

TEST(Utf8, RoundTripsEveryScriptAndBeyondTheBasicPlane) {
  const std::u16string text = u"PBX Ärger почта 交換機 \U0001F514";
  EXPECT_EQ(fromUtf8(toUtf8(text)), text);
  EXPECT_EQ(toUtf8(u"\U0001F514"), "\xF0\x9F\x94\x94");
}

// The surrogates lie between U+D7FF and U+E000; pairs reach from U+10000 to U+10FFFF.
TEST(Utf8, TurnsAtTheEndsOfEachRange) {
  const std::u16string ends =
      u"\u007F\u0080\u07FF\u0800\uD7FF\uE000\uFFFF\U00010000\U000103FF\U00010400\U0010FFFF";
  const std::string bytes =
      "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF\xF0\x90\x80\x80"
      "\xF0\x90\x8F\xBF\xF0\x90\x90\x80\xF4\x8F\xBF\xBF";
  EXPECT_EQ(toUtf8(ends), bytes);
  EXPECT_EQ(fromUtf8(bytes), ends);
}

TEST(Utf8, ReplacesWhatCannotBeRead) {
  EXPECT_EQ(fromUtf8("\xED\xA0\x80"), fromUtf8("\xED\xBF\xBF")) << "both ends of the surrogates";
  EXPECT_EQ(fromUtf8("\xED\xBF\xBF").front(), u'\uFFFD');
  EXPECT_EQ(fromUtf8("\xF4\x90\x80\x80").front(), u'\uFFFD') << "behind the last character";
  EXPECT_EQ(toUtf8(std::u16string{0xD800, 0xE000}), "\xEF\xBF\xBD\xEE\x80\x80");
  EXPECT_EQ(toUtf8(std::u16string{0xDC00, 0xDC00}), "\xEF\xBF\xBD\xEF\xBF\xBD");
  EXPECT_EQ(fromUtf8("a\xFFz"), u"a\uFFFDz");
  EXPECT_EQ(fromUtf8("\xC3"), u"\uFFFD");
  EXPECT_EQ(fromUtf8("\xC0\x80"), u"\uFFFD\uFFFD");
  EXPECT_EQ(toUtf8(std::u16string(1, char16_t{0xD800})), "\xEF\xBF\xBD");
}

}  // namespace
}  // namespace vordane::text
