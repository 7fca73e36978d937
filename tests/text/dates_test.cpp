#include "text/dates.h"

#include <gtest/gtest.h>

#include "text/numbers.h"

namespace vordane::text {
namespace {

TEST(IsoText, FillsEachPartUpToItsDigits) {
  EXPECT_EQ(isoText(2026, 11, 22, 21, 14, 59), u"2026-11-22 21:14:59");
  EXPECT_EQ(isoText(100, 1, 2, 3, 4, 5), u"0100-01-02 03:04:05");
}

TEST(IsoText, IsKnownByItsFormAlone) {
  EXPECT_TRUE(isIsoText(u"2026-11-22 21:14:59"));
  EXPECT_TRUE(isIsoText(u"0000-99-99 99:99:99"));
  EXPECT_FALSE(isIsoText(u"2026-11-22 21:14"));
  EXPECT_FALSE(isIsoText(u"2026-1A-22 21:14:59"));
  EXPECT_FALSE(isIsoText(u"2026-11-22T21:14:59"));
  EXPECT_FALSE(isIsoText(u"2026-11-22 21:14:59 "));
}

TEST(HasForm, ZeroStandsForAnyDigitAndTheRestForItself) {
  EXPECT_TRUE(hasForm(u"12/3", u"00/0"));
  EXPECT_FALSE(hasForm(u"12-3", u"00/0"));
  EXPECT_FALSE(hasForm(u"1A/3", u"00/0"));
  EXPECT_FALSE(hasForm(u"12/", u"00/0"));
  EXPECT_FALSE(hasForm(u"12/34", u"00/0"));
  EXPECT_FALSE(hasForm(u"\xFF11\xFF12/3", u"00/0")) << "full-width digits";
  EXPECT_TRUE(hasForm(u"", u""));
}

TEST(IsoMoment, CountsFromTheEndOf1899) {
  EXPECT_EQ(isoMoment(0), u"1899-12-30 00:00:00");
  EXPECT_EQ(isoMoment(25569), u"1970-01-01 00:00:00");
  EXPECT_EQ(isoMoment(39048.427083333336), u"2006-11-27 10:15:00");
  EXPECT_EQ(isoMoment(36585.99999), u"2000-02-29 23:59:59");
}

TEST(IsoMoment, RoundsToTheSecondIntoTheNextDay) {
  EXPECT_EQ(isoMoment(59.9999999), u"1900-02-28 00:00:00");
}

// A day more each time, through leap years, years of a century and both ends.
TEST(IsoMoment, KnowsTheLengthOfEveryMonth) {
  constexpr int lengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const auto two = [](int value) { return decimalPadded(value, 2); };
  double day = -657434;
  for (int year = 100; year <= 9999; ++year)
    for (int month = 1; month <= 12; ++month) {
      const bool leap = month == 2 && year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
      const int length = lengths[month - 1] + (leap ? 1 : 0);
      const std::u16string begin = decimalPadded(year, 4) + u"-" + two(month) + u"-";
      ASSERT_EQ(isoMoment(day), begin + u"01 00:00:00");
      ASSERT_EQ(isoMoment(day + length - 1), begin + two(length) + u" 00:00:00");
      ASSERT_EQ(momentOf(begin + two(length) + u" 00:00:00"), day + length - 1);
      ASSERT_EQ(momentOf(begin + two(length + 1) + u" 00:00:00"), std::nullopt);
      day += length;
    }
  EXPECT_EQ(day, 2958466);
}

TEST(IsoMoment, BeforeTheFirstDayTheTimeStillRunsForward) {
  EXPECT_EQ(isoMoment(-1.25), u"1899-12-29 06:00:00");
}

TEST(IsoMoment, OutsideItsYearsThereIsNone) {
  EXPECT_EQ(isoMoment(-657435), u"");
  EXPECT_EQ(isoMoment(2958466), u"");
  EXPECT_EQ(isoMoment(0.0 / 0.0), u"");
}

TEST(MomentOf, IsTheWayBack) {
  for (const char16_t* text : {u"2006-11-27 10:15:00", u"1899-12-30 00:00:00", u"1899-12-29 18:00:00",
                               u"0100-01-01 00:00:01", u"9999-12-31 23:59:59", u"2000-02-29 12:34:56"}) {
    const auto moment = momentOf(text);
    ASSERT_TRUE(moment);
    EXPECT_EQ(isoMoment(*moment), text);
  }
  EXPECT_EQ(momentOf(u"1899-12-31 12:00:00"), 1.5);
  EXPECT_EQ(momentOf(u"1899-12-30 12:00:00"), 0.5);
  EXPECT_EQ(momentOf(u"1899-12-29 12:00:00"), -1.5);
}

TEST(MomentOf, TakesNothingElse) {
  for (const char16_t* text : {u"", u"2006/11/27 10:15:00", u"2006-02-30 00:00:00", u"2006-11-27 24:00:00",
                               u"2006-11-27T10:15:00", u"2006-11-27 10:15", u"2006-1-27 10:15:000"})
    EXPECT_FALSE(momentOf(text));
}

}  // namespace
}  // namespace vordane::text
