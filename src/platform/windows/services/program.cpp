#include <windows.h>

#include <cstring>
#include <string>
#include <vector>

#include "platform/command_line.h"
#include "platform/windows/com/owned.h"
#include "platform/windows/com/system_function.h"
#include "platform/windows/services/services.h"
#include "text/utf8.h"

namespace vordane::windows {
namespace {

constexpr std::size_t longestPath = 32768;
constexpr std::size_t longestName = 257;  // of a person or a workstation

std::wstring modulePath() {
  std::vector<wchar_t> buffer(longestPath);
  const DWORD length = GetModuleFileNameW(nullptr, buffer.data(), static_cast<DWORD>(buffer.size()));
  return {buffer.data(), length};
}

// Started through a short name, the directory would not show where it stands.
std::wstring longName(const std::wstring& path) {
  std::vector<wchar_t> buffer(longestPath);
  const DWORD length = GetLongPathNameW(path.c_str(), buffer.data(), static_cast<DWORD>(buffer.size()));
  return length == 0 || length >= buffer.size() ? path : std::wstring(buffer.data(), length);
}

// The numbers of a module's version resource; nothing without one. The system's reader of files'
// versions stands in a library that a program's folder could hold too, so the resource is read as it lies:
// its length, two more numbers, its name, and at the next multiple of four the numbers.
std::optional<FileVersion> versionIn(HMODULE module) {
  constexpr std::size_t fixedAt = 40;
  const HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(1), RT_VERSION);
  if (found == nullptr || SizeofResource(module, found) < fixedAt + sizeof(VS_FIXEDFILEINFO)) return {};
  const auto* bytes = static_cast<const BYTE*>(LockResource(LoadResource(module, found)));
  if (bytes == nullptr) return {};
  VS_FIXEDFILEINFO fixed{};
  std::memcpy(&fixed, bytes + fixedAt, sizeof fixed);
  if (fixed.dwSignature != VS_FFI_SIGNATURE) return {};
  return FileVersion{HIWORD(fixed.dwFileVersionMS), LOWORD(fixed.dwFileVersionMS),
                     HIWORD(fixed.dwFileVersionLS)};
}

void readVersion(platform::Program& program) {
  const auto version = versionIn(nullptr);
  if (!version) return;
  program.major = version->major;
  program.minor = version->minor;
  program.revision = version->revision;
}

// What a name's reader of the system tells; empty where it fails.
template <class Read>
std::u16string nameFrom(const Read& read) {
  std::wstring name(longestName, L'\0');
  auto length = static_cast<DWORD>(name.size());
  if (!read(name.data(), &length)) return {};
  return std::u16string(com::fromWide(name.c_str()));
}

}  // namespace

void loadFromSystemOnly() {
  using Set = BOOL(WINAPI*)(DWORD);
  const HMODULE kernel = GetModuleHandleW(L"kernel32.dll");
  const FARPROC found = GetProcAddress(kernel, "SetDefaultDllDirectories");
  if (found != nullptr) reinterpret_cast<Set>(reinterpret_cast<void*>(found))(LOAD_LIBRARY_SEARCH_SYSTEM32);
}

std::optional<FileVersion> versionOfFile(std::u16string_view program) {
  const std::wstring path(program.begin(), program.end());
  const HMODULE module = LoadLibraryExW(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
  if (module == nullptr) return {};
  const auto version = versionIn(module);
  FreeLibrary(module);
  return version;
}

std::u16string executablePath() {
  const std::wstring path = longName(modulePath());
  return {path.begin(), path.end()};
}

platform::Program thisProgram() {
  platform::Program program;
  const std::u16string path = executablePath();
  program.directory = path.substr(0, path.rfind(u'\\'));
  const platform::CommandLine line =
      platform::parseCommandLine(platform::withoutProgramName(com::fromWide(GetCommandLineW())));
  program.commandLine = line.text;
  program.startedByAutomation = line.start == platform::Start::byAutomation;
  readVersion(program);
  program.interactive = stationIsVisible();
  program.person = nameFrom(GetUserNameW);
  program.workstation = nameFrom(GetComputerNameW);
  return program;
}

std::vector<std::string> programWords() {
  using Split = LPWSTR*(WINAPI*)(LPCWSTR, int*);
  const auto split = com::systemFunction<Split>(L"shell32.dll", "CommandLineToArgvW");
  int count = 0;
  LPWSTR* const values = split != nullptr ? split(GetCommandLineW(), &count) : nullptr;
  std::vector<std::string> words;
  for (int i = 1; values != nullptr && i < count; ++i)
    words.push_back(text::toUtf8(com::fromWide(values[i])));
  LocalFree(values);
  return words;
}

bool stationIsVisible() {
  USEROBJECTFLAGS flags{};
  DWORD needed = 0;
  const HWINSTA station = GetProcessWindowStation();
  if (!GetUserObjectInformationW(station, UOI_FLAGS, &flags, sizeof flags, &needed)) return true;
  return (flags.dwFlags & WSF_VISIBLE) != 0;
}

bool SystemDocuments::open(std::u16string_view path) {
  const std::wstring name(path.begin(), path.end());
  const DWORD attributes = GetFileAttributesW(name.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return false;
  return shell_(name);
}

bool SystemDocuments::openWithDesktop(const std::wstring& path) {
  using Execute = HINSTANCE(WINAPI*)(HWND, LPCWSTR, LPCWSTR, LPCWSTR, LPCWSTR, INT);
  static const auto execute = com::systemFunction<Execute>(L"shell32.dll", "ShellExecuteW");
  constexpr INT_PTR firstSuccess = 33;  // up to 32 the answer is an error code
  return execute != nullptr && reinterpret_cast<INT_PTR>(execute(nullptr, L"open", path.c_str(), nullptr,
                                                                 nullptr, SW_SHOWNORMAL)) >= firstSuccess;
}

}  // namespace vordane::windows
