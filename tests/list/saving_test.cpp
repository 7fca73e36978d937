#include "list/saving.h"

#include <gtest/gtest.h>

#include <malloc.h>
#include <sys/resource.h>

#include <csignal>
#include <fstream>
#include <iterator>
#include <random>

#include "fakes/memory_rows.h"

namespace vordane::list {
namespace {

namespace fs = std::filesystem;
using fakes::MemoryRow;
using fakes::MemoryRows;
using State = Saving::State;

class SavingTest : public testing::Test {
 protected:
  void SetUp() override { fs::create_directories(folder); }
  void TearDown() override { fs::remove_all(folder); }

  void show(std::vector<MemoryRow> given) {
    rows.rows = std::move(given);
    desk.setStored(&rows, u"PBX-1");
  }
  Saving saving(const fs::path& file) { return {desk, makeRowWriter(RowForm::csv, {}, desk.size()), file}; }
  static State finish(Saving& saving) {
    while (saving.work([] { return false; }) == State::atWork) {
    }
    return saving.state();
  }
  static std::string contents(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }
  static std::size_t lines(const fs::path& path) {
    const std::string all = contents(path);
    return static_cast<std::size_t>(std::count(all.begin(), all.end(), '\n'));
  }
  bool nothingLeft() const { return fs::is_empty(folder); }

  const fs::path folder =
      fs::temp_directory_path() / ("vordane-saving-" + std::to_string(std::random_device{}()));
  const fs::path target = folder / "list.csv";
  MemoryRows rows;
  Desk desk;
};

TEST_F(SavingTest, ReadsRowsTogetherAndHoldsNothingWhileItWrites) {
  show(std::vector<MemoryRow>(4000));
  Saving saved = saving(target);
  bool outside = false;
  const auto again = [&] {
    outside = outside || rows.together != 1;
    return true;
  };
  while (saved.work(again) == State::atWork) EXPECT_EQ(rows.together, 0);
  ASSERT_EQ(saved.state(), State::saved);
  EXPECT_FALSE(outside);
  EXPECT_EQ(rows.together, 0);
  EXPECT_EQ(rows.fetchedApart, 0U);
  EXPECT_EQ(rows.readings, fs::file_size(target) / 65536 + 1) << "one for each piece of the file";
}

TEST_F(SavingTest, WritesTheRowsShownInTheirOrder) {
  show({{u"K1"}, {u"K2"}, {u"K1", u"MN", u"", u"", u"last", 5}});
  rows.kept.notes[5] = {u"anna", u"2026/11/21 08:15", u"cable"};
  Filter filter;
  filter.kinds = {KindRule::Way::only, {u"k1"}};
  desk.setFilter(filter);
  while (desk.busy()) desk.work([] { return true; });
  Saving saved = saving(target);
  EXPECT_EQ(saved.progress().of, 2U);
  EXPECT_EQ(saved.work([] { return false; }), State::atWork);
  EXPECT_EQ(saved.progress().done, 1U);
  EXPECT_FALSE(fs::exists(target));
  EXPECT_EQ(finish(saved), State::saved);
  EXPECT_EQ(contents(target),
            "\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\"\r\n"
            "\"K1\",\"MJ\",\"2026/11/20 10:00\",\"MP   \",\"text\",0,\"\",\"\",\"\"\r\n"
            "\"K1\",\"MN\",\"\",\"\",\"last\",5,\"cable\",\"anna\",\"2026/11/21 08:15\"\r\n");
  EXPECT_EQ(saved.work([] { return true; }), State::saved) << "once";
  EXPECT_EQ(saved.gone(), 0U);
}

TEST_F(SavingTest, GivenUpItLeavesNothing) {
  show(std::vector<MemoryRow>(1000));
  {
    Saving saved = saving(target);
    for (int i = 0; i < 10; ++i) EXPECT_EQ(saved.work([] { return false; }), State::atWork);
    EXPECT_FALSE(nothingLeft());
  }
  EXPECT_TRUE(nothingLeft());
}

TEST_F(SavingTest, RowsThatGoMeanwhileAreCountedAndTheRestIsSaved) {
  show(std::vector<MemoryRow>(10));
  Saving saved = saving(target);
  saved.work([] { return false; });
  rows.rows[4].gone = rows.rows[9].gone = true;
  EXPECT_EQ(finish(saved), State::saved);
  EXPECT_EQ(saved.gone(), 2U);
  EXPECT_EQ(lines(target), 9U) << "with the headings";
}

TEST_F(SavingTest, AnErrorOfTheDatabaseEndsItAndLeavesNothing) {
  show(std::vector<MemoryRow>(10));
  rows.failAtFetch = 5;
  Saving saved = saving(target);
  EXPECT_EQ(finish(saved), State::failed);
  EXPECT_EQ(saved.failure(), u"damaged");
  EXPECT_EQ(saved.work([] { return true; }), State::failed);
}

TEST_F(SavingTest, WhileALongStepRunsItRests) {
  show(std::vector<MemoryRow>(10));
  Saving saved = saving(target);
  saved.work([] { return false; });
  rows.held = true;
  EXPECT_EQ(saved.work([] { return true; }), State::atWork);
  EXPECT_EQ(saved.progress().done, 1U);
  rows.held = false;
  EXPECT_EQ(finish(saved), State::saved);
}

TEST_F(SavingTest, WhereNoFileCanBeMadeItSaysSo) {
  show({{}});
  Saving saved = saving(folder / "missing" / "list.csv");
  EXPECT_EQ(finish(saved), State::noFile);
}

TEST_F(SavingTest, WhatHasTheNameAndCantBeReplacedIsTriedForAWhile) {
  show({{}});
  fs::create_directories(target / "inside");
  int pieces = 0;
  Saving saved = saving(target);
  while (saved.work([] { return true; }) == State::atWork) ++pieces;
  EXPECT_EQ(saved.state(), State::held);
  EXPECT_GT(pieces, 50);
  EXPECT_TRUE(fs::exists(target / "inside"));
}

// As much as a disk without room does.
TEST_F(SavingTest, AFullDiskLeavesNoHalfFileAndWhatWasThereStays) {
  show(std::vector<MemoryRow>(20'000));
  std::ofstream(target) << "before";
  rlimit before{};
  getrlimit(RLIMIT_FSIZE, &before);
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  const rlimit small{200'000, before.rlim_max};
  setrlimit(RLIMIT_FSIZE, &small);
  {
    Saving saved = saving(target);
    EXPECT_EQ(finish(saved), State::noRoom);
    EXPECT_LT(saved.progress().done, 20'000U) << "it does not go on";
  }
  setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, handler);
  EXPECT_EQ(contents(target), "before");
  fs::remove(target);
  EXPECT_TRUE(nothingLeft());
  Saving again = saving(target);
  EXPECT_EQ(finish(again), State::saved);
}

// A million rows that are made when they are asked for.
class EndlessRows final : public window::GridSource, public database::RowList {
 public:
  std::size_t size() const override { return 1'000'000; }
  std::optional<window::GridRow> row(std::size_t) override { return {}; }
  std::vector<Range> provenance(std::size_t, std::size_t) override { return {}; }
  database::RowList* list() override { return this; }
  bool fetch(std::size_t position, std::vector<database::Value>& out) override {
    const auto number = static_cast<std::int32_t>(position);
    out = {std::u16string(u"0A"),   std::u16string(u"MJ"),     std::u16string(u"2026/11/20 10:00"),
           std::u16string(u"LP 2"), std::u16string(250, u'x'), number};
    return true;
  }
};

TEST_F(SavingTest, AMillionRowsTakeNoMoreRoomThanAFew) {
  EndlessRows endless;
  desk.setStored(&endless, u"PBX-1");
  Saving saved(desk, makeRowWriter(RowForm::page, {}, desk.size()), target);
  const auto held = [] { return mallinfo2().uordblks; };
  const std::size_t before = held();
  if (before == 0) GTEST_SKIP() << "the sanitizers' allocator does not say what it holds";
  std::size_t most = 0, pieces = 0, rowsOfPiece = 0;
  while (saved.work([&] { return ++rowsOfPiece % 1000 != 0; }) == State::atWork)
    if (++pieces % 50 == 0) most = std::max(most, held());
  EXPECT_EQ(saved.state(), State::saved);
  EXPECT_GE(pieces, 999U);
  EXPECT_LT(most, before + 500'000);
  EXPECT_GT(fs::file_size(target), 300'000'000U);
}

}  // namespace
}  // namespace vordane::list
