// The suite on a drive letter that stands for a share, which VORDANE_NETWORK_DRIVE names ("N:"): the fault database
// keeps its rollback journal, and before the first list the window says that storing takes longer. On a drive of this
// workstation it has the write-ahead log and says nothing.
#include "library/installed_suite.h"

namespace vordane::suite {
namespace {

class NetworkDrive : public InstalledSuite {
 protected:
  // The files of a write-ahead log beside the database.
  static int logsBeside(const Path& root) {
    int found = 0;
    for (const auto& entry : std::filesystem::directory_iterator(root / L"ADDINS" / L"DATABASE"))
      found += entry.path().extension() == L".MDB-wal" || entry.path().extension() == L".MDB-shm";
    return found;
  }
  struct Seen {
    std::string account;
    int logs, rows;
  };
  static Seen fetchIn(const Path& root) {
    setSetting(layout().section(), L"InstallPath", root.wstring() + L"\\");
    StartedByHand addin(L"PBX-1", root / L"ADDINS" / L"VORDANE.EXE");
    addin.window.awaitShown();
    Seen seen{addin.window.textOf(L"account"), 0, 0};
    addin.window.press(L"cmdRequest");
    awaitLogged("LogOut", 2);
    addin.window.awaitIdle();
    seen.logs = logsBeside(root);
    seen.rows = addin.window.rows();
    addin.window.press(L"cmdClose");
    EXPECT_EQ(addin.program.wait(), 0);
    return seen;
  }
};

TEST_F(NetworkDrive, HasNoWriteAheadLogAndIsTold) {
  const std::wstring drive = variable(L"VORDANE_NETWORK_DRIVE");
  if (drive.empty()) GTEST_SKIP() << "VORDANE_NETWORK_DRIVE names no drive";
  ASSERT_EQ(GetDriveTypeW((drive + L"\\").c_str()), static_cast<UINT>(DRIVE_REMOTE));
  const Path share = Path(drive + L"\\") / L"QUILMAR32" / layout().section();
  copyFolder(layout().root, share);
  keepLog();

  const Seen here = fetchIn(layout().root);
  EXPECT_EQ(here.logs, 2);
  EXPECT_EQ(here.account, "No fault list received yet");
  EXPECT_GT(here.rows, 0);

  endSuitePrograms(L"Zulsim.exe");
  keepLog();
  const Seen there = fetchIn(share);
  EXPECT_EQ(there.logs, 0);
  EXPECT_EQ(there.account,
            "The fault database is on a network drive: storing takes longer. No fault list received yet");
  EXPECT_EQ(there.rows, here.rows);
  EXPECT_EQ(integrity(share / L"ADDINS" / L"DATABASE" / L"FAULT.MDB"), "ok");
  std::filesystem::remove_all(Path(drive + L"\\") / L"QUILMAR32");
}

}  // namespace
}  // namespace vordane::suite
