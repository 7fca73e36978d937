// Every shipped program says what it is and what it needs of Windows.
#include <gtest/gtest.h>
#include <windows.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace vordane {
namespace {

struct Program {
  const char* path;  // below the build
  const char16_t* name;
  const char16_t* description;
  bool utf8;
};

class ProgramResources : public testing::TestWithParam<Program> {
 protected:
  // run.sh names the build as its own machine's path, which Wine has as drive Z.
  static std::filesystem::path file() {
    const char* const named = std::getenv("VORDANE_BUILD");
    const std::string build = named == nullptr ? "" : named;
    return std::filesystem::path(build.starts_with('/') ? "Z:" + build : build) / "programs" /
           GetParam().path;
  }
  ProgramResources() : module_(LoadLibraryExW(file().c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE)) {}
  ~ProgramResources() override {
    if (module_ != nullptr) FreeLibrary(module_);
  }

  std::string resource(const wchar_t* type) const {
    const HRSRC found = FindResourceW(module_, MAKEINTRESOURCEW(1), type);
    if (found == nullptr) return {};
    const auto* bytes = static_cast<const char*>(LockResource(LoadResource(module_, found)));
    return {bytes, SizeofResource(module_, found)};
  }
  static std::vector<char> version() {
    DWORD ignored = 0;
    std::vector<char> bytes(GetFileVersionInfoSizeW(file().c_str(), &ignored));
    if (!bytes.empty())
      GetFileVersionInfoW(file().c_str(), 0, static_cast<DWORD>(bytes.size()), bytes.data());
    return bytes;
  }
  static std::u16string versionText(std::vector<char>& version, const std::wstring& name) {
    void* text = nullptr;
    UINT length = 0;
    if (version.empty() ||
        !VerQueryValueW(version.data(), (L"\\StringFileInfo\\040904B0\\" + name).c_str(), &text, &length))
      return {};
    return static_cast<const char16_t*>(text);
  }

  HMODULE module_;
};

TEST_P(ProgramResources, TheVersionIsTheProducts) {
  ASSERT_NE(module_, nullptr) << file();
  std::vector<char> bytes = version();
  void* fixed = nullptr;
  UINT length = 0;
  ASSERT_TRUE(!bytes.empty() && VerQueryValueW(bytes.data(), L"\\", &fixed, &length));
  const auto& numbers = *static_cast<const VS_FIXEDFILEINFO*>(fixed);
  EXPECT_EQ(numbers.dwFileVersionMS, 0x10000U);
  EXPECT_EQ(numbers.dwFileVersionLS, 12U << 16U);
  EXPECT_EQ(numbers.dwProductVersionMS, 0x10000U);
  EXPECT_EQ(versionText(bytes, L"FileVersion"), u"1.0.12");
  EXPECT_EQ(versionText(bytes, L"ProductName"), u"Vordane");
  EXPECT_EQ(versionText(bytes, L"OriginalFilename"), GetParam().name);
  EXPECT_EQ(versionText(bytes, L"FileDescription"), GetParam().description);
}

TEST_P(ProgramResources, TheIconHasEverySizeThatWindowsShows) {
  constexpr std::size_t header = 6, entry = 14;
  const std::string group = resource(MAKEINTRESOURCEW(14));
  std::vector<int> sizes;
  for (std::size_t at = header; at + entry <= group.size(); at += entry)
    sizes.push_back(static_cast<unsigned char>(group[at]));
  EXPECT_EQ(sizes, (std::vector<int>{16, 24, 32, 48, 64}));
}

TEST_P(ProgramResources, TheManifestAsksForNoRightsAndForTodaysWindows) {
  const std::string manifest = resource(MAKEINTRESOURCEW(24));
  for (const char* part :
       {"<requestedExecutionLevel level=\"asInvoker\" uiAccess=\"false\"/>",
        "name=\"Microsoft.Windows.Common-Controls\" version=\"6.0.0.0\"", ">true/pm</dpiAware>",
        ">PerMonitorV2</dpiAwareness>", ">true</longPathAware>",
        "<supportedOS Id=\"{8e0f7a12-bfb3-4fe8-b9a5-48fd50a15a9a}\"/>", "version=\"1.0.12.0\""})
    EXPECT_NE(manifest.find(part), std::string::npos) << part;
  EXPECT_EQ(manifest.find(">UTF-8</activeCodePage>") != std::string::npos, GetParam().utf8);
}

INSTANTIATE_TEST_SUITE_P(Shipped, ProgramResources,
                         testing::Values(Program{"vordane/VORDANE.EXE", u"VORDANE.EXE",
                                                 u"Displays and Manages PBX Fault Lists.", false},
                                         Program{"zulsim/Zulsim.exe", u"Zulsim.exe",
                                                 u"Simulates the exchanges of a maintenance suite.", true},
                                         Program{"devhost/devhost.exe", u"devhost.exe",
                                                 u"Hosts the fault display for development.", false},
                                         Program{"tools/vordane-tools.exe", u"vordane-tools.exe",
                                                 u"Looks after the files of the fault display.", false}));

}  // namespace
}  // namespace vordane
