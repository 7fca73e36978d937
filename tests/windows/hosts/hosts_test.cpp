// The example hosts, each in its own process, drive a whole conversation with the installed add-in. One whose
// interpreter this system lacks is skipped.
#include <windows.h>

#include <array>
#include <optional>

#include "library/installed_suite.h"

namespace vordane::suite {
namespace {

// The programs of a word size: those under test, or the ones beside them whose folder is called so with the
// other.
std::optional<Path> buildOf(const std::string& words) {
  const Path own = layout().programs.parent_path();
  std::wstring name = own.filename().wstring();
  const std::wstring ending = wide(words);
  const Path found = own.parent_path() / name.replace(name.size() - ending.size(), ending.size(), ending);
  return std::filesystem::exists(found / L"programs" / L"vordane" / L"VORDANE.EXE") ? std::optional(found)
                                                                                    : std::nullopt;
}

constexpr const char* ownWords = sizeof(void*) == 8 ? "x64" : "x86";

bool runs(const std::string& words) {
  if (words == ownWords) return true;
  BOOL emulated = FALSE;
  std::wstring folder(MAX_PATH, L'\0');
  folder.resize(GetSystemWow64DirectoryW(folder.data(), MAX_PATH));
  if (words == "x86") return !folder.empty() && std::filesystem::exists(Path(folder) / L"ntdll.dll");
  return IsWow64Process(GetCurrentProcess(), &emulated) && emulated;
}

Path systemFolder() {
  std::wstring folder(MAX_PATH, L'\0');
  folder.resize(GetSystemDirectoryW(folder.data(), MAX_PATH));
  return folder;
}
Path windowsFolder() {
  std::wstring folder(MAX_PATH, L'\0');
  folder.resize(GetWindowsDirectoryW(folder.data(), MAX_PATH));
  return folder;
}

class Hosts : public InstalledSuite {
 protected:
  void SetUp() override {
    InstalledSuite::SetUp();
    useScenario(L"jobs");
    at_ = layout().elsewhere / L"hosts";
    std::filesystem::create_directories(at_);
  }

  // An example, copied to where it is run.
  Path example(const std::wstring& name) const {
    copyFile(layout().source / L"examples" / L"hosts" / name, at_);
    return at_ / Path(name).filename();
  }

  // It drives an unattended run and prints every notification in its order, the last release ends the add-in,
  // and the faults are in the database.
  void expectConversation(const Path& program, const Program::Arguments& arguments,
                          const std::string& expected, int faults) {
    const Ended ended = run(program, arguments, at_);
    EXPECT_TRUE(isExpected(masked(joined(linesOf(ended.output))), expected));
    EXPECT_EQ(ended.code, 0);
    awaitGone();
    EXPECT_EQ(stored(), faults);
  }
  // Those that are driven by the simulated exchange print the same.
  void expectRun(const Path& program, Program::Arguments arguments) {
    for (const wchar_t* const word : {L"PBX-1", L"1", L"60"}) arguments.emplace_back(word);
    expectConversation(program, arguments, "js-host.expected", 2);
  }

  void cpp(const Path& build) {
    copyFile(build / L"examples" / L"hosts" / L"cpp" / L"cpphost.exe", at_);
    expectConversation(at_ / L"cpphost.exe", {L"CPP", L"1", L"60"}, "cpp-host.expected", 1);
  }

  Path at_;
};

TEST_F(Hosts, InCppOfThisWordSize) {
  cpp(layout().programs.parent_path());
}

// What it was compiled against is looked at before anything is called.
TEST_F(Hosts, InCppGoesNoFurtherWithAnotherLibrary) {
  copyFile(layout().programs.parent_path() / L"examples" / L"hosts" / L"cpp" / L"cpphost.exe", at_);
  unregisterProgram(layout().addin());
  const Ended ended = run(at_ / L"cpphost.exe", {}, at_);
  EXPECT_EQ(ended.code, 2);
  EXPECT_EQ(joined(linesOf(ended.output)), "error 0x8002801D \n");
}

TEST_F(Hosts, InVbScript) {
  const Path script = systemFolder() / L"cscript.exe";
  if (!std::filesystem::exists(systemFolder() / L"vbscript.dll")) GTEST_SKIP() << "no VBScript here";
  if (GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr)
    GTEST_SKIP() << "the VBScript here can't call its own class objects by name";
  expectRun(script, {L"//nologo", example(L"host.vbs").wstring()});
}

TEST_F(Hosts, InPowerShell) {
  const Path shell = systemFolder() / L"WindowsPowerShell" / L"v1.0" / L"powershell.exe";
  // A stand-in that answers nothing is none.
  if (!std::filesystem::exists(shell) ||
      run(shell, {L"-NoProfile", L"-Command", L"Write-Output present"}).output.find("present") ==
          std::string::npos)
    GTEST_SKIP() << "no PowerShell here";
  expectRun(shell, {L"-NoProfile", L"-ExecutionPolicy", L"Bypass", L"-Sta", L"-File",
                    example(L"host.ps1").wstring()});
}

TEST_F(Hosts, InCSharp) {
  const wchar_t* const framework = sizeof(void*) == 8 ? L"Framework64" : L"Framework";
  const Path compiler = windowsFolder() / L"Microsoft.NET" / framework / L"v4.0.30319" / L"csc.exe";
  if (!std::filesystem::exists(compiler)) GTEST_SKIP() << "no compiler of the .NET Framework here";
  const Ended compiled =
      run(compiler,
          {L"/nologo", std::wstring(L"/platform:") + wide(ownWords), L"/r:Microsoft.CSharp.dll",
           L"/r:System.Core.dll", L"/out:" + (at_ / L"host.exe").wstring(), example(L"host.cs").wstring()},
          at_);
  ASSERT_EQ(compiled.code, 0) << compiled.output;
  expectRun(at_ / L"host.exe", {});
}

TEST_F(Hosts, InPython) {
  const Path launcher = windowsFolder() / L"py.exe";
  if (!std::filesystem::exists(launcher) ||
      run(launcher, {L"-3", L"-c", L"import win32com.server.util; print('present')"})
              .output.find("present") == std::string::npos)
    GTEST_SKIP() << "no Python with pywin32 here";
  expectRun(launcher, {L"-3", example(L"host.py").wstring()});
}

// The add-in of one word size and the host of either.
class HostAndAddIn : public Hosts, public testing::WithParamInterface<std::array<const char*, 2>> {};

TEST_P(HostAndAddIn, Converse) {
  const auto [hostWords, addInWords] = GetParam();
  const auto host = buildOf(hostWords), addIn = buildOf(addInWords);
  if (!host || !addIn) GTEST_SKIP() << "only one word size is built here";
  if (!runs(hostWords) || !runs(addInWords)) GTEST_SKIP() << "this system runs one word size only";
  copyFile(*addIn / L"programs" / L"vordane" / L"VORDANE.EXE", layout().addin());
  registerProgram(layout().addin());
  cpp(*host);
}

INSTANTIATE_TEST_SUITE_P(WordSizes, HostAndAddIn,
                         testing::Values(std::array{"x64", "x64"}, std::array{"x64", "x86"},
                                         std::array{"x86", "x64"}, std::array{"x86", "x86"}),
                         [](const auto& run) {
                           return std::string("Host") + run.param[0] + "AddIn" + run.param[1];
                         });

}  // namespace
}  // namespace vordane::suite
