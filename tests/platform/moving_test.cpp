#include "platform/moving.h"

#include <gtest/gtest.h>

#include <fstream>
#include <random>

namespace vordane::platform {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

class Moving : public testing::Test {
 protected:
  Moving() { fs::create_directory(folder); }
  ~Moving() override { fs::remove_all(folder); }
  fs::path file(const char* name, const char* content = "") {
    std::ofstream(folder / name) << content;
    return folder / name;
  }
  fs::path folder = fs::temp_directory_path() / ("vordane-moving-" + std::to_string(std::random_device()()));
};

TEST_F(Moving, ReplacesWhatIsThere) {
  EXPECT_FALSE(renamePatiently(file("new", "written"), file("old", "kept")));
  std::string content;
  std::ifstream(folder / "old") >> content;
  EXPECT_EQ(content, "written");
  EXPECT_FALSE(fs::exists(folder / "new"));
}

// What no waiting helps against is told at once.
TEST_F(Moving, TellsAtOnceWhatStaysImpossible) {
  EXPECT_TRUE(renamePatiently(folder / "missing", folder / "new", 24h));
  EXPECT_TRUE(renamePatiently(file("file"), folder, 24h));
  EXPECT_TRUE(renamePatiently(file("file"), folder / "nowhere" / "new", 24h));
  EXPECT_TRUE(fs::exists(folder / "file"));
}

}  // namespace
}  // namespace vordane::platform
