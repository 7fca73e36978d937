#include "list/finder.h"

#include <gtest/gtest.h>

#include "fakes/memory_rows.h"

namespace vordane::list {
namespace {

using fakes::MemoryRow;
using fakes::MemoryRows;

class FinderTest : public testing::Test {
 protected:
  void show(std::vector<MemoryRow> given) {
    rows.rows = std::move(given);
    desk.setStored(&rows, u"PBX-1");
    finder.begin();
  }
  void finish() {
    while (desk.busy()) desk.work([] { return true; });
    while (finder.busy()) finder.work([] { return false; });
  }

  MemoryRows rows;
  Desk desk;
  Finder finder{desk};
};

TEST_F(FinderTest, NumbersTheRowsThatHoldTheTextInAnyColumn) {
  show({{u"K1", u"MJ", u"", u"", u"Door open", 5},
        {u"K2", u"MN", u"", u"", u"other", 4},
        {u"K3", u"MN", u"", u"DOOR", u"other", 3},
        {u"K4", u"MN", u"", u"", u"the door\r\ndoor door", 2}});
  finder.seek(u"DoOr");
  EXPECT_EQ(finder.needle(), u"door");
  EXPECT_FALSE(finder.complete());
  EXPECT_EQ(finder.number(0), std::nullopt) << "not known yet";
  finish();
  EXPECT_TRUE(finder.complete());
  EXPECT_EQ(finder.hits(), 3U);
  EXPECT_EQ(finder.number(0), 1U);
  EXPECT_EQ(finder.number(1), std::nullopt);
  EXPECT_EQ(finder.number(2), 2U);
  EXPECT_EQ(finder.number(3), 3U) << "a row is one hit, however often it holds the text";
  EXPECT_EQ(finder.number(4), std::nullopt);
}

TEST_F(FinderTest, CountsOnlyTheRowsShown) {
  show({{u"K1"}, {u"K2"}, {u"K1"}, {u"K1"}});
  finder.seek(u"text");
  finish();
  EXPECT_EQ(finder.hits(), 4U);
  Filter filter;
  filter.text = u"k1";
  desk.setFilter(filter);
  EXPECT_FALSE(finder.work([] { return true; })) << "it waits for the desk";
  while (desk.busy()) desk.work([] { return true; });
  finder.begin();
  finish();
  EXPECT_EQ(finder.hits(), 3U);
  EXPECT_EQ(finder.number(1), 2U) << "the third of the rows stored";
}

TEST_F(FinderTest, WorksInPiecesAndBeginsAnewWithAnotherText) {
  show(std::vector<MemoryRow>(1000));
  rows.rows[900].description = u"needle";
  finder.seek(u"text");
  EXPECT_FALSE(finder.work([] { return false; }));
  EXPECT_GT(finder.progress().done, 0U);
  EXPECT_LT(rows.fetched, 1000U);
  EXPECT_EQ(finder.progress().of, 1000U);
  finder.seek(u"TEXT");
  EXPECT_GT(finder.progress().done, 0U) << "the same text goes on";
  finder.seek(u"needle");
  EXPECT_EQ(finder.progress().done, 0U);
  finish();
  EXPECT_EQ(finder.hits(), 1U);
  EXPECT_EQ(finder.number(900), 1U);
}

TEST_F(FinderTest, AnEmptyTextLooksForNothing) {
  show({{u"K1"}});
  EXPECT_FALSE(finder.busy());
  finder.seek(u"text");
  EXPECT_TRUE(finder.busy());
  finder.seek(u"");
  EXPECT_FALSE(finder.busy());
  finish();
  EXPECT_EQ(rows.fetched, 0U);
}

TEST_F(FinderTest, WhileALongStepRunsItRests) {
  show({{u"K1"}});
  finder.seek(u"text");
  rows.held = true;
  EXPECT_FALSE(finder.busy());
  EXPECT_FALSE(finder.work([] { return true; }));
  rows.held = false;
  finish();
  EXPECT_EQ(finder.hits(), 1U);
}

TEST_F(FinderTest, AnErrorOfTheDatabaseIsToldAndAnotherTextTriesAgain) {
  show(std::vector<MemoryRow>(3));
  rows.failAtFetch = 2;
  finder.seek(u"text");
  EXPECT_FALSE(finder.work([] { return true; }));
  EXPECT_EQ(finder.failure(), u"damaged");
  EXPECT_FALSE(finder.busy());
  EXPECT_EQ(finder.hits(), 0U);
  rows.failAtFetch.reset();
  finder.seek(u"text");
  finish();
  EXPECT_EQ(finder.hits(), 3U);
  EXPECT_TRUE(finder.failure().empty());
}

}  // namespace
}  // namespace vordane::list
