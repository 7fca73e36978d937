#include "store/store_fixture.h"

namespace vordane::store {
namespace {

using Texts = std::vector<std::u16string>;
using Pairs = std::vector<std::pair<std::size_t, std::size_t>>;

class RowsTest : public StoreTest {
 protected:
  void ingest() {
    form.ingest(store);
    form.takeTrace();
  }
  Pairs provenance(std::size_t position) {
    Pairs pairs;
    for (const auto range : form.memoryView.rows->provenance(0, position))
      pairs.emplace_back(range.begin, range.end);
    return pairs;
  }
  // Where `part` begins in the first row's description.
  std::size_t at(std::u16string_view part) { return form.memoryView.rows->row(0)->description.find(part); }
};

TEST_F(RowsTest, AValueKnowsItsDataCharacters) {
  form.receive(u"01 MJ MP", u"2026/11/20 20:58", u"02 FF");
  ingest();
  EXPECT_EQ(provenance(at(u"code 2")), (Pairs{{1, 2}}));
  EXPECT_EQ(provenance(at(u"code 2") + 5), (Pairs{{1, 2}}));
  EXPECT_EQ(provenance(0), Pairs{});
  EXPECT_EQ(provenance(10000), Pairs{});
}

TEST_F(RowsTest, TheDataPartIsFoundInTheTrailer) {
  form.receive(u"01 MJ MP", u"2026/11/20 20:58", u"02 FF", u"0A");
  ingest();
  const auto part = form.memoryView.rows->dataPart(0).value();
  EXPECT_EQ(form.memoryView.rows->row(0)->description.substr(part.begin, part.end - part.begin), u"02 FF 0A");
}

TEST_F(RowsTest, NothingIsMarkedInADescriptionThatDecodesOtherwise) {
  addExchange(u"PBX-1", u"2021-01-01 00:00:00");
  addFault(1, {u"01", u"MJ", u"MP   ", u"2026", u"M9\r\nM14 former text\r\nData [02 ]"});
  store.RefreshDisplay();
  for (std::size_t i = 0; i < 30; ++i) EXPECT_EQ(provenance(i), Pairs{});
  EXPECT_TRUE(form.memoryView.rows->dataPart(0).has_value());
}

TEST_F(RowsTest, OneDescriptionIsExplainedForEachKindAnew) {
  form.receive(u"01 MJ MP", u"2026/11/20 20:58", u"02 FF");
  ingest();
  const auto description = form.memoryView.rows->row(0)->description;
  addFault(1, {u"02", u"MJ", u"MP   ", u"2026/11/19 20:58", description});
  store.RefreshDisplay();
  ASSERT_EQ(form.memoryView.rows->row(1)->description, description);
  const auto explained = [&](std::size_t row) {
    return form.memoryView.rows->provenance(row, at(u"code 2")).size();
  };
  EXPECT_EQ(explained(0), 1U);
  EXPECT_EQ(explained(1), 0U);
  EXPECT_EQ(explained(0), 1U);
}

TEST_F(RowsTest, WhatIsShownNextIsExplainedAnew) {
  form.receive(u"01 MJ MP", u"2026/11/20 20:58", u"02 FF");
  ingest();
  const std::size_t value = at(u"code 2");
  ASSERT_EQ(provenance(value), (Pairs{{1, 2}}));
  database->inner().execute(deleteFaults(1));
  addFault(1, {u"01", u"MJ", u"MP   ", u"2026", u"just text, and much of it, so that it is long enough"});
  store.RefreshDisplay();
  EXPECT_EQ(provenance(value), Pairs{});
}

TEST_F(RowsTest, ARowThatIsNotGivenExplainsNothingUntilItIs) {
  form.receive(u"01 MJ MP", u"2026/11/20 20:58", u"02 FF");
  ingest();
  const std::size_t value = at(u"code 2");
  ASSERT_EQ(provenance(value), (Pairs{{1, 2}}));
  EXPECT_EQ(form.memoryView.rows->provenance(1, value).size(), 0U);
  EXPECT_EQ(provenance(value), (Pairs{{1, 2}}));
}

TEST_F(RowsTest, ADescriptionWithoutATrailerHasNoDataPart) {
  addExchange(u"PBX-1", u"2021-01-01 00:00:00");
  addFault(1, {u"01", u"MJ", u"MP   ", u"2026", u"just text"});
  store.RefreshDisplay();
  EXPECT_FALSE(form.memoryView.rows->dataPart(0).has_value());
  EXPECT_EQ(provenance(0), Pairs{});
}

TEST_F(RowsTest, HalfATrailerIsNoDataPart) {
  form.receive(u"01 MJ MP", u"2026/11/20 20:58", u"02 FF");
  ingest();
  const auto description = form.memoryView.rows->row(0)->description;
  const auto heading = description.rfind(u"\r\n");
  for (const auto& half :
       {description.substr(0, description.size() - 1), description.substr(0, heading) + u"]",
        u"plain text" + description.substr(description.size() - 1)}) {
    database->inner().execute(deleteFaults(1));
    addFault(1, {u"01", u"MJ", u"MP   ", u"2026", half});
    store.RefreshDisplay();
    ASSERT_EQ(form.memoryView.rows->row(0)->description, half);
    EXPECT_FALSE(form.memoryView.rows->dataPart(0).has_value());
  }
}

TEST_F(RowsTest, ARowThatHasGoneIsNothing) {
  form.receive(u"01 MJ MP", u"2026/11/20 20:58", u"02");
  ingest();
  database->inner().execute(deleteFaults(1));
  EXPECT_EQ(form.memoryView.rows->size(), 1U);
  EXPECT_FALSE(form.memoryView.rows->row(0).has_value());
  EXPECT_FALSE(form.memoryView.rows->row(7).has_value());
  EXPECT_EQ(provenance(0), Pairs{});
  EXPECT_FALSE(form.memoryView.rows->dataPart(0).has_value());
}

TEST_F(RowsTest, WhileAStepRunsNoRowIsReadAndWhatIsDrawnStays) {
  form.receive(u"01 MJ MP", u"1", u"02");
  form.receive(u"01 MJ MP", u"2", u"02");
  ingest();
  form.memoryView.paintNow();
  const Texts drawn = form.memoryView.screen;
  ASSERT_EQ(drawn.size(), 2U);
  database->before = [&](std::u16string_view step) {
    if (!step.starts_with(u"DELETE FROM FaultDisplay")) return;
    form.setClock.seconds += 1;
    ASSERT_TRUE(database->progress);
    database->progress(0, 0);
    EXPECT_EQ(form.memoryView.status[window::countPart], u"deleting 0 of 2");
    form.setClock.seconds += 1;
    database->progress(1, 2);
    EXPECT_EQ(form.memoryView.status[window::countPart], u"deleting 1 of 2");
    EXPECT_EQ(form.memoryView.screen, drawn);
    EXPECT_EQ(form.memoryView.rows->size(), 2U);
    EXPECT_FALSE(form.memoryView.rows->row(0).has_value());
    EXPECT_EQ(form.memoryView.rows->list(), nullptr);
  };
  form.boxAnswer = 6;
  store.DeleteExchange();
  EXPECT_EQ(form.memoryView.painted.size(), 3U);
}

TEST_F(RowsTest, BehindAStepRowsAreReadAgain) {
  form.receive(u"01 MJ MP", u"1", u"02");
  ingest();
  ASSERT_TRUE(form.memoryView.rows->row(0).has_value());
  ingest();  // nothing is new, so the rows are not shown anew
  EXPECT_TRUE(form.memoryView.rows->row(0).has_value());
}

class LookUpTest : public RowsTest {
 protected:
  LookUpTest() {
    addExchange(u"PBX-1", u"2021-01-01 00:00:00");
    addFault(1, {u"0A", u"MJ", u"AB 12", u"2026/11/20 10:00", u"Main Processor\r\nline"});
    addFault(1, {u"0B", u"MN", u"MP   ", u"2026/11/19 10:00", u"\u0416\u0443\u043A"});
    addFault(1, {u"0C", u"MJ", u"CD 7", u"2026/11/18 10:00", u"processor again"});
    store.RefreshDisplay();
  }
};

TEST_F(LookUpTest, FindsWithoutRegardToCase) {
  EXPECT_EQ(store.lookUp(u"PROCESSOR", -1), 0U);
  EXPECT_EQ(store.lookUp(u"\u0436\u0423\u041A", -1), 1U);
}

TEST_F(LookUpTest, GoesOnBehindTheLastFindAndRoundTheEndOnce) {
  EXPECT_EQ(store.lookUp(u"processor", 0), 2U);
  EXPECT_EQ(store.lookUp(u"processor", 2), 0U);
  EXPECT_EQ(store.lookUp(u"main", 0), 0U);
  EXPECT_EQ(store.lookUp(u"main", 1), 0U);
}

TEST_F(LookUpTest, GoesBackwardsRoundTheBeginningOnce) {
  constexpr auto back = window::LookUpWay::backwards;
  EXPECT_EQ(store.lookUp(u"processor", 2, back), 0U);
  EXPECT_EQ(store.lookUp(u"processor", 0, back), 2U);
  EXPECT_EQ(store.lookUp(u"main", 0, back), 0U);
  EXPECT_EQ(store.lookUp(u"m", 2, back), 1U);
  EXPECT_EQ(store.lookUp(u"processor", -1, back), 2U);
  EXPECT_EQ(store.lookUp(u"processor", 99, back), 2U);
  EXPECT_EQ(store.lookUp(u"main", 3, back), 0U);
  EXPECT_FALSE(store.lookUp(u"nowhere", 1, back).has_value());
}

TEST_F(LookUpTest, LooksIntoEveryColumn) {
  EXPECT_EQ(store.lookUp(u"0c", -1), 2U);
  EXPECT_EQ(store.lookUp(u"mn", -1), 1U);
  EXPECT_EQ(store.lookUp(u"/19 ", -1), 1U);
  EXPECT_EQ(store.lookUp(u"cd 7", -1), 2U);
  EXPECT_EQ(store.lookUp(u"3", 0), 2U);
}

TEST_F(LookUpTest, FindsNothingWhereNothingIs) {
  EXPECT_FALSE(store.lookUp(u"nowhere", -1).has_value());
  EXPECT_FALSE(store.lookUp(u"", -1).has_value());
  store.close();
  EXPECT_FALSE(store.lookUp(u"processor", -1).has_value());
}

TEST_F(LookUpTest, TakesAnyStartingPlace) {
  EXPECT_EQ(store.lookUp(u"processor", 99), 2U);
  EXPECT_EQ(store.lookUp(u"processor", -7), 0U);
}

}  // namespace
}  // namespace vordane::store
