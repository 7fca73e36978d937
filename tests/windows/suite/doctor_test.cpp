// What the doctor says of an installed suite on its own workstation, whole and with damage of each kind.
#include <windows.h>

#include <algorithm>
#include <random>
#include <regex>

#include "library/installed_suite.h"

namespace vordane::suite {
namespace {

struct Diagnosis {
  std::string words;                // without the warnings of registrations
  std::vector<std::string> warned;  // the classes that whoever may replace the program is warned of
  bool wholeLines = true;           // of the warnings
  int code = 0;
};

Diagnosis diagnose(const std::wstring& suite = layout().root.wstring()) {
  static const std::regex warning(
      "unsafe: ([^ ]+) is registered for every user, but .* may write to .*: let administrators alone write "
      "there");
  const Ended ended = run(layout().tools(), {L"doctor", suite});
  Diagnosis diagnosis{{}, {}, true, ended.code};
  std::smatch match;
  for (const std::string& line : linesOf(ended.output)) {
    if (!line.starts_with("unsafe: ")) {
      diagnosis.words += (diagnosis.words.empty() ? "" : "\n") + line;
    } else if (std::regex_match(line, match, warning)) {
      diagnosis.warned.push_back(match[1]);
    } else {
      diagnosis.wholeLines = false;
    }
  }
  return diagnosis;
}

std::string below(const char* place) {
  return utf8(layout().root) + "\\" + place;
}

class Doctor : public InstalledSuite {
 protected:
  // One suite for all: each test mends what it damages.
  static void SetUpTestSuite() { install("en"); }
  void SetUp() override { ASSERT_EQ(diagnose().words, "nothing is missing"); }
  void TearDown() override {
    EXPECT_EQ(diagnose().words, "nothing is missing") << "with everything in its place again";
    InstalledSuite::TearDown();
  }

  // All that he says, and that he says it with his exit code too.
  static void expectWords(const std::string& words) {
    const Diagnosis diagnosis = diagnose();
    EXPECT_EQ(diagnosis.words, words);
    EXPECT_EQ(diagnosis.code, 1);
  }
};

// Takes a file out of the suite and brings it back as it was.
class Kept {
 public:
  explicit Kept(Path file) : file_(std::move(file)), bytes_(readText(file_)) {}
  ~Kept() {
    for (const wchar_t* beside : {L"-wal", L"-shm"}) std::filesystem::remove(file_.wstring() + beside);
    writeText(file_, bytes_);
  }

 private:
  Path file_;
  std::string bytes_;
};

bool registeredForEveryUser() {
  HKEY key = nullptr;
  const bool found = RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"Software\\Classes\\Vordane10013.cOLELayer", 0,
                                   KEY_READ, &key) == ERROR_SUCCESS;
  if (found) RegCloseKey(key);
  return found;
}

// Only for them.
void registerFor32BitHosts(const Path& program) {
  const HKEY root = registeredForEveryUser() ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
  wchar_t id[64] = L"";
  DWORD bytes = sizeof id;
  ASSERT_EQ(RegGetValueW(root, L"Software\\Classes\\Vordane10013.cOLELayer\\CLSID", nullptr, RRF_RT_REG_SZ,
                         nullptr, id, &bytes),
            ERROR_SUCCESS);
  const std::wstring place = std::wstring(L"Software\\Classes\\CLSID\\") + id + L"\\LocalServer32";
  HKEY key = nullptr;
  ASSERT_EQ(RegOpenKeyExW(root, place.c_str(), 0, KEY_WRITE | KEY_WOW64_32KEY, &key), ERROR_SUCCESS);
  const std::wstring command = L"\"" + program.wstring() + L"\"";
  RegSetValueExW(key, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(command.c_str()),
                 static_cast<DWORD>((command.size() + 1) * sizeof(wchar_t)));
  RegCloseKey(key);
}

// The account that runs the tests owns every file, so it may replace the registered programs.
TEST_F(Doctor, WarnsOfRegistrationsForEveryUser) {
  const Diagnosis diagnosis = diagnose();
  const std::vector<std::string> both{"Vordane10013.cOLELayer", "CalderinProj30001.cPBXOle"};
  EXPECT_EQ(diagnosis.warned, registeredForEveryUser() ? both : std::vector<std::string>{});
  EXPECT_TRUE(diagnosis.wholeLines);
  EXPECT_EQ(diagnosis.code, diagnosis.warned.empty() ? 0 : 1);
}

TEST_F(Doctor, TakesTheDirectoryAsInstallPathHasIt) {
  EXPECT_EQ(diagnose(layout().root.wstring() + L"\\").words, "nothing is missing");
}

TEST_F(Doctor, Settings) {
  const std::wstring version = layout().section();
  removeSetting(version, L"InstallPath");
  expectWords("incomplete: the setting InstallPath of version " + utf8(version) +
              " is missing: the program looks below its own directory");
  setSetting(version, L"InstallPath", L"C:\\windows\\");
  expectWords("stops the program: the setting InstallPath leads to C:\\windows\\, not to this suite");
  setSetting(version, L"InstallPath", layout().root.wstring() + L"\\");
  removeSetting(version, L"QUILMAR32");
  expectWords(
      "incomplete: the setting QUILMAR32 is missing: options and logs of scheduled jobs are not found");
  setSetting(version, L"QUILMAR32", version);
  removeSetting(version, L"ZUL");
  expectWords("incomplete: the setting ZUL is missing: started alone, the program finds no exchange server");
  setSetting(version, L"ZUL", L"30001");
}

TEST_F(Doctor, TheFaultDatabase) {
  const Path file = layout().faults();
  const std::string name = "stops the program: " + below("ADDINS\\DATABASE\\FAULT.MDB");
  {
    const Kept kept(file);
    std::filesystem::remove(file);
    expectWords(name + " is missing: no faults can be stored or shown");
    writeText(file, "no database at all\n");
    expectWords(name + " is no database: no faults can be stored or shown");
  }
  {
    const Kept kept(file);
    std::string bytes = readText(file);
    std::mt19937 random(1);
    for (std::size_t i = 4096; i < std::min<std::size_t>(bytes.size(), 3 * 4096); ++i)
      bytes[i] = static_cast<char>(random());
    writeText(file, bytes);
    EXPECT_NE(diagnose().words.find(name + " is damaged: "), std::string::npos) << diagnose().words;
  }
  {
    const Kept kept(file);
    sql(file, "DROP TABLE PBXList");
    expectWords(name + ": table PBXList is missing");
  }
  {
    const Kept kept(file);
    sql(file, "ALTER TABLE FaultDisplay DROP COLUMN CPU");
    expectWords(name + ": table FaultDisplay lacks the column CPU");
  }
}

TEST_F(Doctor, TheJobs) {
  const Kept kept(layout().schedule());
  sql(layout().schedule(), "ALTER TABLE Options DROP COLUMN Kind");
  EXPECT_EQ(diagnose().words, "nothing is missing") << "jobs need no kinds";
  sql(layout().schedule(), "ALTER TABLE Options DROP COLUMN File");
  expectWords("incomplete: " + below("QUIL32\\DATABASE\\Schedule.mdb: table Options lacks the column File"));
}

TEST_F(Doctor, TextsAndPictures) {
  const Path texts = layout().ownDatabases() / L"VORDANE.LNG";
  {
    const Kept kept(texts);
    sql(texts, "DELETE FROM tMessages WHERE ID = 89");
    expectWords("incomplete: VORDANE.LNG/messages: message 89 is missing");
    sql(texts, "DROP TABLE tMsgBox");
    EXPECT_NE(diagnose().words.find("VORDANE.LNG: table tMsgBox is missing"), std::string::npos);
  }
  const Path picture = layout().root / L"BACKGRND" / L"VORDPANE.BMP";
  const Kept kept(picture);
  std::filesystem::remove(picture);
  expectWords("incomplete: " + below("BACKGRND\\VORDPANE.BMP is missing: no background there"));
}

TEST_F(Doctor, Registration) {
  const Path addin = layout().addin(), moved = layout().addins() / L"MOVED.EXE",
             other = layout().elsewhere / L"OTHER" / L"VORDANE.EXE";
  std::filesystem::rename(addin, moved);
  expectWords("stops the program: Vordane10013.cOLELayer is registered to " + utf8(addin) +
              ", which is not there: no host can start the add-in (VORDANE.EXE /RegServer)");
  std::filesystem::create_directories(other.parent_path());
  copyFile(moved, other);
  std::filesystem::rename(moved, addin);
  registerProgram(other);
  expectWords("incomplete: Vordane10013.cOLELayer is registered to " + utf8(other) +
              ": hosts start that one, not this suite's " + utf8(addin));
  const std::string ofOther = utf8(other) + " (version " + VORDANE_VERSION + ")",
                    ofAddin = utf8(addin) + " (version " + VORDANE_VERSION + ")";
  if (sizeof(void*) == 8) {
    registerFor32BitHosts(addin);
    expectWords("incomplete: Vordane10013.cOLELayer is registered to " + utf8(other) +
                ": hosts start that one, not this suite's " + utf8(addin) +
                "\nincomplete: Vordane10013.cOLELayer: 64-bit hosts start " + ofOther + ", 32-bit hosts " +
                ofAddin + ": register one of them for both");
  }
  unregisterProgram(other);
  expectWords(
      "stops the program: Vordane10013.cOLELayer is not registered: no host can start the add-in "
      "(VORDANE.EXE /RegServer)");
  registerProgram(addin);
  unregisterProgram(layout().simulator());
  expectWords("incomplete: CalderinProj30001.cPBXOle is not registered: no exchange can be reached");
  registerProgram(layout().simulator());
}

}  // namespace
}  // namespace vordane::suite
