#include "list/flood_digest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

#include "fakes/memory_rows.h"
#include "list/flood_words.h"
#include "text/blanks.h"

namespace vordane::list {
namespace {

using fakes::MemoryRow;
using fakes::MemoryRows;
using testing::ElementsAre;
using Times = FloodSearch::Times;

// Minutes of one day, newest first, each with its faults.
std::optional<Times> latest(const std::vector<std::pair<int, std::size_t>>& minutes) {
  FloodSearch search;
  for (const auto& [minute, faults] : minutes)
    search.take(202611200000 + static_cast<Minute>(minute / 60 * 100 + minute % 60), faults);
  return search.latest();
}

TEST(Flood, IsMoreThanTenFaults) {
  EXPECT_EQ(latest({{600, 10}}), std::nullopt);
  EXPECT_EQ(latest({{600, 11}}), (Times{202611201000, 202611201000}));
  EXPECT_EQ(latest({}), std::nullopt);
}

TEST(Flood, FallsWithinTenMinutes) {
  EXPECT_EQ(latest({{609, 5}, {600, 6}}), (Times{202611201000, 202611201009}));
  EXPECT_EQ(latest({{610, 5}, {600, 6}}), std::nullopt) << "the eleventh minute";
}

TEST(Flood, LastsAsLongAsStretchesShareAFault) {
  EXPECT_EQ(latest({{620, 5}, {615, 6}, {611, 6}, {606, 6}}), (Times{202611201006, 202611201020}));
  EXPECT_EQ(latest({{612, 10}, {605, 1}, {600, 10}}), (Times{202611201000, 202611201012}))
      << "one fault joins them";
  EXPECT_EQ(latest({{620, 11}, {605, 1}, {600, 11}}), (Times{202611201020, 202611201020}));
  EXPECT_EQ(latest({{610, 11}, {600, 11}}), (Times{202611201010, 202611201010}));
  EXPECT_EQ(latest({{609, 11}, {600, 11}}), (Times{202611201000, 202611201009}));
}

TEST(Flood, TheLatestOneIsTold) {
  EXPECT_EQ(latest({{700, 3}, {660, 11}, {500, 200}}), (Times{202611201100, 202611201100}));
}

TEST(Flood, GoesOverMidnightAndTheEndsOfMonths) {
  FloodSearch search;
  EXPECT_TRUE(search.take(202403010004, 6));
  EXPECT_TRUE(search.take(202402292355, 5));
  EXPECT_EQ(search.latest(), (Times{202402292355, 202403010004}));
  FloodSearch longAgo;
  longAgo.take(202501010004, 6);
  longAgo.take(202411302355, 5);
  EXPECT_EQ(longAgo.latest(), std::nullopt);
}

TEST(Flood, NothingIsLookedAtBeyondTheLatestOne) {
  FloodSearch search;
  EXPECT_TRUE(search.take(202611201030, 11));
  EXPECT_TRUE(search.take(202611201021, 1)) << "it may go on";
  EXPECT_FALSE(search.take(202611201011, 50));
  EXPECT_EQ(search.latest(), (Times{202611201021, 202611201030}));
  EXPECT_FALSE(search.take(202611201010, 50));
  EXPECT_EQ(search.latest(), (Times{202611201021, 202611201030}));
}

TEST(Flood, DatesThatNoCalendarHasDoNotCount) {
  FloodSearch search;
  for (const Minute minute : {noMinute, Minute{202613010000}, Minute{202602300000}, Minute{202611202400},
                              Minute{202611200060}, Minute{202600100000}})
    EXPECT_TRUE(search.take(minute, 50));
  EXPECT_EQ(search.latest(), std::nullopt);
}

TEST(Flood, TimesInAnotherOrderGiveNone) {
  EXPECT_EQ(latest({{600, 11}, {601, 11}}), std::nullopt);
}

TEST(Flood, AMinuteIsWrittenAsItIsStored) {
  EXPECT_EQ(writtenMinute(202611200905), u"2026/11/20 09:05");
  EXPECT_EQ(minuteOf(writtenMinute(199902010000)), 199902010000U);
}

class DigestTest : public testing::Test {
 protected:
  // Newest first, as they are shown.
  void show(std::vector<MemoryRow> given) {
    rows.rows = std::move(given);
    desk.setStored(&rows, u"PBX-1");
    digest.begin();
  }
  std::optional<Flood> found() {
    while (digest.busy()) digest.work([] { return false; });
    return digest.flood();
  }
  static MemoryRow fault(int minute, std::u16string kind = u"0A", std::u16string cpu = u"MP   ") {
    MemoryRow row;
    row.date = writtenMinute(202611200000 + static_cast<Minute>(minute / 60 * 100 + minute % 60));
    row.fault = std::move(kind);
    row.cpu = std::move(cpu);
    row.description = u"Title of " + row.fault + u"\r\n detail";
    return row;
  }

  MemoryRows rows;
  Desk desk;
  FloodDigest digest{desk};
};

TEST_F(DigestTest, TellsKindsWithTitlesProcessorsAndCountsAndTheFirstAndTheLast) {
  std::vector<MemoryRow> given{fault(700, u"77")};  // long after it
  given.push_back(fault(609, u"2C", u"LP 7"));
  for (int i = 0; i < 5; ++i) given.push_back(fault(606, u"12", i < 2 ? u"LP 2 " : u"LP 14"));
  for (int i = 0; i < 4; ++i) given.push_back(fault(603, u"17"));
  for (int i = 0; i < 2; ++i) given.push_back(fault(602, u"58"));
  given.push_back(fault(600, u"01", u"LP 3"));
  given.push_back(fault(300, u"0A"));
  show(given);
  const auto flood = found();
  ASSERT_TRUE(flood);
  EXPECT_EQ(flood->times, (Times{202611201000, 202611201009}));
  EXPECT_EQ(flood->faults, 13U);
  EXPECT_EQ(flood->minutes(), 10);
  ASSERT_EQ(flood->kinds.size(), 5U);
  EXPECT_EQ(flood->kinds[0], (Flood::Kind{u"Title of 12", {u"LP 14", u"LP 2"}, 5}));
  EXPECT_EQ(flood->kinds[1], (Flood::Kind{u"Title of 17", {u"MP"}, 4}));
  EXPECT_EQ(flood->kinds[2], (Flood::Kind{u"Title of 58", {u"MP"}, 2}));
  EXPECT_EQ(flood->first, (Flood::One{u"Title of 01", u"LP 3"}));
  EXPECT_EQ(flood->last, (Flood::One{u"Title of 2C", u"LP 7"}));
}

TEST_F(DigestTest, KindsAreTheSameWhateverTheirCaseAndBlanks) {
  std::vector<MemoryRow> given;
  for (int i = 0; i < 11; ++i) given.push_back(fault(600, i % 2 == 0 ? u"0a " : u"0A"));
  show(given);
  ASSERT_TRUE(found());
  ASSERT_EQ(digest.flood()->kinds.size(), 1U);
  EXPECT_EQ(digest.flood()->kinds[0].faults, 11U);
}

TEST_F(DigestTest, ItsFilterShowsItsFaultsAndNoOthers) {
  std::vector<MemoryRow> given{fault(610)};
  for (int i = 0; i < 12; ++i) given.push_back(fault(600 - i / 6));
  given.push_back(fault(589));
  given.push_back(fault(500));
  show(given);
  ASSERT_TRUE(found());
  EXPECT_EQ(digest.flood()->filter().since, u"2026/11/20 09:59");
  EXPECT_EQ(digest.flood()->filter().until, u"2026/11/20 10:00");
  desk.setFilter(digest.flood()->filter());
  while (desk.busy()) desk.work([] { return false; });
  EXPECT_EQ(desk.size(), 12U);
  EXPECT_EQ(desk.size(), digest.flood()->faults);
}

TEST_F(DigestTest, AFilterDoesNotChangeIt) {
  std::vector<MemoryRow> given;
  for (int i = 0; i < 11; ++i) given.push_back(fault(600));
  show(given);
  Filter nothing;
  nothing.text = u"nothing";
  desk.setFilter(nothing);
  while (desk.busy()) desk.work([] { return false; });
  EXPECT_EQ(desk.size(), 0U);
  EXPECT_EQ(found()->faults, 11U);
}

TEST_F(DigestTest, WhatWasToldStaysUntilTheNewRowsAreKnown) {
  std::vector<MemoryRow> given;
  for (int i = 0; i < 11; ++i) given.push_back(fault(600));
  show(given);
  ASSERT_TRUE(found());
  given.insert(given.begin(), fault(601));
  show(given);
  EXPECT_TRUE(digest.busy());
  EXPECT_EQ(digest.flood()->faults, 11U);
  EXPECT_EQ(found()->faults, 12U);
  show({});
  EXPECT_EQ(found(), std::nullopt);
}

TEST_F(DigestTest, WaitsWhileALongStepRunsAndEndsWhereTheRowsCannotBeRead) {
  std::vector<MemoryRow> given;
  for (int i = 0; i < 11; ++i) given.push_back(fault(600));
  show(given);
  rows.held = true;
  EXPECT_FALSE(digest.busy());
  EXPECT_FALSE(digest.work([] { return true; }));
  rows.held = false;
  EXPECT_TRUE(digest.busy());
  rows.failAtFetch = rows.fetched + 15;
  EXPECT_EQ(found(), std::nullopt);
  rows.failAtFetch.reset();
  digest.begin();
  EXPECT_EQ(found()->faults, 11U) << "the next rows are looked at again";
}

TEST_F(DigestTest, RowsThatGoMeanwhileLeaveNoFlood) {
  std::vector<MemoryRow> given;
  for (int i = 0; i < 11; ++i) given.push_back(fault(600));
  show(given);
  digest.work([] { return false; });  // the times are known
  for (MemoryRow& row : rows.rows) row.gone = true;
  EXPECT_EQ(found(), std::nullopt);
}

TEST_F(DigestTest, NothingIsToldOfRowsThatNobodyLooksAt) {
  std::vector<MemoryRow> given;
  for (int i = 0; i < 11; ++i) given.push_back(fault(600));
  show(given);
  ASSERT_TRUE(found());
  digest.forget();
  EXPECT_FALSE(digest.busy());
  EXPECT_EQ(digest.flood(), std::nullopt);
}

// Each text with its values, in the order of the enumeration.
struct PlainTexts : window::ViewTexts {
  std::u16string text(window::ViewText which) override {
    using window::ViewText;
    if (which == ViewText::floodMinutes) return u"{1} in {2}, {3} to {4}.";
    if (which == ViewText::floodMinute) return u"{1} in {2}.";
    if (which == ViewText::floodEnds) return u"{1} to {2}.";
    return which == ViewText::floodKind ? u"{1} x {2}" : u"{1} others";
  }
};

TEST(FloodWords, SayWhenAndHowManyTheEndsAndTheThreeCommonestKinds) {
  PlainTexts texts;
  Flood flood;
  flood.times = {202611201000, 202611201009};
  flood.faults = 20;
  flood.kinds = {
      {u"A", {u"LP 1", u"MP"}, 9}, {u"B", {u"LP 1", u"LP 2", u"MP"}, 6}, {u"C", {u""}, 3}, {u"D", {}, 2}};
  flood.first = {u"B", u"MP"};
  flood.last = {u"D", u""};
  EXPECT_EQ(floodWords(flood, texts),
            u"20 in 10, 2026/11/20 10:00 to 10:09. B (MP) to D.\n"
            u"9 x A (LP 1, MP), 6 x B (LP 1, LP 2, …), 3 x C, 2 others");
  flood.times = {202611302359, 202612010000};
  flood.kinds.pop_back();
  flood.faults = 18;
  EXPECT_EQ(floodWords(flood, texts),
            u"18 in 2, 2026/11/30 23:59 to 2026/12/01 00:00. B (MP) to D.\n"
            u"9 x A (LP 1, MP), 6 x B (LP 1, LP 2, …), 3 x C");
  flood.times = {202611201000, 202611201000};
  flood.kinds.resize(1);
  flood.faults = 9;
  EXPECT_EQ(floodWords(flood, texts), u"9 in 2026/11/20 10:00. B (MP) to D.\n9 x A (LP 1, MP)");
}

// The same by looking at every fault's own ten minutes.
struct Plain {
  std::optional<Times> times;
  std::size_t faults = 0;
  std::map<std::u16string, std::size_t> kinds;
};
Plain plainly(const std::vector<MemoryRow>& rows) {
  std::vector<std::pair<std::int64_t, std::int64_t>> floods;  // of stretches, joined where they share a fault
  const auto clockOf = [](const MemoryRow& row) { return onTheClock(minuteOf(row.date)); };
  for (const MemoryRow& from : rows) {
    const auto begin = clockOf(from);
    if (!begin) continue;
    std::int64_t end = *begin;
    int inIt = 0;
    for (const MemoryRow& row : rows)
      if (const auto at = clockOf(row); at && *at >= *begin && *at - *begin < 10) {
        ++inIt;
        end = std::max(end, *at);
      }
    if (inIt > 10) floods.emplace_back(*begin, end);
  }
  Plain plain;
  if (floods.empty()) return plain;
  std::sort(floods.begin(), floods.end(), [](const auto& a, const auto& b) { return a.first > b.first; });
  auto [first, last] = floods.front();
  for (const auto& [begin, end] : floods)
    if (end >= first) first = std::min(first, begin), last = std::max(last, end);
  Minute least = noMinute, most = 0;
  for (const MemoryRow& row : rows) {
    const auto at = clockOf(row);
    if (!at || *at < first || *at > last) continue;
    least = std::min(least, minuteOf(row.date));
    most = std::max(most, minuteOf(row.date));
  }
  plain.times = Times{least, most};
  for (const MemoryRow& row : rows) {  // as the filter shows them, 23:60 included
    if (minuteOf(row.date) < least || minuteOf(row.date) > most) continue;
    ++plain.faults;
    ++plain.kinds[keyOf(row.fault)];
  }
  return plain;
}

TEST_F(DigestTest, ThousandRandomListsGiveWhatAPlainLoopGives) {
  std::mt19937 random(7);
  int floods = 0;
  for (int round = 0; round < 1000; ++round) {
    const int span = 20 + static_cast<int>(random() % 200), many = static_cast<int>(random() % 90);
    std::vector<MemoryRow> given;
    for (int i = 0; i < many; ++i) {
      // Some hours before and after midnight at the end of February, and dates of another form.
      const int minute = static_cast<int>(random() % static_cast<unsigned>(span));
      MemoryRow row = fault(0, random() % 2 == 0 ? u"0A" : random() % 2 == 0 ? u"0b" : u"0C ");
      row.date = minute < span / 2 ? writtenMinute(202602282400 - 40 - static_cast<Minute>(minute % 60))
                                   : writtenMinute(202603010000 + static_cast<Minute>(minute % 60));
      if (random() % 20 == 0) row.date = u"yesterday";
      if (random() % 20 == 0) row.date += u"  ";
      given.push_back(row);
    }
    std::stable_sort(given.begin(), given.end(), [](const MemoryRow& a, const MemoryRow& b) {
      return text::withoutTrailingBlanks(a.date) > text::withoutTrailingBlanks(b.date);
    });
    show(given);
    const Plain expected = plainly(given);
    const auto flood = found();
    ASSERT_EQ(flood.has_value(), expected.times.has_value()) << round;
    if (!flood) continue;
    ++floods;
    ASSERT_EQ(flood->times, *expected.times) << round;
    ASSERT_EQ(flood->faults, expected.faults) << round;
    ASSERT_EQ(flood->kinds.size(), expected.kinds.size());
    for (const Flood::Kind& kind : flood->kinds)
      ASSERT_EQ(kind.faults, expected.kinds.at(keyOf(kind.title.substr(9)))) << round;
  }
  EXPECT_GT(floods, 200);
  EXPECT_LT(floods, 950);
}

}  // namespace
}  // namespace vordane::list
