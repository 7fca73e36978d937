#include "text/numbers.h"

#include <gtest/gtest.h>

namespace vordane::text {
namespace {

TEST(HexField, StopsAtTheFirstCharacterThatIsNoDigit) {
  EXPECT_EQ(hexField(u"1F"), 31);
  EXPECT_EQ(hexField(u"ff"), 255);
  EXPECT_EQ(hexField(u"1g"), 1);
  EXPECT_EQ(hexField(u"g1"), 0);
  EXPECT_EQ(hexField(u" 1"), 0);
  EXPECT_EQ(hexField(u""), 0);
}

TEST(HexField, IsSigned16Bit) {
  EXPECT_EQ(hexField(u"7FFF"), 32767);
  EXPECT_EQ(hexField(u"8000"), -32768);
  EXPECT_EQ(hexField(u"FFFF"), -1);
  EXPECT_EQ(hexField(u"10000"), 0);
}

TEST(DecimalField, KnowsNeitherSignNorExponent) {
  EXPECT_EQ(decimalField(u"0128"), 128);
  EXPECT_EQ(decimalField(u"0A00"), 0);
  EXPECT_EQ(decimalField(u"1E05"), 1);
  EXPECT_EQ(decimalField(u"-5"), 0);
  EXPECT_EQ(decimalField(u"99999999999"), 2147483647);
}

TEST(Decimal, PadsWithZeros) {
  EXPECT_EQ(decimal(0), u"0");
  EXPECT_EQ(decimal(-1), u"-1");
  EXPECT_EQ(decimalPadded(7, 2), u"07");
  EXPECT_EQ(decimalPadded(123, 2), u"123");
  EXPECT_EQ(decimalPadded(7, 3), u"007");
}

TEST(ParseInteger, TakesWholeNumbersOf32Bits) {
  EXPECT_EQ(parseInteger(u" 42 "), 42);
  EXPECT_EQ(parseInteger(u"-2147483648"), INT32_MIN);
  EXPECT_EQ(parseInteger(u"2147483648"), std::nullopt);
  EXPECT_EQ(parseInteger(u"4x"), std::nullopt);
  EXPECT_EQ(parseInteger(u""), std::nullopt);
  EXPECT_EQ(parseInteger(u"-"), std::nullopt);
}

}  // namespace
}  // namespace vordane::text
