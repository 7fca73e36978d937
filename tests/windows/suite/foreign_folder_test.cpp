// The tests take folders for their own and empty them; one that holds somebody's files they leave alone.
#include <gtest/gtest.h>

#include "library/text_files.h"
#include "library/waiting.h"

namespace vordane::suite {
namespace {

class ForeignFolder : public testing::Test {
 protected:
  ForeignFolder() { std::filesystem::create_directories(folder_ / "below"); }
  ~ForeignFolder() override { std::filesystem::remove_all(folder_); }
  Path folder_ = std::filesystem::temp_directory_path() / "vordane foreign folder";
};

TEST_F(ForeignFolder, OneWithSomebodysFilesIsRefusedAndLeftAsItIs) {
  const Path file = folder_ / "below" / "FAULT.MDB";
  writeText(file, "somebody's");
  EXPECT_THROW(takeFolder(folder_), Failure);
  leaveFolder(folder_);
  EXPECT_EQ(readText(file), "somebody's");
}

TEST_F(ForeignFolder, AnEmptyOneIsTakenEmptiedAgainAndRemoved) {
  takeFolder(folder_);
  writeText(folder_ / "test's", "a test's");
  takeFolder(folder_);
  EXPECT_FALSE(std::filesystem::exists(folder_ / "test's"));
  writeText(folder_ / "test's", "a test's");
  leaveFolder(folder_);
  EXPECT_FALSE(std::filesystem::exists(folder_));
}

}  // namespace
}  // namespace vordane::suite
