#include "list/steady.h"

#include <gtest/gtest.h>

#include "fakes/memory_rows.h"
#include "text/numbers.h"

namespace vordane::list {
namespace {

using fakes::MemoryRow;
using fakes::MemoryRows;
using Why = Steady::Why;

// A fault of that minute of one day, under that number.
MemoryRow fault(int minute, int number) {
  MemoryRow row;
  row.date = u"2026/11/20 10:";
  row.date += static_cast<char16_t>(u'0' + minute / 10);
  row.date += static_cast<char16_t>(u'0' + minute % 10);
  row.count = number;
  return row;
}

class SteadyTest : public testing::Test {
 protected:
  // Minutes 39 to 0, each fault's number one more than its minute.
  void SetUp() override {
    for (int minute = 39; minute >= 0; --minute) rows.rows.push_back(fault(minute, minute + 1));
    steady.shown(rows, Why::other, false);
    put(0);
  }
  void put(std::size_t position) { steady.caretAt(*rows.row(position), position, rows.size()); }
  // Where it belongs among rows that are newest first: as they are stored.
  void arrive(int minute, int number) {
    const MemoryRow row = fault(minute, number);
    auto place = rows.rows.begin();
    while (place != rows.rows.end() &&
           (place->date > row.date || (place->date == row.date && place->count > row.count)))
      ++place;
    rows.rows.insert(place, row);
  }
  std::optional<std::size_t> renew() { return steady.shown(rows, Why::renewed, true); }

  MemoryRows rows;
  Steady steady;
};

TEST_F(SteadyTest, TheFaultUnderTheCaretIsFoundBelowThoseThatCame) {
  put(12);
  for (int n = 0; n < 7; ++n) arrive(50 + n, 41 + n);
  EXPECT_EQ(renew(), 19U);
  EXPECT_EQ(steady.newer(), 7U);
}

TEST_F(SteadyTest, WhatCameLateStandsWhereItsDatePutsItAndIsNotNewer) {
  put(12);
  arrive(50, 41);
  arrive(35, 42);  // above the caret
  arrive(5, 43);   // below it
  EXPECT_EQ(renew(), 14U);
  EXPECT_EQ(steady.newer(), 1U);
}

TEST_F(SteadyTest, OfTheSameMinuteTheOneStoredLaterIsNewer) {
  put(0);
  arrive(39, 41);
  EXPECT_EQ(renew(), 1U);
  EXPECT_EQ(steady.newer(), 1U);
}

TEST_F(SteadyTest, NewerOnesAddUpUntilTheyAreSeen) {
  put(12);
  arrive(50, 41);
  EXPECT_EQ(renew(), 13U);
  put(13);
  arrive(51, 42);
  arrive(52, 43);
  EXPECT_EQ(renew(), 15U);
  EXPECT_EQ(steady.newer(), 3U);
  steady.seen(rows);
  EXPECT_EQ(steady.newer(), 0U);
  put(15);
  arrive(53, 44);
  EXPECT_EQ(renew(), 16U);
  EXPECT_EQ(steady.newer(), 1U);
}

TEST_F(SteadyTest, AListThatNobodyMovedInBeginsWithItsNewestFault) {
  arrive(50, 41);
  EXPECT_EQ(steady.shown(rows, Why::renewed, false), std::nullopt);
  EXPECT_EQ(steady.newer(), 0U);
  put(0);
  arrive(51, 42);
  EXPECT_EQ(renew(), 1U) << "somebody has, and that one was seen";
  EXPECT_EQ(steady.newer(), 1U);
}

TEST_F(SteadyTest, AChoiceOfThePersonGoesToTheTop) {
  put(12);
  arrive(50, 41);
  EXPECT_EQ(renew(), 13U);
  EXPECT_EQ(steady.newer(), 1U);
  EXPECT_EQ(steady.shown(rows, Why::choice, true), std::nullopt);
  EXPECT_EQ(steady.newer(), 0U);
  EXPECT_EQ(steady.shown(rows, Why::other, true), std::nullopt);
  EXPECT_EQ(steady.newer(), 0U);
}

// The caret stood in rows of another order, so nothing can be said from where it stood there.
TEST_F(SteadyTest, FromAnotherOrderTheFaultIsFoundByItsDateAndNumber) {
  MemoryRows oldestFirst({rows.rows.rbegin(), rows.rows.rend()});
  steady.shown(oldestFirst, Why::choice, false);
  steady.caretAt(*oldestFirst.row(3), 3, oldestFirst.size());  // of minute 3
  arrive(50, 41);
  arrive(51, 42);
  EXPECT_EQ(renew(), 38U);
  EXPECT_EQ(steady.newer(), 2U) << "the newest one that was seen was that of the first order";
}

// An engine may order dates of other forms in its own way.
TEST_F(SteadyTest, WhereDatesDoNotTellTheFaultIsFoundAsFarDownAsFaultsCame) {
  for (MemoryRow& row : rows.rows) row.date = row.count % 2 == 0 ? u"soon" : u"later";
  steady.shown(rows, Why::other, false);
  put(12);
  for (int n = 0; n < 3; ++n) rows.rows.insert(rows.rows.begin(), fault(50 + n, 41 + n));
  EXPECT_EQ(renew(), 15U);
  EXPECT_EQ(steady.newer(), 3U);
}

TEST_F(SteadyTest, AFaultThatHasGoneLeavesTheListAtItsTop) {
  put(12);
  rows.rows.erase(rows.rows.begin() + 12);
  arrive(50, 41);
  EXPECT_EQ(renew(), std::nullopt);
  EXPECT_EQ(steady.newer(), 0U);
}

TEST_F(SteadyTest, AnotherFaultOfTheSameDateAndNumberIsNotTakenForIt) {
  put(12);
  rows.rows[12].description = u"after the exchange was deleted and its list stored anew";
  EXPECT_EQ(renew(), std::nullopt);
}

// One that can't be read stands for nothing.
TEST_F(SteadyTest, RowsThatGoWhileItIsLookedForLeaveTheListAtItsTop) {
  put(12);
  arrive(5, 41);
  for (MemoryRow& row : rows.rows) row.gone = true;
  EXPECT_EQ(renew(), std::nullopt);
}

class CountingRows final : public window::GridSource {
 public:
  std::size_t size() const override { return rows; }
  std::optional<window::GridRow> row(std::size_t position) override {
    ++asked;
    window::GridRow row;
    row.date = u"2026/11/20 10:00";
    row.count = static_cast<std::int64_t>(rows - position);
    return row;
  }
  std::vector<Range> provenance(std::size_t, std::size_t) override { return {}; }
  std::size_t rows = 1'000'000, asked = 0;
};

TEST(SteadyMillion, AFewDozenRowsAreLookedAt) {
  CountingRows rows;
  Steady steady;
  steady.shown(rows, Why::other, false);
  steady.caretAt(*rows.row(654'321), 12, 1'000'000);  // it stood elsewhere
  rows.rows += 7;
  rows.asked = 0;
  EXPECT_EQ(steady.shown(rows, Why::renewed, true), 654'328U);
  EXPECT_EQ(steady.newer(), 7U);
  EXPECT_LT(rows.asked, 50U);
}

}  // namespace
}  // namespace vordane::list
