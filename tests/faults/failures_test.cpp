// What a decoder shows when texts or data are missing: nothing at all without a text it needs, something
// sensible for everything else.
#include <gtest/gtest.h>

#include <set>

#include "recognisable_texts.h"

namespace vordane::faults {
namespace {

constexpr bool wideFields = true;

std::u16string decodeWith(const FaultTextTable& texts, std::u16string_view record, std::u16string_view data) {
  return cFaultDisplay(texts, wideFields).GetFaultMessage(record, data, u"");
}

std::u16string recordOf(int kind) {
  return {u"0123456789ABCDEF"[kind / 16], u"0123456789ABCDEF"[kind % 16]};
}

// The messages whose absence empties the description of this record.
std::set<int> needed(std::u16string_view record, std::u16string_view data) {
  static const auto tables = [] {
    std::vector<FaultTextTable> all;
    for (int number = 0; number <= lastMessage; ++number) all.push_back(textsWithoutMessage(number));
    return all;
  }();
  std::set<int> numbers;
  for (int number = 0; number <= lastMessage; ++number)
    if (decodeWith(tables[static_cast<std::size_t>(number)], record, data).empty()) numbers.insert(number);
  return numbers;
}

TEST(Failures, WithoutMessagesEveryDescriptionIsEmpty) {
  FaultTextTable none;
  for (int kind = 0; kind <= 0xFF; ++kind) EXPECT_EQ(decodeWith(none, recordOf(kind), u"01 02 03 04"), u"");
}

TEST(Failures, ADecoderNeedsExactlyTheMessagesThatTheRecordShows) {
  using Numbers = std::set<int>;
  EXPECT_EQ(needed(u"07", u"00"), (Numbers{5, 6, 7, 8}));
  EXPECT_EQ(needed(u"02", u"00"), (Numbers{5, 6, 7, 15}));
  EXPECT_EQ(needed(u"09", u"00"), (Numbers{5, 6, 7, 29}));
  EXPECT_EQ(needed(u"01", u"00"), (Numbers{5, 6, 7, 9, 14}));
  EXPECT_EQ(needed(u"58", u"00 FF"), (Numbers{5, 6, 7, 14, 139}));
  EXPECT_EQ(needed(u"05", u"00 00"), (Numbers{5, 6, 7, 24, 25, 26, 27}));
  EXPECT_EQ(needed(u"21", u"00"), (Numbers{5, 6, 7, 40, 41}));
  EXPECT_EQ(needed(u"40", u"00"), (Numbers{5, 6, 7, 70, 74}));
}

TEST(Failures, AChosenMessageIsNeededOnlyWhereItIsShown) {
  using Numbers = std::set<int>;
  EXPECT_EQ(needed(u"04", u"00 63 00"), (Numbers{5, 6, 7, 18, 19, 20, 21, 23}));
  EXPECT_EQ(needed(u"04", u"01 64 00"), (Numbers{5, 6, 7, 18, 22, 23, 69}));
  EXPECT_EQ(needed(u"04", u"02 64 00"), (Numbers{5, 6, 7, 18, 22, 23}));
  EXPECT_EQ(needed(u"13", u"00 00 02 0A"), (Numbers{5, 6, 7, 14, 86, 129}));
  EXPECT_EQ(needed(u"13", u"00 00 81 21"), (Numbers{5, 6, 7, 14, 86, 90, 129}));
  EXPECT_EQ(needed(u"14", u"00 00 80 01"), (Numbers{5, 6, 7, 14, 101, 106, 128}));
  EXPECT_EQ(needed(u"14", u"00 00 80 00"), (Numbers{5, 6, 7, 14, 101, 106}));
  EXPECT_EQ(needed(u"17", u"0F"), (Numbers{5, 6, 7, 78}));
  EXPECT_EQ(needed(u"17", u"10"), (Numbers{5, 6, 7, 78, 88}));
  EXPECT_EQ(needed(u"27", u"00"), (Numbers{5, 6, 7, 48, 49, 51}));
  EXPECT_EQ(needed(u"27", u"01"), (Numbers{5, 6, 7, 48, 50, 51}));
  EXPECT_EQ(needed(u"2C", u"30"), (Numbers{5, 6, 7, 110, 111, 112, 160}));
  EXPECT_EQ(needed(u"2C", u"40"), (Numbers{5, 6, 7, 110, 111, 112}));
  EXPECT_EQ(needed(u"43", u"00 43"), (Numbers{5, 6, 7, 114, 130}));
  EXPECT_EQ(needed(u"43", u"00 44"), (Numbers{5, 6, 7, 114}));
  EXPECT_EQ(needed(u"3B", u"00 00 00 00 00 00 00 02"), (Numbers{5, 6, 7, 35, 65, 161, 164}));
  EXPECT_EQ(needed(u"3B", u"00 00 00 00 00 00 00 03"), (Numbers{5, 6, 7, 35, 65, 161}));
  EXPECT_EQ(needed(u"48", u"00 00 02 03 03"), (Numbers{5, 6, 7, 132, 133, 134, 135, 136, 137, 150}));
  EXPECT_EQ(needed(u"48", u"00 00 04 01 03"), (Numbers{5, 6, 7, 132, 133, 134, 135, 136}));
  EXPECT_EQ(needed(u"49", u"00 04 00"), (Numbers{5, 6, 7, 140, 141, 142, 143, 148}));
  EXPECT_EQ(needed(u"49", u"00 05 00"), (Numbers{5, 6, 7, 140, 141, 142, 143}));
}

TEST(Failures, AMessageArrayThatEndsEarlyCountsAsMissing) {
  FaultTextTable texts = recognisableTexts();
  std::vector<std::u16string> messages;
  for (int number = 0; number < 164; ++number) messages.push_back(message(number));
  texts.setMessages(messages);
  EXPECT_EQ(decodeWith(texts, u"3B", u"00 00 00 00 00 00 00 02"), u"");
  EXPECT_NE(decodeWith(texts, u"3B", u"00 00 00 00 00 00 00 01"), u"");
}

TEST(Failures, AnEmptyMessageIsNotMissing) {
  FaultTextTable texts = recognisableTexts();
  texts.setMessage(41, u"");
  EXPECT_EQ(decodeWith(texts, u"21", u"05"), u"M40\r\n M6 5M7\r\nM5 M605 M7");
}

TEST(Failures, AMissingListEmptiesTheDescriptionOfItsKind) {
  for (const FaultKind& row : faultKinds) {
    if (row.list == noList || row.highestCode == noHighestCode) continue;
    const FaultTextTable texts = textsWithoutList(row.list);
    EXPECT_EQ(decodeWith(texts, recordOf(row.kind), u"01 02 03 04"), u"") << static_cast<int>(row.kind);
  }
}

TEST(Failures, FourKindsGoOnWithoutTheirList) {
  EXPECT_EQ(decodeWith(textsWithoutList(0x17), u"17", u"10 34 12"), u"M78\r\n M88 4660\r\nM5 M610 34 12 M7");
  EXPECT_EQ(decodeWith(textsWithoutList(0x48), u"48", u"00 01 00 00 00"),
            u"M132\r\nM133 \r\n M6M134 0M7\r\n M6M135 0M7\r\n M6M136 0M7\r\nM5 M600 01 00 00 00 M7");
  EXPECT_EQ(decodeWith(textsWithoutList(0x49), u"49", u"00 05 00"),
            u"M140\r\nM141 \r\n M6M142 5M7\r\n M6M143 0M7\r\nM5 M600 05 00 M7");
  EXPECT_EQ(decodeWith(textsWithoutList(0x58), u"58", u"00 01"), u"M139\r\nM14 \r\nM5 M600 01 M7");
}

TEST(Failures, AListThatIsTooShortLeavesOnlyTheItemEmpty) {
  FaultTextTable texts = recognisableTexts();
  for (const int kind : {0x01, 0x09, 0x12, 0x23, 0x26, 0x28, 0x3B}) texts.setList(kind, {});
  EXPECT_EQ(decodeWith(texts, u"01", u"0C"), u"M9\r\nM14 \r\nM5 M60C M7");
  EXPECT_EQ(decodeWith(texts, u"09", u"FF"), u"M29\r\n\r\nM5 M6FF M7");
  EXPECT_EQ(decodeWith(texts, u"12", u"05 00 01 28"), u"M34\r\n M6M35 128M7\r\nM5 M605 00 01 28 M7");
  EXPECT_EQ(decodeWith(texts, u"23", u"01 07"), u"M44\r\n M6M25 007M7\r\nM5 M601 07 M7");
  EXPECT_EQ(decodeWith(texts, u"26", u"00"), u"M47\r\n M6M66 M7\r\nM5 M600 M7");
  EXPECT_EQ(decodeWith(texts, u"28", u"0C 01"), u"M54\r\n M6M53 12  M7\r\nM5 M60C 01 M7");
  EXPECT_EQ(decodeWith(texts, u"3B", u"00"), u"M65\r\n\r\n M6M35 0M7\r\n M6M161 M162M7\r\nM5 M600 M7");
}

TEST(Failures, ShortDataReadsAsZeroAndShowsWhatIsThere) {
  Decoder decode;
  EXPECT_EQ(detailOf(decode(u"01", u"")), u"M14 K01.0");
  EXPECT_EQ(detailOf(decode(u"0A", u"")), u"K0A.0 M6M31 M7");
  EXPECT_EQ(detailOf(decode(u"0A", u"03 4C 2")), u"K0A.3 M6M31 C2 M7");  // the blank that joins stands eighth
  EXPECT_EQ(detailOf(decode(u"12", u"05")), u"K12.5 M6M35 0M7");
  EXPECT_EQ(detailOf(decode(u"26", u"03 00 00 1")), u"K26.3 M6M66 1M7");
  EXPECT_EQ(detailOf(decode(u"27", u"01 1")), u"M50 M6M51 1 M7");
  EXPECT_EQ(detailOf(decode(u"05", u"")), u" M6M25 000 M26  M27M7");
  EXPECT_EQ(detailOf(decode(u"49", u"")), u"M141 K49.0\r\n M6M142 M144M7\r\n M6M143 0M7");
}

TEST(Failures, FieldsOfOtherCharactersReadAsZero) {
  Decoder decode;
  EXPECT_EQ(detailOf(decode(u"21", u"zz")), u" M6M41 0M7");
  EXPECT_EQ(detailOf(decode(u"21", u"1z")), u" M6M41 1M7");
  EXPECT_EQ(detailOf(decode(u"21", u" F")), u" M6M41 0M7");
  EXPECT_EQ(detailOf(decode(u"21", u"-1")), u" M6M41 0M7");
  EXPECT_EQ(detailOf(decode(u"21", u"\uFF11\uFF11")), u" M6M41 0M7");
}

}  // namespace
}  // namespace vordane::faults
