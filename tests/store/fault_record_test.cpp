#include "store/fault_record.h"

#include <gtest/gtest.h>

namespace vordane::store {
namespace {

TEST(WidenYear, PrefixesATwoDigitYearBeforeASlash) {
  EXPECT_EQ(WidenYear(u"06/11/27 10:15"), u"2006/11/27 10:15");
  EXPECT_EQ(WidenYear(u"95/01/02"), u"1995/01/02");
}

TEST(WidenYear, TurnsAtEighty) {
  EXPECT_EQ(WidenYear(u"79/12/31"), u"2079/12/31");
  EXPECT_EQ(WidenYear(u"80/01/01"), u"1980/01/01");
  EXPECT_EQ(WidenYear(u"00/01/01"), u"2000/01/01");
  EXPECT_EQ(WidenYear(u"99/01/01"), u"1999/01/01");
}

TEST(WidenYear, LeavesEveryOtherFormAlone) {
  EXPECT_EQ(WidenYear(u"2006/11/27"), u"2006/11/27");
  EXPECT_EQ(WidenYear(u"06-11-27"), u"06-11-27");
  EXPECT_EQ(WidenYear(u"6/11/27"), u"6/11/27");
  EXPECT_EQ(WidenYear(u"06"), u"06");
  EXPECT_EQ(WidenYear(u""), u"");
}

TEST(WidenYear, ReadsTheLeadingDigitsOfWhatIsNoYear) {
  EXPECT_EQ(WidenYear(u"9x/1"), u"209x/1");
  EXPECT_EQ(WidenYear(u"xx/1"), u"20xx/1");
  EXPECT_EQ(WidenYear(u" 9/1"), u"20 9/1");
}

TEST(Processor, IsTheMainOneByItsTwoLetters) {
  EXPECT_EQ(processor(u"01 MJ MP"), u"MP   ");
  EXPECT_EQ(processor(u"01 MJ MPX1F"), u"MP   ");
  EXPECT_EQ(processor(u"01 MJ mp "), u"mp 0");
}

TEST(Processor, IsThreeCharactersAndTheDecimalNumber) {
  EXPECT_EQ(processor(u"01 MJ AB 0C"), u"AB 12");
  EXPECT_EQ(processor(u"01 MJ AB FF"), u"AB 255");
  EXPECT_EQ(processor(u"01 MJ LP 0CXX"), u"LP 12");
}

TEST(Processor, OfAShortRecordIsShort) {
  EXPECT_EQ(processor(u"01 MJ AB"), u"AB0");
  EXPECT_EQ(processor(u"01"), u"0");
  EXPECT_EQ(processor(u""), u"0");
  EXPECT_EQ(processor(u"01 MJ ABC"), u"ABC0");
  EXPECT_EQ(processor(u"01 MJ AB 1"), u"AB 1");
}

TEST(Record, HoldsKindAndAlarmAtTheirPlaces) {
  EXPECT_EQ(faultKind(u"0A MJ MP"), u"0A");
  EXPECT_EQ(alarmClass(u"0A MN MP"), u"MN");
  EXPECT_EQ(faultKind(u"0"), u"0");
  EXPECT_EQ(alarmClass(u"0A M"), u"M");
  EXPECT_EQ(alarmClass(u"0A"), u"");
}

}  // namespace
}  // namespace vordane::store
