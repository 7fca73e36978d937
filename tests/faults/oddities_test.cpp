// What looks like a slip and is meant: each has its own test, so that nobody mends it by accident.
#include <gtest/gtest.h>

#include "recognisable_texts.h"

namespace vordane::faults {
namespace {

class Oddities : public testing::Test {
 protected:
  std::u16string detail(std::u16string_view record, std::u16string_view data) const {
    return detailOf(decode(record, data));
  }
  Decoder decode;
};

TEST_F(Oddities, Kind58IsNotHeldToItsList) {
  EXPECT_EQ(detail(u"58", u"00 06"), u"M14 K58.6");
  EXPECT_EQ(detail(u"58", u"00 07"), u"M14 ");
  EXPECT_EQ(detail(u"58", u"00 FF"), u"M14 ");
  EXPECT_EQ(detail(u"01", u"0F"), u"M14 K01.15");
}

TEST_F(Oddities, Kind58ShowsADash) {
  decode.texts.setList(0x58, {u"-", u"one"});
  decode.texts.setList(0x01, {u"-", u"one"});
  EXPECT_EQ(detail(u"58", u"00 00"), u"M14 -");
  EXPECT_EQ(detail(u"01", u"00"), u"M14 ");
}

TEST_F(Oddities, Kinds17And48And49ShowADashToo) {
  for (const int kind : {0x17, 0x48, 0x49}) decode.texts.setList(kind, {u"-"});
  EXPECT_EQ(detail(u"17", u"00"), u"-");
  EXPECT_EQ(detail(u"48", u"00 00").substr(0, 8), u"M133 -\r\n");
  EXPECT_EQ(detail(u"49", u"00").substr(0, 8), u"M141 -\r\n");
}

TEST_F(Oddities, ADashAloneStandsForNoText) {
  decode.texts.setList(0x09, {u"-", u" -", u"--"});
  EXPECT_EQ(detail(u"09", u"00"), u"");
  EXPECT_EQ(detail(u"09", u"01"), u" -");
  EXPECT_EQ(detail(u"09", u"02"), u"--");
}

TEST_F(Oddities, ADashBehindTheHighestCodeStandsForNoTextToo) {
  decode.texts.setList(0x11, {u"a", u"b", u"c", u"-"});
  EXPECT_EQ(detail(u"11", u"FF"), u"");
}

TEST_F(Oddities, AnEmptyItemKeepsTheBlanksAroundIt) {
  decode.texts.setList(0x28, {u"-"});
  decode.texts.setList(0x0A, {u"-"});
  EXPECT_EQ(detail(u"28", u"01 00"), u" M6M53 01  M7");
  EXPECT_EQ(detail(u"0A", u"00 12 34"), u" M6M31 234M7");
}

TEST_F(Oddities, Kind14KeepsTwoBlanksWithoutAState) {
  EXPECT_EQ(detail(u"14", u"05 00 80 01"), u"M14 M128 M6M101 5M7");
  EXPECT_EQ(detail(u"14", u"05 00 80 00"), u"M14  M6M101 5M7");
}

TEST_F(Oddities, Kind13HasNoTextForTheTenthOfItsSecondGroup) {
  EXPECT_EQ(detail(u"13", u"05 00 02 09"), u"M14 M80 M6M86 5M7");
  EXPECT_EQ(detail(u"13", u"05 00 02 0A"), u"M14  M6M86 5M7");
  EXPECT_EQ(detail(u"13", u"05 00 02 0B"), u"M14 M81 M6M86 5M7");
}

TEST_F(Oddities, Kind13JumpsFrom85To90) {
  EXPECT_EQ(detail(u"13", u"05 00 81 21"), u"M14 M90 M6M86 5M7");
}

TEST_F(Oddities, Kind15DoesNotUseItsThirdByte) {
  EXPECT_EQ(detail(u"15", u"05 00 00 07"), u"M14 M131M67M7 M6M86 5M7");
  EXPECT_EQ(detail(u"15", u"05 00 FF 07"), detail(u"15", u"05 00 00 07"));
}

TEST_F(Oddities, Kind05HasNoBlankBetweenBracketAndLabel) {
  EXPECT_EQ(detail(u"05", u"1F 07"), u" M6M25 007 M26 1FM27M7");
}

TEST_F(Oddities, Kind28PutsTheNumberBeforeTheCode) {
  EXPECT_EQ(detail(u"28", u"0C 01"), u" M6M53 12  K28.1M7");
  EXPECT_EQ(detail(u"23", u"01 0C"), u"K23.1 M6M25 012M7");
}

TEST_F(Oddities, TheDecimalPairIsDecimalAndItsCodeIsHexadecimal) {
  EXPECT_EQ(detail(u"12", u"0C 00 01 28"), u"K12.12 M6M35 128M7");
  EXPECT_EQ(detail(u"2B", u"0C 00 00 1C"), u"K2B.12 M6M35 1M7");
}

TEST_F(Oddities, TheDecimalPairStopsAtTheFirstOtherCharacter) {
  EXPECT_EQ(detail(u"12", u"05 00 1E 05"), u"K12.5 M6M35 1M7");
  EXPECT_EQ(detail(u"12", u"05 00 -1 28"), u"K12.5 M6M35 0M7");
  EXPECT_EQ(detail(u"12", u"05 00 +1 28"), u"K12.5 M6M35 0M7");
  EXPECT_EQ(detail(u"12", u"05 00  1 28"), u"K12.5 M6M35 0M7");
  EXPECT_EQ(detail(u"12", u"05 00 &H 1F"), u"K12.5 M6M35 0M7");
}

TEST_F(Oddities, TheDecimalPairShowsMinusOneAbove255) {
  EXPECT_EQ(detail(u"12", u"05 00 02 55"), u"K12.5 M6M35 255M7");
  EXPECT_EQ(detail(u"12", u"05 00 02 56"), u"K12.5 M6M35 -1M7");
  EXPECT_EQ(detail(u"3B", u"05 00 99 99").substr(0, 23), u"K3B.5\r\n M6M35 -1M7\r\n M6");
}

TEST_F(Oddities, DatesAreHexadecimalNumbers) {
  EXPECT_EQ(detail(u"40", u"12 05"), u"M74 18/05");
}

TEST_F(Oddities, CodedDigitsStopAndFlaggedDigitsSkip) {
  EXPECT_EQ(detail(u"26", u"00 00 00 1F 23 45 67"), u"K26.0 M6M66 1M7");
  EXPECT_EQ(detail(u"27", u"00 1F 23 45 67"), u"M49 M6M51 1234567M7");
}

TEST_F(Oddities, CodedDigitsStopAtCAndFlaggedDigitsShowIt) {
  EXPECT_EQ(detail(u"36", u"00 00 00 AB C1 23 45"), u"K36.0 M6M66 ABM7");
  EXPECT_EQ(detail(u"37", u"00 AB C1 23 45"), u"M49 M6M51 ABC12345M7");
}

TEST_F(Oddities, DigitsKeepTheCaseTheyCameIn) {
  EXPECT_EQ(detail(u"26", u"00 00 00 ab c1 23 45"), u"K26.0 M6M66 abM7");
  EXPECT_EQ(detail(u"27", u"00 ab fF 00 00"), u"M49 M6M51 ab0000M7");
}

TEST_F(Oddities, FullWidthDigitsAreNoDigits) {
  EXPECT_EQ(detail(u"26", u"00 00 00 1\uFF11 23 45 67"), u"K26.0 M6M66 1M7");
  EXPECT_EQ(detail(u"26", u"00 00 00 1\uFF21 23 45 67"), u"K26.0 M6M66 1M7");
  EXPECT_EQ(detail(u"27", u"00 1\uFF26 23 45 67"), u"M49 M6M51 1\uFF26234567M7");
}

TEST_F(Oddities, TypeThreeJumpsFrom109To160) {
  EXPECT_EQ(detail(u"2C", u"21"), u"M111M109 M112 1");
  EXPECT_EQ(detail(u"2C", u"31"), u"M111M160 M112 1");
  EXPECT_EQ(detail(u"3C", u"31"), u"M111M160 M112 1");
}

TEST_F(Oddities, TheTypeFollowsItsLabelWithoutABlank) {
  EXPECT_EQ(detail(u"2C", u"2A"), u"M111M109 M112 10");
  EXPECT_EQ(detail(u"2C", u"75"), u"M111 M112 5");
}

TEST_F(Oddities, GroupFourJumpsFrom127To130) {
  EXPECT_EQ(detail(u"43", u"00 42"), u"M127");
  EXPECT_EQ(detail(u"43", u"00 43"), u"M130");
  EXPECT_EQ(detail(u"53", u"00 44"), u"");
}

TEST_F(Oddities, Kind16KeepsThreeBitsSoItIsNeverOutOfRange) {
  for (int code = 0; code <= 0xFF; ++code) {
    const std::u16string data{u"0123456789ABCDEF"[code / 16], u"0123456789ABCDEF"[code % 16]};
    EXPECT_EQ(detail(u"16", data), item(0x16, code & 7) + u" M6M68 " + text::decimal(code & 7) + u"M7");
  }
}

TEST_F(Oddities, OnlyNarrowExchangesLoseTheUpperTwoBits) {
  EXPECT_EQ(detail(u"08", u"C5"), u" M6M23 197M7");
  EXPECT_EQ(detail(u"04", u"00 00 C5"), u"M19\r\n M6M20 0M21M7\r\n M6M23 197M7");
  decode.wide = false;
  EXPECT_EQ(detail(u"08", u"C5"), u" M6M23 05M7");
  EXPECT_EQ(detail(u"18", u"C5"), u" M6M23 05M7");
  EXPECT_EQ(detail(u"04", u"00 00 C5"), u"M19\r\n M6M20 0M21M7\r\n M6M23 05M7");
  EXPECT_EQ(detail(u"21", u"C5"), u" M6M41 197M7");
}

TEST_F(Oddities, Kind04ComparesItsStateAsACharacter) {
  EXPECT_EQ(detail(u"04", u"10 00 00"), u"M19\r\n M6M20 0M21M7\r\n M6M23 00M7");
  EXPECT_EQ(detail(u"04", u"01 00 00"), u"M69\r\n M6M20 0M21M7\r\n M6M23 00M7");
  EXPECT_EQ(detail(u"04", u"0G 00 00"), u"\r\n M6M20 0M21M7\r\n M6M23 00M7");
  EXPECT_EQ(detail(u"04", u""), u"\r\n M6M20 0M21M7\r\n M6M23 00M7");
}

TEST_F(Oddities, Kind04HidesTheNumberFrom100On) {
  EXPECT_EQ(detail(u"04", u"00 63 00"), u"M19\r\n M6M20 99M21M7\r\n M6M23 00M7");
  EXPECT_EQ(detail(u"04", u"00 64 00"), u"M19\r\n M6M22M7\r\n M6M23 00M7");
}

TEST_F(Oddities, Kind17ReadsItsNumberHighByteLastWithASign) {
  EXPECT_EQ(detail(u"17", u"10 34 12"), u"K17.16 M88 4660");
  EXPECT_EQ(detail(u"17", u"10 FF FF"), u"K17.16 M88 -1");
  EXPECT_EQ(detail(u"17", u"10 00 80"), u"K17.16 M88 -32768");
  EXPECT_EQ(detail(u"17", u"0F 34 12"), u"K17.15");
  EXPECT_EQ(detail(u"17", u"11 34 12"), u"K17.17");
}

TEST_F(Oddities, Kind17ReadsBothBytesAsOneNumber) {
  EXPECT_EQ(detail(u"17", u"10 34 1G"), u"K17.16 M88 1");  // the reading stops before the low byte
  EXPECT_EQ(detail(u"17", u"10 34"), u"K17.16 M88 52");
}

TEST_F(Oddities, Kind48ShowsAThreeInItsFifthByteAsThree) {
  EXPECT_EQ(detail(u"48", u"00 01 03 03 03"),
            u"M133 K48.1\r\n M6M134 M138M7\r\n M6M135 M150M7\r\n M6M136 3M7");
}

TEST_F(Oddities, AKindEndsAtTheFirstCharacterThatIsNoDigit) {
  EXPECT_EQ(decode(u"1g", u"03"), u"M9\r\nM14 K01.3\r\nM5 M603 M7");
  EXPECT_EQ(decode(u"g1", u"03"), u"M8\r\n\r\nM5 M603 M7");
  EXPECT_EQ(decode(u" 1", u"03"), u"M8\r\n\r\nM5 M603 M7");
  EXPECT_EQ(decode(u"1", u"03"), u"M9\r\nM14 K01.3\r\nM5 M603 M7");
}

TEST_F(Oddities, BothDataTextsAreJoinedByABlankEvenWhenEmpty) {
  EXPECT_EQ(decode(u"02", u"", u""), u"M15\r\n\r\nM5 M6 M7");
  EXPECT_EQ(decode(u"02", u"0C", u""), u"M15\r\n\r\nM5 M60C M7");
  EXPECT_EQ(decode(u"02", u"", u"0C"), u"M15\r\n\r\nM5 M6 0CM7");
  EXPECT_EQ(detailOf(decode(u"21", u"", u"0C")), u" M6M41 0M7");  // the blank stands first
  EXPECT_EQ(detailOf(decode(u"40", u"0C", u"1F")), u"M74 12/31");
}

}  // namespace
}  // namespace vordane::faults
