// Disks that fill up under the whole program: the database's and the run log's. The databases' folders have
// to be small disks of their own, which VORDANE_SMALL_DISKS says that they are: where nobody has mounted any,
// the tests are skipped. What is free on them is taken by a file beside the databases.
#include <windows.h>

#include <algorithm>

#include "library/installed_suite.h"
#include "library/run_log.h"

namespace vordane::suite {
namespace {

constexpr int blockBytes = 4096, mostBlocks = 16384;

// Writes blocks until the disk has no more room, and gives so many back; how many it had room for.
int fill(const Path& file, int givenBack = 0) {
  const com::File out(CreateFileW(file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
  if (!out) return 0;
  const std::string block(blockBytes, 'x');
  DWORD written = 0;
  for (int count = 0; count < mostBlocks; ++count) {
    if (WriteFile(out.get(), block.data(), blockBytes, &written, nullptr) && written == blockBytes) continue;
    if (givenBack > 0) {
      SetFilePointer(out.get(), std::max(count - givenBack, 0) * blockBytes, nullptr, FILE_BEGIN);
      SetEndOfFile(out.get());
    }
    return count;
  }
  throw Failure(utf8(file.parent_path()) + " is no small disk");
}

// Takes all but so many kilobytes of the disk.
class Ballast {
 public:
  Ballast(const Path& folder, int kilobytes) : file_(folder / L"ballast") {
    fill(file_, kilobytes * 1024 / blockBytes);
  }
  ~Ballast() { remove(); }
  void remove() const {
    std::error_code gone;
    std::filesystem::remove(file_, gone);
  }

 private:
  Path file_;
};

bool hasRoom(const Path& folder) {
  const Path file = folder / L"probe";
  const bool some = fill(file) > 0;
  std::error_code gone;
  std::filesystem::remove(file, gone);
  return some;
}

int storedTwice() {
  return std::stoi(sql(layout().faults(),
                       "SELECT count(*) FROM (SELECT 1 FROM FaultDisplay "
                       "GROUP BY ID, Fault, Alarm, CPU, Date, Description HAVING count(*) > 1)"));
}

class FullDisk : public InstalledSuite {
 protected:
  void SetUp() override {
    if (variable(L"VORDANE_SMALL_DISKS").empty())
      GTEST_SKIP() << "VORDANE_SMALL_DISKS does not say that the databases' folders are small disks";
    InstalledSuite::SetUp();
    for (const Path& folder : {layout().ownDatabases(), layout().sharedDatabases()})
      EXPECT_TRUE(hasRoom(folder));
    useScenario(L"full-disk");
    keepLog();
    sql(layout().faults(), "PRAGMA journal_mode=WAL");
  }

  // The list is asked for; the box that comes says that there is no room.
  static void expectNoRoom(const Window& window) {
    const std::size_t conversations = logged("LogOut");
    window.press(L"cmdRequest");
    const std::string said = window.answerBox().text;
    EXPECT_NE(said.find("Not enough space on disk."), std::string::npos) << said;
    awaitLogged("LogOut", conversations + 1);
  }
};

// The fetch says so, what was saved stays, and with room again the next fetch completes the list.
TEST_F(FullDisk, TheDatabasesInTheMiddleOfAList) {
  const Ballast ballast(layout().ownDatabases(), 150);
  StartedByHand addin;
  addin.fetch();
  EXPECT_EQ(stored(), 100) << "while there is room";
  expectNoRoom(addin.window);
  const int first = stored();
  EXPECT_GE(first, 100);
  EXPECT_LT(first, 500);

  ballast.remove();
  addin.fetch();
  EXPECT_EQ(stored(), 500);
  EXPECT_EQ(addin.window.rows(), 500);
  EXPECT_EQ(integrity(layout().faults()), "ok");
  EXPECT_EQ(storedTwice(), 0);
  addin.window.press(L"cmdClose");
  EXPECT_EQ(addin.program.wait(), 0);
}

// Then room comes back, and the same process, window and connection go on.
TEST_F(FullDisk, TheDatabasesAtTheVeryFirstList) {
  StartedByHand addin;
  addin.window.awaitShown();
  {
    const Ballast ballast(layout().ownDatabases(), 0);
    for (int i = 0; i < 2; ++i) {
      expectNoRoom(addin.window);
      EXPECT_EQ(addin.window.rows(), 0);
    }
  }
  EXPECT_EQ(stored(), 0);
  addin.fetch();
  const int all = stored();
  EXPECT_GE(all, 400);
  EXPECT_EQ(addin.window.rows(), all) << "shown";
  EXPECT_EQ(addin.window.textOf(L"drpPBXList"), "PBX-1");
  EXPECT_EQ(integrity(layout().faults()), "ok");
  EXPECT_EQ(storedTwice(), 0);
  addin.window.press(L"cmdClose");
  EXPECT_EQ(addin.program.wait(), 0);
}

// The run does its work, and the log holds whole lines only.
TEST_F(FullDisk, TheRunLogs) {
  const auto linesOfLog = [] { return runLog("NIGHT31").size(); };
  addJob({.key = 31, .log = "NIGHT"});
  {
    const Ballast ballast(layout().sharedDatabases(), 16);
    const Host host("full-disk");
    EXPECT_TRUE(endsAsExpected(host, "full-disk"));
    awaitGone();
    EXPECT_FALSE(hasRoom(layout().sharedDatabases()));
  }
  EXPECT_EQ(stored(), 100) << "by a run whose log has no room";
  const auto file = findRunLog("NIGHT31");
  ASSERT_TRUE(file);
  EXPECT_TRUE(readText(*file).ends_with("\r\n"));
  const std::size_t lines = linesOfLog();  // whole ones, with their times
  EXPECT_GT(lines, 0U);
  EXPECT_LT(lines, 380U);

  const Host host("full-disk");
  EXPECT_EQ(host.wait(), 0) << host.trace();
  awaitGone();
  EXPECT_GT(linesOfLog(), lines + 400) << "with room again";
  EXPECT_EQ(runLog("NIGHT31").back(), "...");
}

}  // namespace
}  // namespace vordane::suite
