#include "setup_system.h"

#include <windows.h>

#include <aclapi.h>

#include <array>

#include "platform/file_moves.h"
#include "platform/registration.h"
#include "platform/windows/com/accounts.h"
#include "platform/windows/com/owned.h"
#include "platform/windows/services/services.h"
#include "settings/suite_settings.h"

namespace vordane::tools {
namespace {

namespace fs = std::filesystem;

constexpr DWORD longestRegistration = 60000;
using settings::suiteApplication;
constexpr const wchar_t* allSettings = L"Software\\VB and VBA Program Settings\\";

std::wstring wide(std::u16string_view text) {
  return {text.begin(), text.end()};
}

// Runs a program to its end, its output where ours goes. False unless it ends with 0 in time.
bool run(const fs::path& program, const wchar_t* switches) {
  std::wstring command = L"\"" + program.wstring() + L"\" " + switches;
  STARTUPINFOW start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
  start.hStdOutput = GetStdHandle(STD_OUTPUT_HANDLE);
  start.hStdError = GetStdHandle(STD_ERROR_HANDLE);
  PROCESS_INFORMATION started{};
  if (!CreateProcessW(program.c_str(), command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start,
                      &started))
    return false;
  const com::Handle process(started.hProcess), thread(started.hThread);
  if (WaitForSingleObject(process.get(), longestRegistration) != WAIT_OBJECT_0) {
    TerminateProcess(process.get(), 1);  // it registers, and nothing else: nobody's work is lost
    return false;
  }
  DWORD code = 1;
  return GetExitCodeProcess(process.get(), &code) && code == 0;
}

// `view` is KEY_WOW64_64KEY, or 0 for the program's own.
bool isEmptyKey(HKEY root, const std::wstring& place, REGSAM view) {
  com::RegistryKey key;
  DWORD keys = 1, values = 1;
  return RegOpenKeyExW(root, place.c_str(), 0, KEY_READ | view, key.put()) == ERROR_SUCCESS &&
         RegQueryInfoKeyW(key.get(), nullptr, nullptr, nullptr, &keys, nullptr, nullptr, &values, nullptr,
                          nullptr, nullptr, nullptr) == ERROR_SUCCESS &&
         keys == 0 && values == 0;
}

class WindowsSetup : public SetupSystem {
 public:
  Words words() override {
    SYSTEM_INFO info{};
    GetNativeSystemInfo(&info);
    return info.wProcessorArchitecture == PROCESSOR_ARCHITECTURE_INTEL ? Words::x86 : Words::x64;
  }
  std::unique_ptr<database::Engine> engine() override { return examiningEngine(); }
  // Nobody can have a file for himself that another has opened or runs.
  bool inUse(const fs::path& file) override {
    const com::File alone(CreateFileW(file.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL, nullptr));
    return !alone && GetLastError() == ERROR_SHARING_VIOLATION;
  }
  std::optional<Version> versionOf(const fs::path& program) override {
    const auto found = windows::versionOfFile(toText(program));
    if (!found) return std::nullopt;
    return Version{found->major, found->minor, found->revision};
  }
  bool registerProgram(const fs::path& program, bool everybody) override {
    return run(program, everybody ? L"/RegServer" : L"/RegServer /ThisUser");
  }
  bool unregisterProgram(const fs::path& program) override { return run(program, L"/UnregServer"); }
  std::optional<std::u16string> setting(std::u16string_view version, std::u16string_view key) override {
    return windows::RegistrySettings().read(suiteApplication, version, key);
  }
  void set(std::u16string_view version, std::u16string_view name,
           const std::optional<std::u16string>& value) override {
    if (value) return windows::RegistrySettings().write(suiteApplication, version, name, *value);
    const std::wstring place = allSettings + wide(suiteApplication) + L"\\" + wide(version);
    RegDeleteKeyValueW(HKEY_CURRENT_USER, place.c_str(), wide(name).c_str());
    for (const std::wstring& key : {place, allSettings + wide(suiteApplication)})
      if (isEmptyKey(HKEY_CURRENT_USER, key, 0)) RegDeleteKeyW(HKEY_CURRENT_USER, key.c_str());
  }
  void removeOwnSettings() override {
    RegDeleteTreeW(HKEY_CURRENT_USER, (std::wstring(allSettings) + L"VORDANE").c_str());
  }
  // The C++ library's own answer is the same for every disk.
  std::optional<std::uintmax_t> roomAt(const fs::path& folder) override {
    ULARGE_INTEGER free{};
    if (!GetDiskFreeSpaceExW(folder.c_str(), &free, nullptr, nullptr)) return std::nullopt;
    return free.QuadPart;
  }
  void letUsersWrite(const fs::path& folder) override;
  bool keepCrashDumps(const fs::path& root) override;
  void dropCrashDumps(const fs::path& root) override;
  std::vector<Finding> examine(const SuiteLayout& layout) override {
    std::vector<Finding> findings = examineFiles(layout, *engine());
    for (Finding& finding : examineWorkstation(layout, *thisWorkstation()))
      findings.push_back(std::move(finding));
    return findings;
  }
  void pause(std::chrono::milliseconds time) override { platform::sleepFor(time); }
};

// --- images of crashes, which the system's own error reporting writes

// Of every program of that name; read in the view that a 64-bit system shows first.
constexpr const wchar_t* everyDump = L"SOFTWARE\\Microsoft\\Windows\\Windows Error Reporting\\LocalDumps";
constexpr const wchar_t* crashDumps =
    L"SOFTWARE\\Microsoft\\Windows\\Windows Error Reporting\\LocalDumps\\VORDANE.EXE";
constexpr const wchar_t* dumpsOwner = L"InstallLocation";  // ours: of which set of files the key is
constexpr const wchar_t* dumpsMade = L"LocalDumpsMade";    // ours: the key above came with it

bool setNumber(HKEY key, const wchar_t* name, DWORD value) {
  return RegSetValueExW(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), sizeof value) ==
         ERROR_SUCCESS;
}

// No folder is named: the system's own is each user's, where nobody else reads what stood in the memory.
bool WindowsSetup::keepCrashDumps(const fs::path& root) {
  constexpr DWORD small = 1, kept = 5;
  DWORD made = 0;
  com::RegistryKey above, key;
  if (RegCreateKeyExW(HKEY_LOCAL_MACHINE, everyDump, 0, nullptr, 0, KEY_WRITE | KEY_WOW64_64KEY, nullptr,
                      above.put(), &made) != ERROR_SUCCESS ||
      RegCreateKeyExW(HKEY_LOCAL_MACHINE, crashDumps, 0, nullptr, 0, KEY_WRITE | KEY_WOW64_64KEY, nullptr,
                      key.put(), nullptr) != ERROR_SUCCESS)
    return false;
  if (made == REG_CREATED_NEW_KEY && !setNumber(key.get(), dumpsMade, 1)) return false;
  const std::wstring owner = root.wstring();
  return setNumber(key.get(), L"DumpType", small) && setNumber(key.get(), L"DumpCount", kept) &&
         RegSetValueExW(key.get(), dumpsOwner, 0, REG_SZ, reinterpret_cast<const BYTE*>(owner.c_str()),
                        static_cast<DWORD>((owner.size() + 1) * sizeof(wchar_t))) == ERROR_SUCCESS;
}

void WindowsSetup::dropCrashDumps(const fs::path& root) {
  std::array<wchar_t, 4096> owner{};
  DWORD bytes = sizeof owner - sizeof(wchar_t);
  com::RegistryKey key;
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, crashDumps, 0, KEY_READ | KEY_WOW64_64KEY, key.put()) !=
          ERROR_SUCCESS ||
      RegQueryValueExW(key.get(), dumpsOwner, nullptr, nullptr, reinterpret_cast<BYTE*>(owner.data()),
                       &bytes) != ERROR_SUCCESS)
    return;
  const bool made =
      RegQueryValueExW(key.get(), dumpsMade, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
  key.reset();
  if (!registration::samePath(com::fromWide(owner.data()), toText(root))) return;
  RegDeleteKeyExW(HKEY_LOCAL_MACHINE, crashDumps, KEY_WOW64_64KEY, 0);
  // By itself it would have the system keep images of every program.
  if (made && isEmptyKey(HKEY_LOCAL_MACHINE, everyDump, KEY_WOW64_64KEY))
    RegDeleteKeyExW(HKEY_LOCAL_MACHINE, everyDump, KEY_WOW64_64KEY, 0);
}

void WindowsSetup::letUsersWrite(const fs::path& folder) {
  com::Sid users = com::accountOf(L"S-1-5-32-545");
  if (users.empty()) return;
  std::wstring name = folder.wstring();
  PACL before = nullptr;
  com::LocalMemory descriptor;
  if (GetNamedSecurityInfoW(name.data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, &before,
                            nullptr, descriptor.put()) != ERROR_SUCCESS)
    return;
  EXPLICIT_ACCESSW access{};
  access.grfAccessPermissions = FILE_GENERIC_READ | FILE_GENERIC_WRITE | FILE_GENERIC_EXECUTE | DELETE;
  access.grfAccessMode = GRANT_ACCESS;
  access.grfInheritance = SUB_CONTAINERS_AND_OBJECTS_INHERIT;
  BuildTrusteeWithSidW(&access.Trustee, users.data());
  com::LocalMemory list;
  if (SetEntriesInAclW(1, &access, before, reinterpret_cast<PACL*>(list.put())) != ERROR_SUCCESS) return;
  SetNamedSecurityInfoW(name.data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr,
                        static_cast<PACL>(list.get()), nullptr);
}

}  // namespace

std::unique_ptr<SetupSystem> setupSystem() {
  return std::make_unique<WindowsSetup>();
}

}  // namespace vordane::tools
