#include "list/new_rows.h"

#include <gtest/gtest.h>

#include "fakes/memory_rows.h"

namespace vordane::list {
namespace {

using fakes::MemoryRow;
using fakes::MemoryRows;

constexpr auto wholly = [] { return true; };
constexpr auto onePiece = [] { return false; };

class NextNewTest : public testing::Test {
 protected:
  void SetUp() override { show({9, 3, 8, 1, 2, 7}); }
  void show(std::initializer_list<int> numbers) {
    rows.rows.clear();
    for (const int number : numbers) {
      MemoryRow row;
      row.count = number;
      row.fault = number % 2 == 0 ? u"02" : u"01";
      rows.rows.push_back(row);
    }
    desk.setStored(&rows, u"PBX-1");
    news.begin();
  }
  void onlyKind(std::u16string kind) {
    Filter filter;
    filter.kinds = {KindRule::Way::only, {std::move(kind)}};
    desk.setFilter(filter);
    while (desk.work(wholly).worked) {
    }
  }

  MemoryRows rows;
  Desk desk;
  NewRows news{desk};
};

TEST_F(NextNewTest, TheNextOneStandsBehindTheRowAndThenRoundTheEnd) {
  EXPECT_EQ(news.next(6, std::nullopt), 0U);
  EXPECT_EQ(news.next(6, 0), 2U);
  EXPECT_EQ(news.next(6, 2), 5U);
  EXPECT_EQ(news.next(6, 5), 0U);
}

TEST_F(NextNewTest, TheOnlyOneIsFoundAgain) {
  EXPECT_EQ(news.next(8, 0), 0U);
  EXPECT_EQ(news.next(8, 3), 0U);
}

TEST_F(NextNewTest, WhereNoneIsAboveTheMarkThereIsNone) {
  EXPECT_EQ(news.next(9, 1), std::nullopt);
  EXPECT_TRUE(news.isNew(0, 8));
  EXPECT_FALSE(news.isNew(0, 9)) << "the mark itself has been looked at";
  EXPECT_FALSE(news.isNew(6, 0)) << "there is no such row";
}

TEST_F(NextNewTest, OnlyRowsThatTheFilterShowsAreGoneTo) {
  onlyKind(u"02");
  ASSERT_EQ(desk.size(), 2U);
  EXPECT_EQ(news.next(6, std::nullopt), 0U);
  EXPECT_EQ(news.next(6, 0), 0U) << "number 2 is none";
  EXPECT_TRUE(news.isNew(0, 6)) << "number 8 stands first now";
  EXPECT_FALSE(news.isNew(1, 6));
  EXPECT_FALSE(news.isNew(0, 8)) << "not the row that is stored first";
}

TEST_F(NextNewTest, TheHighestNumberIsThatOfAllStoredRowsWhateverTheFilterShows) {
  onlyKind(u"02");
  EXPECT_EQ(news.highest(), std::nullopt) << "nobody has looked yet";
  news.work(wholly);
  EXPECT_FALSE(news.busy());
  EXPECT_EQ(news.highest(), 9);
}

TEST_F(NextNewTest, AMillionRowsAreLookedAtInPieces) {
  rows.rows.assign(100'000, MemoryRow{});
  rows.rows[99'999].count = 5;
  desk.setStored(&rows, u"PBX-1");
  news.begin();
  int pieces = 0;
  for (; news.busy(); ++pieces) {
    EXPECT_EQ(news.highest(), std::nullopt);
    news.work(onePiece);
  }
  EXPECT_EQ(pieces, 4);
  EXPECT_EQ(news.highest(), 5);
}

TEST_F(NextNewTest, NothingIsReadForIt) {
  news.work(wholly);
  news.next(6, 0);
  EXPECT_EQ(rows.fetched, 0U);
}

TEST_F(NextNewTest, RowsWithoutNumbersAreNeverNew) {
  rows.numbered = false;
  news.work(wholly);
  EXPECT_EQ(news.highest(), std::nullopt);
  EXPECT_EQ(news.next(0, std::nullopt), std::nullopt);
}

TEST_F(NextNewTest, WhileTheDeskReadsAListOnItWaits) {
  rows.unread = 3;
  desk.setStored(&rows, u"PBX-1");
  news.begin();
  EXPECT_FALSE(news.busy());
  EXPECT_TRUE(news.waits());
  news.work(wholly);
  EXPECT_EQ(news.highest(), std::nullopt);
  while (desk.reading()) desk.work(onePiece);
  EXPECT_FALSE(news.waits());
  EXPECT_TRUE(news.busy());
  news.work(wholly);
  EXPECT_EQ(news.highest(), 9);
}

TEST_F(NextNewTest, WhoGoesToTheNextOneHasTheRestReadBefore) {
  rows.unread = 3;
  desk.setStored(&rows, u"PBX-1");
  EXPECT_EQ(news.next(6, 2), 5U);
  EXPECT_TRUE(rows.isRead());
}

TEST_F(NextNewTest, AListThatCantBeReadOnIsLookedThroughAsFarAsItIsThere) {
  rows.unread = 3;
  rows.failReadingOn = true;
  desk.setStored(&rows, u"PBX-1");
  news.begin();
  EXPECT_EQ(news.next(6, 2), std::nullopt);
  while (desk.reading()) desk.work(onePiece);
  EXPECT_FALSE(news.waits()) << "nobody reads it on any longer";
  EXPECT_FALSE(news.busy());
}

TEST_F(NextNewTest, WhileALongStepHoldsTheRowsItRests) {
  rows.held = true;
  EXPECT_FALSE(news.busy());
  news.work(wholly);
  EXPECT_EQ(news.next(0, std::nullopt), std::nullopt);
  rows.held = false;
  EXPECT_TRUE(news.busy());
}

}  // namespace
}  // namespace vordane::list
