#include "list/selection.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

namespace vordane::list {
namespace {

using Stretches = std::vector<Stretch>;

TEST(Selection, AClickSelectsOneRowAlone) {
  Selection selection;
  EXPECT_FALSE(selection.has(0));
  selection.only(4);
  selection.only(7);
  EXPECT_EQ(selection.stretches(), (Stretches{{7, 8}}));
  EXPECT_EQ(selection.size(), 1U);
}

TEST(Selection, WithCtrlARowComesAndGoes) {
  Selection selection;
  selection.only(4);
  selection.toggle(6);
  EXPECT_EQ(selection.stretches(), (Stretches{{4, 5}, {6, 7}}));
  selection.toggle(5);
  EXPECT_EQ(selection.stretches(), (Stretches{{4, 7}})) << "neighbours are one stretch";
  selection.toggle(5);
  EXPECT_EQ(selection.stretches(), (Stretches{{4, 5}, {6, 7}}));
  selection.toggle(4);
  selection.toggle(6);
  EXPECT_EQ(selection.size(), 0U);
}

TEST(Selection, WithShiftItGoesFromTheRowChosenWithoutIt) {
  Selection selection;
  selection.only(10);
  selection.extend(13, false);
  EXPECT_EQ(selection.stretches(), (Stretches{{10, 14}}));
  selection.extend(8, false);
  EXPECT_EQ(selection.stretches(), (Stretches{{8, 11}})) << "from 10 still";
  selection.toggle(20);
  selection.extend(22, true);
  EXPECT_EQ(selection.stretches(), (Stretches{{8, 11}, {20, 23}})) << "with Ctrl besides, the others stay";
  selection.extend(21, false);
  EXPECT_EQ(selection.stretches(), (Stretches{{20, 22}}));
}

TEST(Selection, AllOfAMillionRowsAreOneStretch) {
  Selection selection;
  selection.only(3);
  selection.all(1'000'000);
  EXPECT_EQ(selection.stretches(), (Stretches{{0, 1'000'000}}));
  EXPECT_TRUE(selection.has(999'999));
  EXPECT_FALSE(selection.has(1'000'000));
  selection.toggle(500'000);
  EXPECT_EQ(selection.stretches(), (Stretches{{0, 500'000}, {500'001, 1'000'000}}));
  EXPECT_EQ(selection.size(), 999'999U);
  selection.all(0);
  EXPECT_TRUE(selection.stretches().empty());
}

TEST(Selection, AsASetOfRowsWouldBe) {
  std::mt19937 random(17);
  for (int round = 0; round < 200; ++round) {
    Selection selection;
    std::set<std::size_t> rows;
    std::size_t anchor = 0;
    for (int step = 0; step < 40; ++step) {
      const std::size_t row = random() % 30;
      const auto stretch = [&] {
        for (std::size_t at = std::min(anchor, row); at <= std::max(anchor, row); ++at) rows.insert(at);
      };
      switch (random() % 5) {
        case 0:
          selection.only(row);
          rows = {row};
          anchor = row;
          break;
        case 1:
          selection.extend(row, false);
          rows.clear();
          stretch();
          break;
        case 2:
          selection.extend(row, true);
          stretch();
          break;
        default:
          selection.toggle(row);
          if (rows.erase(row) == 0) rows.insert(row);
          anchor = row;
      }
      ASSERT_EQ(selection.size(), rows.size());
      for (std::size_t at = 0; at < 32; ++at) ASSERT_EQ(selection.has(at), rows.contains(at)) << at;
      const Stretches& parts = selection.stretches();
      for (std::size_t i = 0; i < parts.size(); ++i) {
        ASSERT_LT(parts[i].begin, parts[i].end);
        if (i > 0) {
          ASSERT_GT(parts[i].begin, parts[i - 1].end);
        }
      }
    }
  }
}

}  // namespace
}  // namespace vordane::list
