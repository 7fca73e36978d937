#include "text/utf8.h"

#include <gtest/gtest.h>

namespace vordane::text {
namespace {

TEST(Utf8, RoundTripsEveryScriptAndBeyondTheBasicPlane) {
  const std::u16string text = u"PBX Ärger почта 交換機 \U0001F514";
  EXPECT_EQ(fromUtf8(toUtf8(text)), text);
  EXPECT_EQ(toUtf8(u"\U0001F514"), "\xF0\x9F\x94\x94");
}

TEST(Utf8, ReplacesWhatCannotBeRead) {
  EXPECT_EQ(fromUtf8("a\xFFz"), u"a\uFFFDz");
  EXPECT_EQ(fromUtf8("\xC3"), u"\uFFFD");
  EXPECT_EQ(fromUtf8("\xC0\x80"), u"\uFFFD\uFFFD");
  EXPECT_EQ(toUtf8(std::u16string(1, char16_t{0xD800})), "\xEF\xBF\xBD");
}

}  // namespace
}  // namespace vordane::text
