// A suite that keeps Access files. The add-in works on them as they are, through DAO; the tools list and
// export them; an import brings them over, losing nothing, and the add-in goes on with what was brought over.
// What answers to DAO's name here is the tests' stand-in, whose Access files are embedded ones behind a first
// page of Access's; on a workstation with an Access engine of its own the test is skipped.
#include <windows.h>

#include <map>

#include "library/installed_suite.h"

namespace vordane::suite {
namespace {

const std::string accessBeginning("\0\1\0\0Standard Jet DB\0", 20);

std::vector<Path> databases() {
  const Layout& at = layout();
  return {at.faults(), at.ownDatabases() / L"VORDANE.LNG", at.sharedDatabases() / L"Common.LNG",
          at.sharedDatabases() / L"Register.mdb", at.sharedDatabases() / L"Schedule.mdb"};
}

Path standIn() {
  return layout().elsewhere / L"daoserver.exe";
}

bool hasDao() {
  CLSID engine;
  return CLSIDFromProgID(L"DAO.DBEngine.120", &engine) == S_OK ||
         CLSIDFromProgID(L"DAO.DBEngine.36", &engine) == S_OK;
}

void makeAccess(const Path& file) {
  std::string page = accessBeginning;
  page.resize(4096);
  writeText(file, page + readText(file));
}

// As vordane-tools counts them, whatever the file is.
int listed() {
  return std::stoi(tools({L"list", layout().faults().wstring(), L"--count"}));
}

// Every table as a text, by the name of its file.
std::map<std::string, std::string> exported(const wchar_t* name) {
  const Path folder = layout().elsewhere / name;
  for (const Path& file : databases()) tools({L"export", file.wstring(), L"--csv", folder.wstring()});
  std::map<std::string, std::string> tables;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
    if (entry.is_regular_file()) tables[utf8(entry.path().filename())] = readText(entry.path());
  return tables;
}

std::size_t linesWith(const std::string& text, std::string_view word) {
  std::size_t count = 0;
  for (const std::string& line : linesOf(text)) count += line.find(word) != std::string::npos;
  return count;
}

class Access : public InstalledSuite {
 protected:
  void SetUp() override {
    if (hasDao()) GTEST_SKIP() << "this workstation has an Access engine of its own";
    install("ru");
    copyFile(layout().helpers / L"dao" / L"daoserver.exe", standIn());
    registerProgram(standIn());
    for (const Path& file : databases()) makeAccess(file);
    keepLog();
  }
  void TearDown() override {
    InstalledSuite::TearDown();
    if (std::filesystem::exists(standIn())) unregisterProgram(standIn());
  }

  static void closeWindow(const StartedByHand& addin) {
    addin.window.press(L"cmdClose");
    EXPECT_EQ(addin.program.wait(), 0);
  }
};

TEST_F(Access, StoredListedExportedBroughtOverAndGoneOnWith) {
  {
    StartedByHand addin;
    addin.fetch();
    closeWindow(addin);
  }
  EXPECT_EQ(readText(layout().faults()).substr(0, 20), accessBeginning);
  const int first = listed();
  EXPECT_GE(first, 52) << "of a list that covers every kind";

  const auto before = exported(L"access");
  const std::string file = readText(layout().faults());
  const std::string imported = tools({L"import", layout().root.wstring()});
  EXPECT_NE(imported.find("  FaultDisplay: " + std::to_string(first) + " rows\n"), std::string::npos)
      << imported;
  EXPECT_EQ(linesWith(imported, "brought over"), 5U) << imported;
  EXPECT_EQ(readText(layout().faults().wstring() + L".access"), file) << "the kept Access file";
  EXPECT_EQ(readText(layout().faults()).substr(0, 15), "SQLite format 3");
  const auto after = exported(L"embedded");
  EXPECT_EQ(before, after) << "the tables";
  ASSERT_TRUE(before.contains("PBXList.csv"));
  EXPECT_NE(before.at("PBXList.csv").find("PBX-1"), std::string::npos);
  EXPECT_EQ(linesWith(run(layout().tools(), {L"import", layout().root.wstring()}).output, "no Access files"),
            1U)
      << "a second import";

  {
    StartedByHand addin;
    const std::size_t conversations = logged("LogOut");
    addin.window.press(L"cmdRequest");
    EXPECT_NE(addin.window.answerBox().text, "") << "a list without new faults";
    awaitLogged("LogOut", conversations + 2);
    closeWindow(addin);
  }
  EXPECT_EQ(stored(), first);
  // The stand-in leaves what was called wrongly beside it.
  EXPECT_FALSE(std::filesystem::exists(standIn().wstring() + L".misuse"));
}

}  // namespace
}  // namespace vordane::suite
