#include "platform/whole_file.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <random>

namespace vordane::platform {
namespace {

namespace fs = std::filesystem;

class WholeFileTest : public testing::Test {
 protected:
  void SetUp() override { fs::create_directories(folder); }
  void TearDown() override { fs::remove_all(folder); }

  static std::string contents(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }
  void put(const fs::path& path, std::string_view bytes) { std::ofstream(path, std::ios::binary) << bytes; }
  std::size_t files() const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), {}));
  }

  const fs::path folder =
      fs::temp_directory_path() / ("vordane-whole-" + std::to_string(std::random_device{}()));
  const fs::path target = folder / u"Список.csv";
};

TEST_F(WholeFileTest, HasItsNameOnlyWhenItIsWhole) {
  put(target, "before");
  WholeFile file(target);
  ASSERT_TRUE(file.begin());
  EXPECT_TRUE(file.write("one "));
  EXPECT_TRUE(file.write("two"));
  EXPECT_EQ(contents(target), "before");
  ASSERT_TRUE(file.end());
  EXPECT_EQ(contents(target), "before");
  ASSERT_TRUE(file.takeName());
  EXPECT_EQ(contents(target), "one two");
  EXPECT_EQ(files(), 1U);
}

TEST_F(WholeFileTest, GivenUpItLeavesNothingBehind) {
  put(target, "before");
  {
    WholeFile file(target);
    ASSERT_TRUE(file.begin());
    EXPECT_TRUE(file.write("half"));
    EXPECT_EQ(files(), 2U);
  }
  EXPECT_EQ(contents(target), "before");
  EXPECT_EQ(files(), 1U);
}

TEST_F(WholeFileTest, TwoAtOnceDoNotMeet) {
  put(target.u8string() + u8".part", "somebody's own");
  WholeFile first(target), second(target);
  ASSERT_TRUE(first.begin());
  ASSERT_TRUE(second.begin());
  EXPECT_TRUE(first.write("first"));
  EXPECT_TRUE(second.write("second"));
  EXPECT_TRUE(second.end() && second.takeName());
  EXPECT_EQ(contents(target), "second");
  EXPECT_TRUE(first.end() && first.takeName());
  EXPECT_EQ(contents(target), "first");
  EXPECT_EQ(contents(target.u8string() + u8".part"), "somebody's own");
}

TEST_F(WholeFileTest, WhereNoFileCanBeMadeThereIsNone) {
  WholeFile file(folder / "missing" / "list.csv");
  EXPECT_FALSE(file.begin());
}

TEST_F(WholeFileTest, WhatCantBeReplacedStaysAndMayBeTriedAgain) {
  fs::create_directories(target / "inside");
  {
    WholeFile file(target);
    ASSERT_TRUE(file.begin());
    EXPECT_TRUE(file.write("text") && file.end());
    EXPECT_FALSE(file.takeName());
    fs::remove_all(target);
    EXPECT_TRUE(file.takeName());
  }
  EXPECT_EQ(contents(target), "text");
}

}  // namespace
}  // namespace vordane::platform
