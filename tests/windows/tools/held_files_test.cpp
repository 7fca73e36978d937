// A file that another program holds while it shall be replaced.
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "import_suite.h"
#include "lines.h"
#include "platform/engine_choice.h"
#include "platform/file_moves.h"

namespace vordane {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

// Opens a file as a program does that lets others neither delete nor rename it.
class Holder {
 public:
  explicit Holder(const fs::path& path)
      : file_(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                          OPEN_EXISTING, 0, nullptr)) {}
  ~Holder() { letGo(); }
  Holder(const Holder&) = delete;
  Holder& operator=(const Holder&) = delete;
  bool holds() const { return file_ != INVALID_HANDLE_VALUE; }
  void letGo() {
    if (holds()) CloseHandle(file_);
    file_ = INVALID_HANDLE_VALUE;
  }

 private:
  HANDLE file_;
};

class HeldFiles : public testing::Test {
 protected:
  HeldFiles() { fs::create_directories(folder_); }
  ~HeldFiles() override {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
  }
  fs::path write(const char* name, const std::string& bytes) const {
    std::ofstream(folder_ / name, std::ios::binary) << bytes;
    return folder_ / name;
  }

  fs::path folder_ = fs::temp_directory_path() / ("vordane-held-" + std::to_string(GetCurrentProcessId()));
};

TEST_F(HeldFiles, AMoveWaitsForTheOneThatHoldsTheNewFileOrTheOldOne) {
  for (const bool theNew : {true, false}) {
    const fs::path from = write("new", "new"), to = write("name", "an older one");
    Holder holder(theNew ? from : to);
    ASSERT_TRUE(holder.holds());
    int pauses = 0;
    const auto failure = platform::moveFile(from, to, [&](std::chrono::milliseconds) {
      EXPECT_EQ(fs::file_size(to), 12U);
      if (++pauses == 3) holder.letGo();
    });
    EXPECT_FALSE(failure) << failure.message();
    EXPECT_EQ(pauses, 3);
    EXPECT_EQ(fs::file_size(to), 3U);
    EXPECT_FALSE(fs::exists(from));
  }
}

TEST_F(HeldFiles, ADeletionWaitsToo) {
  const fs::path file = write("name", "x");
  Holder holder(file);
  EXPECT_FALSE(platform::removeFile(file, [&](std::chrono::milliseconds) { holder.letGo(); }));
  EXPECT_FALSE(fs::exists(file));
  EXPECT_FALSE(platform::removeFile(file));
}

TEST_F(HeldFiles, AMoveThatNobodyLetsHappenChangesNothing) {
  const fs::path from = write("new", "new"), to = write("name", "an older one");
  const Holder holder(to);
  std::chrono::milliseconds waited{0};
  EXPECT_TRUE(platform::moveFile(from, to, [&](std::chrono::milliseconds time) { waited += time; }));
  EXPECT_EQ(waited, 2000ms);
  EXPECT_EQ(fs::file_size(to), 12U);
  EXPECT_EQ(fs::file_size(from), 3U);
}

const std::string accessFile = std::string("\0\1\0\0Standard Jet DB\0", 20) + std::string(4096, '\0');

void tellTables(const fs::path&, access::Visitor& visitor) {
  for (const char16_t* name : {u"PBXList", u"FaultDisplay"}) {
    visitor.beginTable({name, {{u"ID", access::ColumnType::longInteger, 0, true}}, 0, 0});
    visitor.endTable();
  }
}

TEST_F(HeldFiles, AnImportWaitsForAScanner) {
  const fs::path file = write("FAULT.MDB", accessFile);
  Holder scanner(file);
  int pauses = 0;
  const auto files = tools::importSuite(folder_, tellTables, [&](std::chrono::milliseconds) {
    ++pauses;
    scanner.letGo();
  });
  EXPECT_EQ(pauses, 1);
  ASSERT_EQ(files.size(), 1U);
  EXPECT_EQ(database::fileKind(file.u16string()), database::FileKind::embedded);
  EXPECT_EQ(database::fileKind(files[0].kept.u16string()), database::FileKind::access);
}

TEST_F(HeldFiles, AnImportThatCannotReplaceAFileNamesItAndLeavesAllAsItWas) {
  const fs::path file = write("FAULT.MDB", accessFile);
  const Holder other(file);
  try {
    tools::importSuite(folder_, tellTables, [](std::chrono::milliseconds) {});
    FAIL();
  } catch (const tools::ToolError& failure) {
    EXPECT_NE(std::string(failure.what()).find("FAULT.MDB: can't be replaced"), std::string::npos)
        << failure.what();
  }
  EXPECT_EQ(database::fileKind(file.u16string()), database::FileKind::access);
  EXPECT_EQ(std::distance(fs::directory_iterator(folder_), fs::directory_iterator()), 1);
}

}  // namespace
}  // namespace vordane
