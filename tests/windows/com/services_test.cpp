// The workstation's services on the workstation itself.
#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "platform/engine_choice.h"
#include "platform/windows/com/owned.h"
#include "platform/windows/services/services.h"
#include "text/text.h"

namespace vordane::windows {
namespace {

constexpr const wchar_t* section = L"Software\\VB and VBA Program Settings\\VORDANETEST\\30000";

void writeValue(const wchar_t* name, DWORD type, const void* data, DWORD bytes) {
  com::RegistryKey key;
  RegCreateKeyExW(HKEY_CURRENT_USER, section, 0, nullptr, 0, KEY_WRITE, nullptr, key.put(), nullptr);
  RegSetValueExW(key.get(), name, 0, type, static_cast<const BYTE*>(data), bytes);
}

TEST(RegistrySettings, ReadsWhatTheSuiteWrote) {
  writeValue(L"InstallPath", REG_SZ, L"C:\\Q\\", 12);
  EXPECT_EQ(RegistrySettings().read(u"VORDANETEST", u"30000", u"InstallPath"), u"C:\\Q\\");
  EXPECT_EQ(RegistrySettings().read(u"vordanetest", u"30000", u"installpath"), u"C:\\Q\\");
}

TEST(RegistrySettings, ReadsATextOfAnyLength) {
  for (const std::size_t length : {1U, 258U, 259U, 260U, 261U, 519U, 520U, 20000U}) {
    const std::wstring text(length, L'q');
    for (const bool closed : {true, false}) {
      writeValue(L"Long", REG_SZ, text.c_str(),
                 static_cast<DWORD>((length + (closed ? 1 : 0)) * sizeof(wchar_t)));
      EXPECT_EQ(RegistrySettings().read(u"VORDANETEST", u"30000", u"Long"), std::u16string(length, u'q'))
          << length << closed;
    }
  }
  writeValue(L"Long", REG_BINARY, std::wstring(2000, L'q').c_str(), 4000);
  EXPECT_EQ(RegistrySettings().read(u"VORDANETEST", u"30000", u"Long"), std::nullopt);
}

TEST(RegistrySettings, TheWorkstationsAreOthers) {
  com::RegistryKey key;
  if (RegCreateKeyExW(HKEY_LOCAL_MACHINE, section, 0, nullptr, 0, KEY_WRITE | KEY_WOW64_64KEY, nullptr,
                      key.put(), nullptr) != ERROR_SUCCESS)
    GTEST_SKIP() << "only an administrator writes them";
  RegSetValueExW(key.get(), L"OfAll", 0, REG_SZ, reinterpret_cast<const BYTE*>(L"1"), 4);
  EXPECT_EQ(RegistrySettings(HKEY_LOCAL_MACHINE).read(u"VORDANETEST", u"30000", u"OfAll"), u"1");
  EXPECT_EQ(RegistrySettings().read(u"VORDANETEST", u"30000", u"OfAll"), std::nullopt);
  RegDeleteValueW(key.get(), L"OfAll");
}

TEST(RegistrySettings, TakesTextsOnly) {
  const DWORD number = 30001;
  writeValue(L"ZUL", REG_DWORD, &number, sizeof number);
  writeValue(L"Expanded", REG_EXPAND_SZ, L"x", 4);
  EXPECT_EQ(RegistrySettings().read(u"VORDANETEST", u"30000", u"ZUL"), std::nullopt);
  EXPECT_EQ(RegistrySettings().read(u"VORDANETEST", u"30000", u"Expanded"), std::nullopt);
  EXPECT_EQ(RegistrySettings().read(u"VORDANETEST", u"30000", u"Nothing"), std::nullopt);
  EXPECT_EQ(RegistrySettings().read(u"NOBODY", u"30000", u"ZUL"), std::nullopt);
}

TEST(RegistrySettings, AnEmptyTextCountsAsFound) {
  writeValue(L"Empty", REG_SZ, L"", 2);
  EXPECT_EQ(RegistrySettings().read(u"VORDANETEST", u"30000", u"Empty"), u"");
  writeValue(L"Bare", REG_SZ, L"ab", 4);  // written without its closing zero
  EXPECT_EQ(RegistrySettings().read(u"VORDANETEST", u"30000", u"Bare"), u"ab");
}

TEST(RegistrySettings, ReadsBackWhatItWrote) {
  RegistrySettings().write(u"VORDANETEST", u"Window", u"Columns", u"\u65E5 1,2");
  EXPECT_EQ(RegistrySettings().read(u"VORDANETEST", u"Window", u"Columns"), u"\u65E5 1,2");
}

TEST(SystemClock, GivesTheRegionalShortForms) {
  SystemClock clock;
  const std::u16string text = clock.regional({2004, 3, 9, 17, 5, 8});
  EXPECT_NE(text.find(u"2004"), std::u16string::npos);
  EXPECT_NE(text.find(u":05:08"), std::u16string::npos);
  EXPECT_GE(clock.secondsSinceMidnight(), 0.0);
  EXPECT_LT(clock.secondsSinceMidnight(), 86400.0);
}

// The program upper-cases the paths that it makes of the settings: each capital must name the same file, so
// it must be the one that the system compares names by.
TEST(PathCapitals, AreThoseOfTheSystem) {
  using Upcase = WCHAR(NTAPI*)(WCHAR);
  const auto upcase = reinterpret_cast<Upcase>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "RtlUpcaseUnicodeChar")));
  ASSERT_NE(upcase, nullptr);
  int letters = 0;
  for (int code = 1; code <= 0xFFFF; ++code) {
    const auto letter = static_cast<char16_t>(code);
    if (text::upperInPath(letter) == letter) continue;
    ++letters;
    EXPECT_EQ(upcase(static_cast<WCHAR>(letter)), static_cast<WCHAR>(text::upperInPath(letter))) << code;
  }
  EXPECT_GT(letters, 800);
}

TEST(SystemFiles, TellWhoHoldsAFileForHimself) {
  const std::u16string path = u"vordane-held-test.tmp";
  SystemFiles().append(path, "some bytes");
  EXPECT_FALSE(isHeldByOthers(path));
  const auto hold = [](DWORD share) {
    return com::File(CreateFileW(L"vordane-held-test.tmp", GENERIC_READ | GENERIC_WRITE, share, nullptr,
                                 OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  };
  {
    const com::File alone = hold(0);
    EXPECT_TRUE(isHeldByOthers(path));
  }
  EXPECT_FALSE(isHeldByOthers(path));
  {
    const com::File shared = hold(FILE_SHARE_READ | FILE_SHARE_WRITE);
    EXPECT_FALSE(isHeldByOthers(path));
  }
  DeleteFileW(L"vordane-held-test.tmp");
  EXPECT_FALSE(isHeldByOthers(path)) << "a missing file is missing, not held";
}

// Windows' own choice of an engine: whoever holds the file lets it go while it is waited for.
TEST(SystemFiles, AHeldFileIsWaitedForAndThenTold) {
  const std::u16string path = u"vordane-held-test.mdb";
  SystemFiles().append(path, std::string("SQLite format 3\0", 16));
  class Reached : public database::Engine {
    std::unique_ptr<database::Database> open(std::u16string_view, bool) override { return nullptr; }
  };
  const auto open = [&](std::chrono::milliseconds wait) {
    const auto choice = database::makeEngineChoice(std::make_unique<Reached>(), std::make_unique<Reached>(),
                                                   {isHeldByOthers, wait});
    try {
      choice->open(path, false);
    } catch (const database::DatabaseError& error) {
      return error.number();
    }
    return 0;
  };
  com::File holder(CreateFileW(L"vordane-held-test.mdb", GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                               FILE_ATTRIBUTE_NORMAL, nullptr));
  ASSERT_TRUE(static_cast<bool>(holder));
  EXPECT_EQ(open(std::chrono::milliseconds(50)), 3260);
  std::thread lettingGo([&] {
    Sleep(200);
    holder = com::File();
  });
  EXPECT_EQ(open(std::chrono::minutes(5)), 0);
  lettingGo.join();
  DeleteFileW(L"vordane-held-test.mdb");
}

// What Windows says of a letter that stands for a share is tried on a workstation.
TEST(NetworkDrive, IsOneThatWindowsCallsRemote) {
  EXPECT_TRUE(isOnNetworkDrive(u"\\\\server\\share\\FAULT.MDB"));
  EXPECT_TRUE(isOnNetworkDrive(u"\\\\?\\UNC\\server\\share\\FAULT.MDB"));
  EXPECT_FALSE(isOnNetworkDrive(u"C:\\FAULT.MDB"));
  EXPECT_FALSE(isOnNetworkDrive(u"\\\\?\\C:\\FAULT.MDB"));
  EXPECT_FALSE(isOnNetworkDrive(u"FAULT.MDB"));
}

TEST(SystemFiles, AppendsAndMeasures) {
  SystemFiles files;
  const std::u16string path = u"vordane-services-test.tmp";
  DeleteFileW(com::wide(path.c_str()));
  EXPECT_FALSE(files.exists(path));
  EXPECT_EQ(files.length(path), std::nullopt);
  EXPECT_TRUE(files.append(path, "abc"));
  EXPECT_TRUE(files.append(path, "de\r\n"));
  EXPECT_EQ(files.length(path), 7);
  EXPECT_TRUE(files.exists(path));
  EXPECT_FALSE(files.directoryExists(path));
  EXPECT_TRUE(files.directoryExists(u"."));
  EXPECT_FALSE(files.append(u"no\\such\\folder\\file", "x"));
  EXPECT_FALSE(files.exists(u""));
  DeleteFileW(com::wide(path.c_str()));
}

// A run log that several add-ins write to while somebody reads it.
TEST(SystemFiles, SeveralWritersAndAReaderAreNotInEachOthersWay) {
  const std::u16string path = u"vordane-writers-test.tmp";
  DeleteFileW(com::wide(path.c_str()));
  EXPECT_TRUE(SystemFiles().append(path, "begin\r\n"));
  com::File reader(CreateFileW(com::wide(path.c_str()), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                               nullptr, OPEN_EXISTING, 0, nullptr));
  ASSERT_TRUE(reader);
  constexpr int lines = 300;
  const auto write = [&](const char* line) {
    SystemFiles files;
    for (int i = 0; i < lines; ++i) EXPECT_TRUE(files.append(path, line));
  };
  const std::string first = std::string(40, 'a') + "\r\n", second = std::string(90, 'b') + "\r\n";
  std::thread one(write, first.c_str()), other(write, second.c_str());
  one.join();
  other.join();
  std::string bytes(100'000, '\0');
  DWORD size = 0;
  ASSERT_TRUE(ReadFile(reader.get(), bytes.data(), 100'000, &size, nullptr));
  reader.reset();
  bytes.resize(size);
  int found[2]{};
  std::size_t at = 7;
  for (; at < bytes.size();) {
    const bool isFirst = bytes.compare(at, first.size(), first) == 0;
    if (!isFirst && bytes.compare(at, second.size(), second) != 0) break;
    ++found[isFirst ? 0 : 1];
    at += isFirst ? first.size() : second.size();
  }
  EXPECT_EQ(at, bytes.size()) << "a line that is not whole";
  EXPECT_EQ(found[0], lines);
  EXPECT_EQ(found[1], lines);
  DeleteFileW(com::wide(path.c_str()));
}

TEST(SystemFiles, WhatSomebodyHoldsForHimselfIsNotWritten) {
  const std::u16string path = u"vordane-held-test.tmp";
  EXPECT_TRUE(SystemFiles().append(path, "mine"));
  {
    const com::File held(
        CreateFileW(com::wide(path.c_str()), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(held);
    EXPECT_FALSE(SystemFiles().append(path, "more"));
  }
  EXPECT_TRUE(SystemFiles().append(path, "more"));
  EXPECT_EQ(SystemFiles().length(path), 8);
  DeleteFileW(com::wide(path.c_str()));
}

TEST(Program, KnowsItsOwnPlace) {
  const platform::Program program = thisProgram();
  EXPECT_EQ(executablePath(), program.directory + u"\\com_tests.exe");
  EXPECT_FALSE(program.startedByAutomation);
  EXPECT_TRUE(program.interactive);
}

TEST(ObjectCreator, SaysWhatIsMissing) {
  try {
    ComObjectCreator().create(u"CalderinProj99999.cPBXOle");
    FAIL();
  } catch (const automation::AutomationError& failure) {
    EXPECT_EQ(failure.code(), CO_E_CLASSSTRING);
  }
}

class Documents : public testing::Test {
 protected:
  Documents() {
    path_ = folder_ + u"\\vordane page.html";
    SystemFiles().append(path_, "<p>a page</p>");
  }
  ~Documents() override { DeleteFileW(com::wide(path_.c_str())); }

  std::u16string folder_ = thisProgram().directory, path_;
  std::vector<std::wstring> handed_;
  bool taken_ = true;
  SystemDocuments documents_{[this](const std::wstring& path) {
    handed_.push_back(path);
    return taken_;
  }};
};

TEST_F(Documents, AreHandedToTheDesktopByTheirPathAlone) {
  EXPECT_TRUE(documents_.open(path_));
  EXPECT_EQ(handed_, std::vector<std::wstring>{com::wide(path_.c_str())});
}

TEST_F(Documents, TellWhenNoProgramTakesThem) {
  taken_ = false;
  EXPECT_FALSE(documents_.open(path_));
}

TEST_F(Documents, ThatAreNoFilesAreNeverHandedOver) {
  EXPECT_FALSE(documents_.open(u"C:\\no\\such\\help.hlp"));
  EXPECT_FALSE(documents_.open(folder_));
  EXPECT_FALSE(documents_.open(path_ + u"#topic"));
  EXPECT_TRUE(handed_.empty());
}

// That it is taken is all that a program learns of it.
TEST(EventLog, TakesAnEntryOfAnyLength) {
  SystemEventLog log;
  EXPECT_TRUE(log.write({platform::Event::runFailed, u"C:\\FAULT1.tlg", u"busy", u"1"}));
  EXPECT_TRUE(log.write({platform::Event::runFailed, std::u16string(100000, u'F'),
                         std::u16string(100000, u'%'), std::u16string(100000, u'1')}));
}

}  // namespace
}  // namespace vordane::windows
