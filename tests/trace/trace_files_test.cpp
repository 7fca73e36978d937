#include "trace/trace_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "fakes/memory_folder.h"

namespace vordane::trace {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

constexpr Moment moment = 1'795'416'312'345'678, day = 86'400'000'000;  // 2026-11-23 06:45:12
constexpr Limits small{8000, 7, 1000};

class Files : public testing::Test {
 protected:
  TraceFiles files(const Limits& limits = small) {
    return {std::make_unique<fakes::MemoryFolder>(held), limits, "0123abcd"};
  }
  std::vector<std::string> names() const {
    std::vector<std::string> found;
    for (const auto& [name, bytes] : folder.content) found.push_back(name);
    return found;
  }
  std::shared_ptr<fakes::MemoryFolderState> held = std::make_shared<fakes::MemoryFolderState>();
  fakes::MemoryFolderState& folder = *held;
};

TEST_F(Files, AreNamedForTheirBeginAndGoOnUntilAnEighthOfTheLimit) {
  auto traced = files();
  traced.write(std::string(600, 'a'), 1, moment);
  traced.write(std::string(400, 'b'), 1, moment + 1);
  EXPECT_THAT(names(), ElementsAre("trace-20261123-064512-0123abcd-0001.jsonl"));
  traced.write("c", 1, moment + 2);
  EXPECT_THAT(names(), ElementsAre("trace-20261123-064512-0123abcd-0001.jsonl",
                                   "trace-20261123-064512-0123abcd-0002.jsonl"));
  EXPECT_EQ(folder.all(), std::string(600, 'a') + std::string(400, 'b') + "c");
}

TEST_F(Files, OneThatIsADayOldIsFollowedByAnother) {
  auto traced = files();
  traced.write("a", 1, moment);
  traced.write("b", 1, moment + day);
  EXPECT_EQ(names().size(), 1U);
  traced.write("c", 1, moment + day + 1);
  EXPECT_THAT(names(), ElementsAre("trace-20261123-064512-0123abcd-0001.jsonl",
                                   "trace-20261124-064512-0123abcd-0002.jsonl"));
}

TEST_F(Files, AllTogetherKeepToTheLimit) {
  auto traced = files();
  for (int i = 0; i < 100; ++i) {
    traced.write(std::string(900, 'x'), 1, moment + i * 1'000'000);
    EXPECT_LE(folder.all().size(), small.bytes) << i;
  }
  EXPECT_EQ(names().size(), 8U) << "as much as the limit lets stay";
  EXPECT_EQ(names().back(), "trace-20261123-064651-0123abcd-0100.jsonl");
}

TEST_F(Files, TheOldOnesGoAndOthersAreLeftAlone) {
  const std::string old = "trace-20261116-064511-ffffffff-0001.jsonl",
                    kept = "trace-20261116-064512-ffffffff-0001.jsonl";
  const std::vector<std::string> others{"notes.txt", "trace-20261116-064511-FFFFFFFF-0001.jsonl",
                                        "trace-20261116-064511-ffffffff-0001.jsonl.old", "trace-.jsonl"};
  folder.content[old] = folder.content[kept] = "x";
  for (const std::string& other : others) folder.content[other] = std::string(20000, 'x');
  files().write("a", 1, moment);
  EXPECT_THAT(folder.removed, ElementsAre(old));
}

TEST_F(Files, OneThatCanNotBeRemovedIsCountedOn) {
  for (const char part : {'1', '2', '3'})
    folder.content[std::string("trace-20261122-000000-ffffffff-000") + part + ".jsonl"] =
        std::string(3000, 'x');
  folder.held = {"trace-20261122-000000-ffffffff-0001.jsonl"};
  files().write("a", 1, moment);
  EXPECT_THAT(folder.removed, ElementsAre("trace-20261122-000000-ffffffff-0002.jsonl"));
}

TEST_F(Files, AFullDiskLosesLinesAndOneLineTellsOfThemAfterwards) {
  auto traced = files();
  traced.write("a\n", 1, moment);
  folder.refuses = true;
  traced.write("b\nb\n", 2, moment);
  traced.write("c\n", 1, moment);
  EXPECT_EQ(folder.all(), "a\n");
  folder.refuses = false;
  traced.write("d\n", 1, moment);
  traced.write("e\n", 1, moment);
  EXPECT_EQ(folder.all(),
            "a\n"
            R"({"at":"2026-11-23T06:45:12.345678Z","event":"left out","why":"no room","count":3})"
            "\nd\ne\n");
}

TEST_F(Files, TheLastRoomIsLeftToOthers) {
  auto traced = files();
  folder.room = small.room - 1;
  traced.write("a\n", 1, moment);
  EXPECT_EQ(folder.writings, 0);
  folder.room = small.room;
  traced.write("b\n", 1, moment);
  EXPECT_EQ(folder.all(),
            R"({"at":"2026-11-23T06:45:12.345678Z","event":"left out","why":"no room","count":1})"
            "\nb\n");
}

// --- the disk's own folder

class OnDisk : public testing::Test {
 protected:
  OnDisk() {
    std::string pattern = (fs::temp_directory_path() / "vordane-trace-XXXXXX").string();
    path = mkdtemp(pattern.data());
  }
  ~OnDisk() override {
    std::error_code ignored;
    fs::remove_all(path, ignored);
  }
  static std::string read(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }
  fs::path path;
};

TEST_F(OnDisk, FolderAndFileAreMadeWhereTheyAreMissing) {
  const auto folder = diskFolder((path / "a" / "b").u16string());
  EXPECT_GT(folder->room(), 0U) << "of the disk that the folder will lie on";
  EXPECT_TRUE(folder->files().empty());
  EXPECT_TRUE(folder->append("one", "x"));
  EXPECT_TRUE(folder->append("two", "y"));
  EXPECT_TRUE(folder->append("one", "z"));
  EXPECT_EQ(read(path / "a" / "b" / "one"), "xz");
  EXPECT_EQ(folder->files().size(), 2U);
  EXPECT_TRUE(folder->remove("two"));
  EXPECT_EQ(folder->files().size(), 1U);
  EXPECT_EQ(folder->files()[0].bytes, 2U);
}

TEST_F(OnDisk, WhereNoFolderCanBeNothingIsWrittenAndNothingFails) {
  std::ofstream(path / "file") << "x";
  const auto folder = diskFolder((path / "file").u16string());
  EXPECT_FALSE(folder->append("one", "x"));
  EXPECT_TRUE(folder->files().empty());
  folder->remove("one");
  EXPECT_EQ(read(path / "file"), "x");
}

// A file that may grow no further is what a full disk is to a program.
TEST_F(OnDisk, WhatDoesNotFitIsTakenBackAsAWhole) {
  signal(SIGXFSZ, SIG_IGN);
  rlimit before{};
  getrlimit(RLIMIT_FSIZE, &before);
  const auto folder = diskFolder(path.u16string());
  ASSERT_TRUE(folder->append("one", "line\n"));
  rlimit little = before;
  little.rlim_cur = 100;
  setrlimit(RLIMIT_FSIZE, &little);
  const bool fitted = folder->append("one", std::string(1000, 'x'));
  const bool made = folder->append("two", std::string(1000, 'x'));
  const bool more = folder->append("one", "next\n");
  setrlimit(RLIMIT_FSIZE, &before);
  EXPECT_FALSE(fitted);
  EXPECT_FALSE(made);
  EXPECT_TRUE(more) << "what fits is written";
  EXPECT_EQ(read(path / "one"), "line\nnext\n");
  EXPECT_FALSE(fs::exists(path / "two"));
}

}  // namespace
}  // namespace vordane::trace
