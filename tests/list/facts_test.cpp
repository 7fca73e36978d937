#include "list/facts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fakes/memory_rows.h"

namespace vordane::list {
namespace {

using fakes::MemoryRow;
using fakes::MemoryRows;
using testing::ElementsAre;

Facts factsOf(MemoryRows& rows) {
  Facts facts(rows.size());
  const auto survey = rows.survey(surveyedColumns);
  while (survey->next(2, facts)) {
  }
  while (facts.name(rows, 1)) {
  }
  return facts;
}

std::vector<std::u16string> told(const std::vector<Tally>& tallies) {
  std::vector<std::u16string> lines;
  for (const Tally& tally : tallies)
    lines.push_back(tally.key + u"|" + tally.shown + u"|" + tally.title + u"|" +
                    std::u16string(tally.rows, u'.'));
  return lines;
}

TEST(FactsOfRows, CountKindsAndProcessors) {
  MemoryRows rows({{u"0A", u"MJ", u"2026/11/20 10:00", u"LP 12", u"Line fault\r\nport 3"},
                   {u"01", u"MN", u"2026/11/20 10:00", u"LP 2", u"Restart\r\n"},
                   {u"0a ", u"MN", u"", u"LP 12", u"Line fault\r\nport 4"},
                   {u"0A", u"MJ", u"2026/11/21 10:00", u"lp 2  ", u"Line fault\r\nport 5"}});
  const Facts facts = factsOf(rows);
  EXPECT_THAT(told(kindsOf(facts)), ElementsAre(u"01|01|Restart|.", u"0a|0A|Line fault|..."));
  EXPECT_THAT(told(processorsOf(facts)), ElementsAre(u"lp 2|LP 2||..", u"lp 12|LP 12||.."));
  EXPECT_EQ(facts.minuteOf(1), 202611201000U);
  EXPECT_EQ(facts.minuteOf(2), noMinute);
  EXPECT_EQ(facts.minuteOf(3), 202611211000U);
}

TEST(FactsOfRows, ARowThatHasGoneBelongsToNothing) {
  MemoryRows rows({{}, {}, {u"02"}});
  rows.rows[0].gone = true;
  const Facts facts = factsOf(rows);
  EXPECT_EQ(facts.groupOf(0), Facts::noGroup);
  EXPECT_THAT(told(kindsOf(facts)), ElementsAre(u"01|01|text|.", u"02|02|text|."));
}

// Between the survey and the reading of its texts somebody deletes the row that stands for its kind.
TEST(FactsOfRows, AnotherRowSpeaksForAKindWhoseFirstHasGone) {
  MemoryRows rows({{u"02"}, {}, {u"02", u"MJ", u"", u"MP", u"second"}});
  rows.rows[2].cpu = rows.rows[0].cpu;
  Facts facts(rows.size());
  const auto survey = rows.survey(surveyedColumns);
  while (survey->next(100, facts)) {
  }
  rows.rows[0].gone = true;
  while (facts.name(rows, 1)) {
  }
  EXPECT_THAT(told(kindsOf(facts)), ElementsAre(u"01|01|text|.", u"02|02|second|.."));
}

TEST(FactsOfRows, ASieveKnowsTheClassTheKindTheProcessorAndTheTime) {
  MemoryRows rows({{u"01", u"MJ", u"2026/11/20 10:00", u"MP"},
                   {u"02", u"MN", u"2026/11/20 10:01", u"LP 1"},
                   {u"03", u"MN", u"another form", u"LP 2"}});
  const Facts facts = factsOf(rows);
  using enum Sieve::Verdict;
  const auto verdicts = [&](const Filter& filter) {
    const Sieve sieve(filter, facts);
    return std::vector{sieve.of(0), sieve.of(1), sieve.of(2)};
  };
  Filter filter;
  EXPECT_THAT(verdicts(filter), ElementsAre(shown, shown, shown));
  filter.major = false;
  EXPECT_THAT(verdicts(filter), ElementsAre(hidden, shown, shown));
  filter = {};
  filter.kinds.set(u"02", false);
  EXPECT_THAT(verdicts(filter), ElementsAre(shown, hidden, shown));
  filter = {};
  filter.processor = u"lp 2";
  EXPECT_THAT(verdicts(filter), ElementsAre(hidden, hidden, shown));
  filter = {};
  filter.since = u"2026/11/20 10:01";
  EXPECT_THAT(verdicts(filter), ElementsAre(hidden, shown, shownIfOtherDates));
  filter = {};
  filter.until = u"2026/11/20 10:00";
  EXPECT_THAT(verdicts(filter), ElementsAre(shown, hidden, shownIfOtherDates));
}

}  // namespace
}  // namespace vordane::list
