// The shipped programs as files: which libraries the system loads for them before their first instruction,
// and what their type library says of itself.
#include <gtest/gtest.h>

#include <windows.h>
// oleauto.h needs windows.h before it.
#include <oleauto.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "platform/event_log.h"

namespace vordane::test {
namespace {

// Kept by the system in memory from its start on (KnownDLLs): a file of that name beside a program is never
// looked at.
const std::set<std::string> kept{"advapi32.dll", "gdi32.dll",    "imm32.dll",  "kernel32.dll", "msvcrt.dll",
                                 "ole32.dll",    "oleaut32.dll", "psapi.dll",  "rpcrt4.dll",   "sechost.dll",
                                 "shell32.dll",  "shlwapi.dll",  "user32.dll", "ws2_32.dll"};
// Found through the manifest, among the system's versions of it.
constexpr const char* byManifest = "comctl32.dll";
constexpr const char* manifestsName = "Microsoft.Windows.Common-Controls";

std::wstring folder() {
  wchar_t path[1024];
  GetModuleFileNameW(nullptr, path, 1024);
  std::wstring whole(path);
  for (int i = 0; i < 4; ++i) whole.resize(whole.rfind(L'\\'));
  return whole + L"\\programs\\";
}

const std::wstring programs[] = {L"vordane\\VORDANE.EXE", L"zulsim\\Zulsim.exe", L"devhost\\devhost.exe",
                                 L"tools\\vordane-tools.exe"};

// A program's file, laid out as the system lays it out in memory.
class Image {
 public:
  explicit Image(const std::wstring& path) {
    std::ifstream file(std::string(path.begin(), path.end()), std::ios::binary);
    bytes_.assign(std::istreambuf_iterator<char>(file), {});
  }

  bool good() const { return bytes_.size() > 1024 && bytes_.compare(0, 2, "MZ") == 0; }
  bool holds(const std::string& text) const { return bytes_.find(text) != bytes_.npos; }
  std::vector<std::string> imports() const { return names(1, 12, 20); }
  // Loaded at the first call of one of their functions, in the same places.
  std::vector<std::string> lateImports() const { return names(13, 4, 32); }

 private:
  template <class Number>
  Number at(std::size_t offset) const {
    Number number{};
    if (offset + sizeof number <= bytes_.size()) std::memcpy(&number, bytes_.data() + offset, sizeof number);
    return number;
  }

  std::size_t header() const { return at<std::uint32_t>(0x3C); }
  bool wide() const { return at<std::uint16_t>(header() + 24) == 0x20B; }
  std::uint32_t directory(std::size_t number) const {
    return at<std::uint32_t>(header() + 24 + (wide() ? 112 : 96) + 8 * number);
  }

  std::size_t fileOffset(std::uint32_t address) const {
    const std::size_t sections = header() + 24 + at<std::uint16_t>(header() + 20);
    for (std::size_t i = 0; i < at<std::uint16_t>(header() + 6); ++i) {
      const std::size_t section = sections + 40 * i;
      const auto begin = at<std::uint32_t>(section + 12);
      if (address >= begin && address < begin + at<std::uint32_t>(section + 16))
        return address - begin + at<std::uint32_t>(section + 20);
    }
    return bytes_.size();
  }

  // The libraries that a table names: rows of `size` bytes with the name's address at `nameAt`.
  std::vector<std::string> names(std::size_t number, std::size_t nameAt, std::size_t size) const {
    std::vector<std::string> found;
    if (directory(number) == 0) return found;
    for (std::size_t row = fileOffset(directory(number));; row += size) {
      const auto name = at<std::uint32_t>(row + nameAt);
      if (name == 0) return found;
      std::string text(bytes_.c_str() + std::min(fileOffset(name), bytes_.size()));
      std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
      found.push_back(text);
    }
  }

  std::string bytes_;
};

TEST(Shipped, ProgramsAreLinkedOnlyWithWhatTheSystemKeeps) {
  for (const std::wstring& program : programs) {
    const Image image(folder() + program);
    const std::string name(program.begin(), program.end());
    ASSERT_TRUE(image.good()) << name;
    ASSERT_FALSE(image.imports().empty()) << name;
    for (const std::string& library : image.imports())
      EXPECT_TRUE(kept.count(library) != 0 || (library == byManifest && image.holds(manifestsName)))
          << name << " would take " << library << " from its own folder";
    EXPECT_TRUE(image.lateImports().empty()) << name;
  }
}

// A text of the add-in's message table with its values filled in; empty when there is none in that language.
std::wstring eventText(DWORD identifier, WORD language) {
  const HMODULE program = LoadLibraryExW((folder() + programs[0]).c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
  const wchar_t* const values[] = {L"FILE", L"100 %", L"41"};
  std::vector<DWORD_PTR> arguments;
  for (const wchar_t* value : values) arguments.push_back(reinterpret_cast<DWORD_PTR>(value));
  std::wstring text(4096, L'\0');
  text.resize(FormatMessageW(FORMAT_MESSAGE_FROM_HMODULE | FORMAT_MESSAGE_ARGUMENT_ARRAY, program, identifier,
                             language, text.data(), static_cast<DWORD>(text.size()),
                             reinterpret_cast<va_list*>(arguments.data())));
  FreeLibrary(program);
  return text;
}

TEST(Shipped, TheAddInHoldsTheTextsOfItsEntriesInTheEventLog) {
  for (const WORD language : {WORD{0x409}, WORD{0x419}, WORD{0x411}})
    for (const auto& kind : platform::eventKinds) {
      const std::wstring text = eventText(platform::eventIdentifier(kind.event), language);
      const int number = static_cast<int>(kind.event);
      EXPECT_NE(text.find(L"FILE"), text.npos) << number << " " << language;
      EXPECT_NE(text.find(L"100 %"), text.npos) << number << " " << language;
      EXPECT_NE(text.find(L"\r\n\r\n"), text.npos) << number << " " << language;
      EXPECT_EQ(text.find(L"%1"), text.npos) << number << " " << language;
    }
  EXPECT_EQ(
      eventText(0xC0000012, 0x409),
      L"Unattended job 41 failed, wholly or in part. Reason: 100 % File: FILE\r\n\r\nThe file is the log of "
      L"the job, or the database with its options where no log is kept. Remove the reason and run the job "
      L"again; what the exchange still reports is then stored.\r\n");
  EXPECT_EQ(eventText(0xC0000012, 0x419).substr(0, 7), L"\u0417\u0430\u0434\u0430\u043d\u0438\u0435");
  EXPECT_EQ(eventText(0xC0000012, 0x411).substr(0, 3), L"\u30b9\u30b1\u30b8");
}

#ifdef _WIN64
constexpr SYSKIND ownKind = SYS_WIN64;
#else
constexpr SYSKIND ownKind = SYS_WIN32;
#endif

TEST(Shipped, TheTypeLibraryIsOfTheProgramsWordSize) {
  ITypeLib* library = nullptr;
  ASSERT_EQ(LoadTypeLibEx((folder() + programs[0]).c_str(), REGKIND_NONE, &library), S_OK);
  TLIBATTR* attributes = nullptr;
  ASSERT_EQ(library->GetLibAttr(&attributes), S_OK);
  EXPECT_EQ(attributes->syskind, ownKind);
  EXPECT_EQ(attributes->wMajorVerNum, 1);
  EXPECT_EQ(library->GetTypeInfoCount(), 6U);
  library->ReleaseTLibAttr(attributes);
  library->Release();
}

}  // namespace
}  // namespace vordane::test

int main(int count, char** arguments) {
  testing::InitGoogleTest(&count, arguments);
  return RUN_ALL_TESTS();
}
