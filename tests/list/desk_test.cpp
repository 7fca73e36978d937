#include "list/desk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "fakes/memory_rows.h"
#include "text/numbers.h"
#include "text/text.h"

namespace vordane::list {
namespace {

using fakes::MemoryRow;
using fakes::MemoryRows;
using testing::ElementsAre;
using testing::IsEmpty;

class DeskTest : public testing::Test {
 protected:
  // Works to the end, a piece for each message.
  Desk::Did finish() {
    Desk::Did all;
    while (desk.busy()) {
      const Desk::Did did = desk.work([] { return false; });
      if (!did.worked) break;
      all.worked = true;
      all.facts |= did.facts;
      all.shown |= did.shown;
    }
    return all;
  }
  std::vector<std::size_t> shown() const {
    std::vector<std::size_t> positions;
    for (std::size_t i = 0; i < desk.size(); ++i) positions.push_back(desk.storedPosition(i));
    return positions;
  }
  static Filter ofText(std::u16string text) {
    Filter filter;
    filter.text = std::move(text);
    return filter;
  }
  void show(std::vector<MemoryRow> given, const char16_t* exchange = u"PBX-1") {
    rows.rows = std::move(given);
    desk.setStored(&rows, exchange);
  }

  MemoryRows rows;
  Desk desk;
};

TEST_F(DeskTest, WithoutAFilterTheRowsAreAsStoredAndNothingIsRead) {
  show({{}, {}, {}});
  EXPECT_FALSE(desk.busy());
  EXPECT_THAT(shown(), ElementsAre(0, 1, 2));
  EXPECT_EQ(rows.fetched, 0U);
}

TEST_F(DeskTest, AFilterChoosesPositionsAndKeepsTheirOrder) {
  show({{u"K1"}, {u"K2"}, {u"K1"}, {u"K3"}});
  Filter filter;
  filter.kinds = {KindRule::Way::only, {u"k1", u"k3"}};
  EXPECT_EQ(desk.setFilter(filter), Mistake::none);
  EXPECT_THAT(shown(), ElementsAre(0, 1, 2, 3)) << "until the choice is complete";
  EXPECT_TRUE(finish().shown);
  EXPECT_THAT(shown(), ElementsAre(0, 2, 3));
  EXPECT_EQ(desk.row(2)->fault, u"K3");
  EXPECT_FALSE(desk.row(3).has_value());
  EXPECT_EQ(desk.provenance(2, 5)[0].begin, 3U);
  EXPECT_EQ(desk.dataPart(2)->begin, 3U);
  EXPECT_FALSE(desk.dataPart(3).has_value());
  EXPECT_THAT(desk.provenance(3, 5), IsEmpty());
}

TEST_F(DeskTest, AFilterTakenOffShowsEveryRowAgain) {
  show({{u"K1"}, {u"K2"}});
  desk.setFilter(ofText(u"K2"));
  finish();
  EXPECT_THAT(shown(), ElementsAre(1));
  desk.setFilter({});
  finish();
  EXPECT_THAT(shown(), ElementsAre(0, 1));
  EXPECT_FALSE(desk.filtered());
}

TEST_F(DeskTest, ATextIsLookedForInEveryColumnWithoutRegardToCase) {
  show({{u"K1", u"MJ", u"2026", u"LP 7", u"Door Open", 12}, {u"K2", u"MN", u"2027", u"MP", u"other", 34}});
  for (const char16_t* text : {u"K1", u"mj", u"2026", u"lp 7", u"oOR oP", u"12"}) {
    desk.setFilter(ofText(text));
    finish();
    EXPECT_THAT(shown(), ElementsAre(0));
  }
  desk.setFilter(ofText(std::u16string(10000, u'x')));
  finish();
  EXPECT_THAT(shown(), IsEmpty());
}

TEST_F(DeskTest, OnlyFaultsWithANoteAreShownWhenThatIsAskedFor) {
  std::vector<MemoryRow> many(1000);
  for (std::size_t i = 0; i < many.size(); ++i) many[i].count = static_cast<std::int64_t>(i);
  many[700].fault = u"K2";
  show(many);
  for (const std::int64_t fault : {3, 700, 999}) rows.kept.notes[fault] = {u"anna", u"", u"cable"};
  Filter filter;
  filter.noted = true;
  desk.setFilter(filter);
  finish();
  EXPECT_THAT(shown(), ElementsAre(3, 700, 999));
  filter.kinds = {KindRule::Way::only, {u"k2"}};
  desk.setFilter(filter);
  finish();
  EXPECT_THAT(shown(), ElementsAre(700));
  rows.keepsNotes = false;
  filter.kinds = {};
  desk.setFilter(filter);
  finish();
  EXPECT_THAT(shown(), IsEmpty());
}

TEST_F(DeskTest, NotesAloneNeedNoSurveyOfTheRows) {
  show({{u"K1"}, {u"K2"}});
  Filter filter;
  filter.noted = true;
  desk.setFilter(filter);
  finish();
  EXPECT_EQ(rows.fetched, 0U);
  EXPECT_EQ(desk.facts(), nullptr);
}

TEST_F(DeskTest, AFilterOfNotesFollowsANoteThatIsWritten) {
  MemoryRow second;
  second.count = 1;
  show({{}, second});
  Filter filter;
  filter.noted = true;
  desk.setFilter(filter);
  finish();
  EXPECT_THAT(shown(), IsEmpty());
  rows.kept.notes[1] = {u"anna", u"", u"cable"};
  desk.noteWritten();
  EXPECT_TRUE(desk.choosing());
  finish();
  EXPECT_THAT(shown(), ElementsAre(1));
  rows.kept.notes.clear();
  desk.noteWritten();
  EXPECT_THAT(shown(), ElementsAre(1)) << "until the choice is complete";
  finish();
  EXPECT_THAT(shown(), IsEmpty());
}

TEST_F(DeskTest, ANoteThatIsWrittenIsNoneOfTheBusinessOfOtherFilters) {
  show({{u"K1"}, {u"K2"}});
  desk.noteWritten();
  EXPECT_FALSE(desk.busy());
  Filter filter;
  filter.kinds = {KindRule::Way::only, {u"k1"}};
  desk.setFilter(filter);
  finish();
  desk.noteWritten();
  EXPECT_FALSE(desk.busy());
}

TEST_F(DeskTest, ANewerFilterTakesThePlaceOfOneUnderWay) {
  show(std::vector<MemoryRow>(1000));
  rows.rows[700].description = u"needle";
  desk.setFilter(ofText(u"text"));
  desk.work([] { return false; });
  EXPECT_TRUE(desk.choosing());
  desk.setFilter(ofText(u"needle"));
  finish();
  EXPECT_THAT(shown(), ElementsAre(700));
}

TEST_F(DeskTest, OtherRowsGiveUpWhatIsUnderWayAndBeginAnew) {
  show(std::vector<MemoryRow>(1000));
  desk.setFilter(ofText(u"text"));
  desk.work([] { return false; });
  show({{u"K1", u"MJ", u"", u"", u"other"}, {u"K1", u"MJ", u"", u"", u"text"}});
  EXPECT_THAT(shown(), ElementsAre(0, 1)) << "as the statement gave them";
  finish();
  EXPECT_THAT(shown(), ElementsAre(1));
}

TEST_F(DeskTest, FiltersAreKeptByExchange) {
  show({{u"K1"}, {u"K2"}}, u"PBX-1");
  desk.setFilter(ofText(u"K1"));
  finish();
  show({{u"K1"}, {u"K2"}}, u"PBX-2");
  EXPECT_EQ(desk.filter(), Filter{});
  EXPECT_FALSE(desk.busy());
  show({{u"K1"}, {u"K2"}}, u"PBX-1");
  EXPECT_EQ(desk.filter().text, u"K1");
  finish();
  EXPECT_THAT(shown(), ElementsAre(0));
}

TEST_F(DeskTest, WhereNobodyLooksThereIsNoFilter) {
  show({{u"K1"}, {u"K2"}}, u"PBX-1");
  desk.setFilter(ofText(u"K1"));
  desk.wantFacts(true);
  desk.setStored(&rows, std::nullopt);
  EXPECT_FALSE(desk.busy());
  EXPECT_THAT(shown(), ElementsAre(0, 1));
  desk.setFilter(ofText(u"K2"));
  EXPECT_FALSE(desk.busy());
  EXPECT_EQ(rows.fetched, 0U);
  show({{u"K1"}, {u"K2"}}, u"PBX-1");
  EXPECT_EQ(desk.filter().text, u"K1") << "as it was when somebody looked";
}

TEST_F(DeskTest, GivenUpTheFilterIsThatOfTheRowsShown) {
  show(std::vector<MemoryRow>(1000));
  rows.rows[3].description = u"needle";
  desk.setFilter(ofText(u"needle"));
  finish();
  desk.setFilter(ofText(u"text"));
  desk.work([] { return false; });
  desk.giveUp();
  EXPECT_FALSE(desk.busy());
  EXPECT_EQ(desk.filter().text, u"needle");
  EXPECT_THAT(shown(), ElementsAre(3));
  show({{u"needle"}, {}});
  EXPECT_EQ(desk.filter().text, u"needle");
}

TEST_F(DeskTest, AFilterWithAMistakeChangesNothing) {
  show({{u"K1"}, {u"K2"}});
  desk.setFilter(ofText(u"K2"));
  finish();
  Filter wrong = ofText(u"K1");
  wrong.since = u"20.11.2026";
  EXPECT_EQ(desk.setFilter(wrong), Mistake::since);
  EXPECT_FALSE(desk.busy());
  EXPECT_EQ(desk.filter().text, u"K2");
  EXPECT_THAT(shown(), ElementsAre(1));
}

TEST_F(DeskTest, DatesOfAnotherFormAreCountedAndShownOnDemand) {
  show({{u"K1", u"MJ", u"2026/11/20 10:00"},
        {u"K1", u"MJ", u"26/11/20 10:00"},
        {u"K2", u"MJ", u"2026/11/20 10:01"},
        {u"K2", u"MJ", u""},
        {u"K1", u"MJ", u"2026/11/19 10:00"}});
  Filter filter;
  filter.since = u"2026/11/20";
  desk.setFilter(filter);
  finish();
  EXPECT_THAT(shown(), ElementsAre(0, 2));
  EXPECT_EQ(desk.otherDates(), 2U);
  filter.otherDates = true;
  desk.setFilter(filter);
  finish();
  EXPECT_THAT(shown(), ElementsAre(0, 1, 2, 3));
  filter.text = u"K2";
  desk.setFilter(filter);
  finish();
  EXPECT_THAT(shown(), ElementsAre(2, 3));
  EXPECT_EQ(desk.otherDates(), 1U);
}

TEST_F(DeskTest, AFailingDatabaseEndsTheWorkAndIsTold) {
  show(std::vector<MemoryRow>(1000));
  rows.failAtFetch = 300;
  desk.setFilter(ofText(u"text"));
  finish();
  EXPECT_EQ(desk.failure(), u"damaged");
  EXPECT_FALSE(desk.busy());
  EXPECT_EQ(desk.size(), 1000U);
  EXPECT_EQ(desk.filter(), Filter{});
  rows.failAtFetch.reset();
  desk.setFilter(ofText(u"nowhere"));
  finish();
  EXPECT_EQ(desk.failure(), u"");
  EXPECT_EQ(desk.size(), 0U);
}

TEST_F(DeskTest, WhileALongStepHoldsTheRowsNothingIsRead) {
  show({{u"K1"}, {u"K2"}});
  desk.setFilter(ofText(u"K2"));
  rows.held = true;
  EXPECT_FALSE(desk.work([] { return true; }).worked);
  EXPECT_TRUE(desk.busy());
  rows.held = false;
  finish();
  EXPECT_THAT(shown(), ElementsAre(1));
}

TEST_F(DeskTest, RowsDeletedUnderTheFilterPassNoFilter) {
  show({{u"K1"}, {u"K1"}, {u"K1"}});
  rows.rows[1].gone = true;
  desk.setFilter(ofText(u"K1"));
  finish();
  EXPECT_THAT(shown(), ElementsAre(0, 2));
  for (MemoryRow& row : rows.rows) row.gone = true;
  Filter filter;
  filter.minor = false;
  desk.setFilter(filter);
  finish();
  EXPECT_THAT(shown(), IsEmpty());
}

TEST_F(DeskTest, TheFactsAreTakenOnceAndOnlyWhenSomebodyWantsThem) {
  show({{u"K1"}, {u"K2"}});
  desk.setFilter(ofText(u"K"));
  finish();
  EXPECT_EQ(desk.facts(), nullptr);
  desk.wantFacts(true);
  EXPECT_TRUE(finish().facts);
  ASSERT_NE(desk.facts(), nullptr);
  EXPECT_EQ(kindsOf(*desk.facts()).size(), 2U);
  const std::size_t before = rows.fetched;
  Filter filter;
  filter.kinds = {KindRule::Way::only, {u"k2"}};
  desk.setFilter(filter);
  finish();
  EXPECT_EQ(rows.fetched, before);
  EXPECT_THAT(shown(), ElementsAre(1));
}

TEST_F(DeskTest, OfTheRowsBeforeAStoredOneThoseShownAreCounted) {
  EXPECT_EQ(desk.shownBefore(7), 0U) << "there are no rows";
  show({{}, {.description = u"door"}, {}, {.description = u"door"}});
  EXPECT_EQ(desk.shownBefore(3), 3U);
  EXPECT_EQ(desk.shownBefore(7), 4U);
  desk.setFilter(ofText(u"door"));
  finish();
  EXPECT_EQ(desk.shownBefore(1), 0U);
  EXPECT_EQ(desk.shownBefore(3), 1U);
  EXPECT_EQ(desk.shownBefore(7), 2U);
}

TEST_F(DeskTest, ARowThatIsHiddenIsStoodInForByTheNextOne) {
  show({{u"K1"}, {u"K2"}, {u"K1"}, {u"K2"}, {u"K1"}});
  EXPECT_EQ(desk.shownPosition(3), 3U);
  desk.setFilter(ofText(u"K2"));
  finish();
  EXPECT_EQ(desk.shownPosition(0), 0U);
  EXPECT_EQ(desk.shownPosition(1), 0U);
  EXPECT_EQ(desk.shownPosition(2), 1U);
  EXPECT_EQ(desk.shownPosition(4), 1U) << "behind the last one the last";
  desk.setFilter(ofText(u"nowhere"));
  finish();
  EXPECT_EQ(desk.shownPosition(2), std::nullopt);
}

// --- a long list that is not read yet

TEST_F(DeskTest, ALongListIsReadOnAPieceForEachMessage) {
  rows.unread = 3;
  show(std::vector<MemoryRow>(10));
  EXPECT_TRUE(desk.busy());
  EXPECT_TRUE(desk.reading());
  EXPECT_EQ(desk.size(), 10U);
  for (const std::size_t left : {2, 1, 0}) {
    const Desk::Did did = desk.work([] { return false; });
    EXPECT_TRUE(did.worked);
    EXPECT_FALSE(did.shown || did.facts || did.resized);
    EXPECT_EQ(rows.unread, left);
    EXPECT_EQ(desk.reading(), left > 0);
  }
  EXPECT_FALSE(desk.busy());
  EXPECT_EQ(rows.fetched, 0U);
}

TEST_F(DeskTest, AFilterBeginsWhenAllIsRead) {
  rows.unread = 2;
  show({{u"K1"}, {u"K2"}, {u"K1"}});
  desk.setFilter(ofText(u"K2"));
  desk.work([] { return false; });
  desk.work([] { return false; });
  EXPECT_FALSE(desk.reading());
  EXPECT_EQ(rows.fetched, 0U);
  EXPECT_THAT(shown(), ElementsAre(0, 1, 2));
  finish();
  EXPECT_THAT(shown(), ElementsAre(1));
}

TEST_F(DeskTest, OtherRowsGiveUpTheReading) {
  rows.unread = 5;
  show({{u"K1"}, {u"K2"}});
  desk.work([] { return false; });
  rows.unread = 0;
  show({{u"K1"}, {u"K2"}, {u"K3"}});
  EXPECT_FALSE(desk.busy());
  EXPECT_EQ(desk.size(), 3U);
}

TEST_F(DeskTest, WhereNobodyLooksNothingIsReadOn) {
  rows.unread = 5;
  rows.rows.resize(3);
  desk.setStored(&rows, std::nullopt);
  EXPECT_FALSE(desk.busy());
  EXPECT_FALSE(desk.reading());
  EXPECT_FALSE(desk.work([] { return true; }).worked);
  EXPECT_EQ(rows.unread, 5U);
}

TEST_F(DeskTest, ReadingRestsWhileALongStepHoldsTheRows) {
  rows.unread = 2;
  show({{u"K1"}, {u"K2"}});
  rows.held = true;
  EXPECT_FALSE(desk.work([] { return true; }).worked);
  EXPECT_TRUE(desk.busy());
  rows.held = false;
  finish();
  EXPECT_EQ(rows.unread, 0U);
}

TEST_F(DeskTest, AReadingThatFailsIsLeftToWhoeverNeedsTheRows) {
  rows.unread = 5;
  rows.failReadingOn = true;
  show({{u"K1"}, {u"K2"}});
  desk.setFilter(ofText(u"K2"));
  finish();
  EXPECT_EQ(rows.unread, 5U) << "not tried again and again";
  EXPECT_EQ(desk.failure(), u"");
  EXPECT_THAT(shown(), ElementsAre(1));
}

TEST_F(DeskTest, RowsThatTurnOutToBeMoreOrFewerAreTold) {
  for (const std::size_t found : {2U, 7U}) {
    rows.unread = 2;
    rows.sizeWhenRead = found;
    show(std::vector<MemoryRow>(5));
    desk.setFilter(ofText(u"text"));
    EXPECT_FALSE(desk.work([] { return false; }).resized);
    EXPECT_TRUE(desk.work([] { return true; }).resized) << "and nothing goes on with the former number";
    EXPECT_EQ(rows.fetched, 0U);
    desk.setStored(&rows, u"PBX-1");
    finish();
    EXPECT_EQ(desk.size(), found);
    desk.setFilter({});
    finish();
    rows.fetched = 0;
  }
}

// --- against a plain loop

class Dice {
 public:
  explicit Dice(unsigned seed) : random_(seed) {}
  std::size_t below(std::size_t end) { return random_() % end; }
  template <class T, std::size_t N>
  const T& of(const T (&choices)[N]) {
    return choices[below(N)];
  }

 private:
  std::mt19937 random_;
};

constexpr const char16_t* faults[] = {u"01", u"0A", u"0a", u"17 ", u"2B", u""};
constexpr const char16_t* alarms[] = {u"MJ", u"MN", u"mn ", u"", u"??"};
constexpr const char16_t* cpus[] = {u"MP   ", u"LP 2", u"lp 2", u"LP 12", u""};
constexpr const char16_t* dates[] = {u"2026/11/20 10:00",
                                     u"2026/11/20 10:01",
                                     u"2026/11/21 00:00",
                                     u"2025/01/01 23:59",
                                     u"25/01/01 23:59",
                                     u"",
                                     u"soon",
                                     u"2026/11/20 10:00 "};
constexpr const char16_t* descriptions[] = {u"Door open\r\nport 3", u"door shut", u"ДВЕРЬ открыта", u"",
                                            u"Ω 10"};
constexpr const char16_t* needles[] = {u"door", u"OPEN", u"дверь", u"10", u"mn", u"lp 2", u"zzz", u" "};
constexpr const char16_t* writtenDates[] = {u"2025", u"2026/11", u"2026/11/20", u"2026/11/20 10:00", u"2027"};

std::vector<MemoryRow> randomRows(Dice& dice) {
  std::vector<MemoryRow> rows(dice.below(40));
  for (MemoryRow& row : rows) {
    row = {dice.of(faults), dice.of(alarms), dice.of(dates), dice.of(cpus), dice.of(descriptions)};
    row.count = static_cast<std::int64_t>(dice.below(2000));
    row.gone = dice.below(15) == 0;
  }
  return rows;
}

Filter randomFilter(Dice& dice) {
  Filter filter;
  if (dice.below(3) == 0) filter.text = dice.of(needles);
  filter.major = dice.below(4) != 0;
  filter.minor = dice.below(4) != 0;
  filter.kinds.way = static_cast<KindRule::Way>(dice.below(3));
  for (std::size_t n = dice.below(4); n > 0; --n) filter.kinds.kinds.insert(keyOf(dice.of(faults)));
  if (dice.below(3) == 0) filter.processor = keyOf(dice.of(cpus));
  if (dice.below(2) == 0) filter.since = dice.of(writtenDates);
  if (dice.below(2) == 0) filter.until = dice.of(writtenDates);
  filter.otherDates = dice.below(2) == 0;
  return filter;
}

// The rule once more, a row at a time and with nothing remembered.
bool passes(const Filter& filter, const MemoryRow& row) {
  if (row.gone) return false;
  const std::u16string alarm = text::toLower(text::trim(row.alarm));
  if (!(filter.major && filter.minor) && !(filter.major && alarm == u"mj") &&
      !(filter.minor && alarm == u"mn"))
    return false;
  const bool named = filter.kinds.kinds.count(text::toLower(text::trim(row.fault))) > 0;
  if (filter.kinds.way == KindRule::Way::only && !named) return false;
  if (filter.kinds.way == KindRule::Way::without && named) return false;
  if (filter.processor && *filter.processor != text::toLower(text::trim(row.cpu))) return false;
  if (!filter.text.empty()) {
    bool found = false;
    for (const std::u16string& cell :
         {row.fault, row.alarm, row.date, row.cpu, row.description, text::decimal(row.count)})
      found |= text::toLower(cell).find(text::toLower(filter.text)) != std::u16string::npos;
    if (!found) return false;
  }
  if (filter.since.empty() && filter.until.empty()) return true;
  std::u16string date = row.date;
  while (!date.empty() && date.back() == u' ') date.pop_back();
  if (date.size() != 16 || date[4] != u'/') return filter.otherDates;
  const std::u16string from = filter.since + std::u16string(u"0000/00/00 00:00").substr(filter.since.size());
  const std::u16string to = filter.until + std::u16string(u"9999/99/99 99:99").substr(filter.until.size());
  return date >= from && date <= to;
}

TEST_F(DeskTest, AThousandFiltersChooseWhatAPlainLoopChooses) {
  Dice dice(20261122);
  std::size_t hiddenSome = 0;
  for (int round = 0; round < 1000; ++round) {
    show(randomRows(dice), dice.below(2) == 0 ? u"PBX-1" : u"PBX-2");
    desk.wantFacts(dice.below(2) == 0);
    for (int change = 0; change < 2; ++change) {
      const Filter filter = randomFilter(dice);
      if (desk.setFilter(filter) != Mistake::none) continue;
      if (dice.below(2) == 0) desk.work([] { return false; });
    }
    finish();
    const Filter filter = desk.filter();
    std::vector<std::size_t> expected;
    for (std::size_t i = 0; i < rows.size(); ++i)
      if (!isOn(filter) || passes(filter, rows.rows[i])) expected.push_back(i);
    ASSERT_EQ(shown(), expected) << "round " << round;
    hiddenSome += !expected.empty() && expected.size() < rows.size() ? 1 : 0;
  }
  EXPECT_GT(hiddenSome, 250U) << "else the filters are too wide or too narrow to tell anything";
}

}  // namespace
}  // namespace vordane::list
