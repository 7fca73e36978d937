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

}  // namespace
}  // namespace vordane::text
