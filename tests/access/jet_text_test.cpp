#include "platform/access/jet_text.h"

#include <gtest/gtest.h>

#include <vector>

namespace vordane::access {
namespace {

std::u16string decode(std::vector<std::uint8_t> bytes) {
  return jetText(bytes);
}

TEST(JetText, IsPlainUtf16WithoutTheMark) {
  EXPECT_EQ(decode({0x41, 0x00, 0x1F, 0x04}), u"A\u041F");
  EXPECT_EQ(decode({0x3D, 0xD8, 0x14, 0xDD}), u"\U0001F514");
  EXPECT_EQ(decode({}), u"");
}

TEST(JetText, ChangesBetweenOneAndTwoBytesAtAZero) {
  EXPECT_EQ(decode({0xFF, 0xFE, 'a', 0xE9}), u"a\u00E9");
  EXPECT_EQ(decode({0xFF, 0xFE, 'a', 0x00, 0x1F, 0x04, 0x00, 'b'}), u"a\u041Fb");
  EXPECT_EQ(decode({0xFF, 0xFE}), u"");
}

TEST(JetText, DropsHalfACharacterAtTheEnd) {
  EXPECT_EQ(decode({0x41, 0x00, 0x42}), u"A");
  EXPECT_EQ(decode({0xFF, 0xFE, 'a', 0x00, 0x1F}), u"a");
}

}  // namespace
}  // namespace vordane::access
