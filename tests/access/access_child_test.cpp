#include "platform/access/access_child.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include "access/recording_visitor.h"
#include "places.h"

namespace vordane::access {
namespace {

namespace fs = std::filesystem;

const std::string samples = (test::dataFolder() / "access/").string();

TEST(AccessChild, TellsTheSameAsReadingHere) {
  RecordingVisitor here;
  readAccessFile(samples + "FAULT-10k.MDB", here);
  RecordingVisitor child;
  readAccessFileInChild(samples + "FAULT-10k.MDB", child);
  ASSERT_EQ(child.tables.size(), here.tables.size());
  for (const auto& [name, content] : here.tables) {
    EXPECT_EQ(child.tables.at(name).rows, content.rows);
    EXPECT_EQ(child.tables.at(name).table.lastAutoNumber, content.table.lastAutoNumber);
    EXPECT_TRUE(child.tables.at(name).ended);
  }
}

TEST(AccessChild, PassesOnWhatIsWrong) {
  RecordingVisitor visitor;
  try {
    readAccessFileInChild(samples + "README.txt", visitor);
    FAIL();
  } catch (const AccessError& failure) {
    EXPECT_NE(std::string(failure.what()).find("is no Access file"), std::string::npos);
  }
}

// A damaged file may be read, refused or crash the reader; this process goes on in any case, and never takes
// a file for whole whose tables say they have other rows than were found.
TEST(AccessChild, OutlivesDamagedFiles) {
  std::ifstream in(samples + "Schedule.mdb", std::ios::binary);
  const std::string whole((std::istreambuf_iterator<char>(in)), {});
  const fs::path copy = fs::temp_directory_path() / ("vordane-damaged-" + std::to_string(getpid()) + ".mdb");
  std::mt19937 random(20061127);
  int refused = 0;
  for (int round = 0; round < 60; ++round) {
    std::string bytes = whole;
    for (int i = 0; i < 400; ++i) bytes[20 + random() % (bytes.size() - 20)] = static_cast<char>(random());
    std::ofstream(copy, std::ios::binary) << bytes;
    RecordingVisitor visitor;
    try {
      readAccessFileInChild(copy, visitor, 5000);
      for (const auto& [name, content] : visitor.tables)
        EXPECT_EQ(content.rows.size(), content.table.rowCount);
    } catch (const AccessError&) {
      ++refused;
    }
  }
  fs::remove(copy);
  EXPECT_GT(refused, 0);
}

}  // namespace
}  // namespace vordane::access
