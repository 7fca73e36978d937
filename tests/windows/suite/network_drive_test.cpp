// The kind of the drive that the suite stands on (VORDANE_SUITE_ROOT): on a drive letter that stands for a
// share the fault database keeps its rollback journal, and before the first list the window says that storing
// takes longer. On a drive of this workstation it has the write-ahead log and says nothing.
#include "library/installed_suite.h"

namespace vordane::suite {
namespace {

class Drive : public InstalledSuite {
 protected:
  Drive() { remote = GetDriveTypeW(layout().root.root_path().c_str()) == DRIVE_REMOTE; }

  // The files of a write-ahead log beside the database.
  static int logs() {
    int found = 0;
    for (const auto& entry : std::filesystem::directory_iterator(layout().ownDatabases()))
      found += entry.path().extension() == L".MDB-wal" || entry.path().extension() == L".MDB-shm";
    return found;
  }
  static void expectAList(const std::string& account, int wanted) {
    keepLog();
    StartedByHand addin;
    addin.window.awaitShown();
    EXPECT_EQ(addin.window.textOf(L"account"), account);
    addin.fetch();
    EXPECT_EQ(logs(), wanted);
    EXPECT_GT(stored(), 0);
    addin.window.press(L"cmdClose");
    EXPECT_EQ(addin.program.wait(), 0);
    EXPECT_EQ(integrity(layout().faults()), "ok");
  }

  bool remote = false;
};

TEST_F(Drive, OfANetworkHasNoWriteAheadLogAndIsTold) {
  if (!remote) GTEST_SKIP() << "the suite stands on a drive of this workstation";
  expectAList(
      "Simulated exchange. The fault database is on a network drive: storing takes longer. No fault list "
      "received yet",
      0);
}

TEST_F(Drive, OfThisWorkstationHasTheLogAndNothingIsTold) {
  if (remote) GTEST_SKIP() << "the suite stands on a network drive";
  expectAList("Simulated exchange. No fault list received yet", 2);
}

}  // namespace
}  // namespace vordane::suite
