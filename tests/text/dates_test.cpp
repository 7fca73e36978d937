#include "text/dates.h"

#include <gtest/gtest.h>

namespace vordane::text {
namespace {

TEST(IsoMoment, CountsFromTheEndOf1899) {
  EXPECT_EQ(isoMoment(0), u"1899-12-30 00:00:00");
  EXPECT_EQ(isoMoment(25569), u"1970-01-01 00:00:00");
  EXPECT_EQ(isoMoment(39048.427083333336), u"2006-11-27 10:15:00");
  EXPECT_EQ(isoMoment(36585.99999), u"2000-02-29 23:59:59");
}

TEST(IsoMoment, RoundsToTheSecondIntoTheNextDay) {
  EXPECT_EQ(isoMoment(59.9999999), u"1900-02-28 00:00:00");
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
}

TEST(MomentOf, TakesNothingElse) {
  for (const char16_t* text : {u"", u"2006/11/27 10:15:00", u"2006-02-30 00:00:00", u"2006-11-27 24:00:00",
                               u"2006-11-27T10:15:00", u"2006-11-27 10:15", u"2006-1-27 10:15:000"})
    EXPECT_FALSE(momentOf(text));
}

}  // namespace
}  // namespace vordane::text
