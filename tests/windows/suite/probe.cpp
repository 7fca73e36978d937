// What the tests of the whole suite need to see and cannot ask the suite for:
//
//   suiteprobe sql FILE STATEMENT           runs a statement on a database file and prints its rows, columns
//                                           parted by "|", as another program on this workstation would
//   suiteprobe figures PROGRAM              handles and private kilobytes of the running program of that name
//   suiteprobe unseen PROGRAM [ARGUMENT ...]  runs a program on a window station that nobody sees, as a
//   service
//                                           does, and ends with its exit code
//
// Ends with 1 when there is nothing to tell, 2 for a wrong call.
#include <windows.h>
// psapi.h and winternl.h need windows.h before them.
#include <psapi.h>
#include <sqlite3.h>
#include <winternl.h>

#include <cstdio>
#include <cwchar>
#include <string>
#include <vector>

namespace {

std::string utf8(const wchar_t* text) {
  char bytes[4096];
  WideCharToMultiByte(CP_UTF8, 0, text, -1, bytes, sizeof bytes, nullptr, nullptr);
  return bytes;
}

int printRow(void*, int count, char** values, char**) {
  for (int i = 0; i < count; ++i) std::printf("%s%s", i == 0 ? "" : "|", values[i] ? values[i] : "");
  std::puts("");
  return 0;
}

int sql(const wchar_t* file, const wchar_t* statement) {
  sqlite3* handle = nullptr;
  char* error = nullptr;
  int result = sqlite3_open_v2(utf8(file).c_str(), &handle, SQLITE_OPEN_READWRITE, nullptr);
  sqlite3_busy_timeout(handle, 5000);
  if (result == SQLITE_OK) result = sqlite3_exec(handle, utf8(statement).c_str(), printRow, nullptr, &error);
  if (result != SQLITE_OK) std::printf("! %s\n", error ? error : sqlite3_errmsg(handle));
  sqlite3_free(error);
  sqlite3_close(handle);
  return result == SQLITE_OK ? 0 : 1;
}

// One open handle in the list of all that are open.
struct OpenHandle {
  ULONG owner;
  BYTE type, flags;
  USHORT value;
  void* object;
  ULONG access;
};
constexpr auto allHandles = static_cast<SYSTEM_INFORMATION_CLASS>(16);

// Asking a process for the number of its handles tells the size of its table, so they are counted one by one.
std::size_t handlesOf(ULONG process) {
  std::vector<char> room(1 << 22);
  ULONG used = 0;
  if (NtQuerySystemInformation(allHandles, room.data(), static_cast<ULONG>(room.size()), &used) < 0) return 0;
  const ULONG count = *reinterpret_cast<const ULONG*>(room.data());
  const auto* handles = reinterpret_cast<const OpenHandle*>(room.data() + sizeof(void*));
  std::size_t found = 0;
  for (ULONG i = 0; i < count; ++i) found += handles[i].owner == process ? 1 : 0;
  return found;
}

const SYSTEM_PROCESS_INFORMATION* processOf(const wchar_t* program, std::vector<char>& room) {
  room.resize(1 << 20);
  ULONG used = 0;
  if (NtQuerySystemInformation(SystemProcessInformation, room.data(), static_cast<ULONG>(room.size()),
                               &used) < 0)
    return nullptr;
  for (const char* at = room.data();;) {
    const auto* process = reinterpret_cast<const SYSTEM_PROCESS_INFORMATION*>(at);
    const UNICODE_STRING& name = process->ImageName;
    if (name.Buffer != nullptr && _wcsicmp(std::wstring(name.Buffer, name.Length / 2).c_str(), program) == 0)
      return process;
    if (process->NextEntryOffset == 0) return nullptr;
    at += process->NextEntryOffset;
  }
}

int figures(const wchar_t* program) {
  std::vector<char> room;
  const auto* found = processOf(program, room);
  if (found == nullptr) return 1;
  const auto number = static_cast<DWORD>(reinterpret_cast<ULONG_PTR>(found->UniqueProcessId));
  const HANDLE process = OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, number);
  if (process == nullptr) return 1;
  PROCESS_MEMORY_COUNTERS memory{};
  GetProcessMemoryInfo(process, &memory, sizeof memory);
  CloseHandle(process);
  std::printf("%zu %lu\n", handlesOf(number), static_cast<unsigned long>(memory.PagefileUsage / 1024));
  return 0;
}

// The command line behind the word "unseen", as it was written.
wchar_t* restOfCommandLine() {
  wchar_t* rest = std::wcsstr(GetCommandLineW(), L" unseen ");
  return rest == nullptr ? nullptr : rest + std::wcslen(L" unseen ");
}

int unseen(wchar_t* commandLine) {
  wchar_t desktop[] = L"VordaneService\\Default";
  const HWINSTA own = GetProcessWindowStation();
  const HWINSTA station = CreateWindowStationW(L"VordaneService", 0, WINSTA_ALL_ACCESS, nullptr);
  if (station == nullptr || !SetProcessWindowStation(station)) return 2;
  const HDESK made = CreateDesktopW(L"Default", nullptr, nullptr, 0, GENERIC_ALL, nullptr);
  SetProcessWindowStation(own);
  STARTUPINFOW start{};
  start.cb = sizeof start;
  start.lpDesktop = desktop;
  PROCESS_INFORMATION started{};
  if (made == nullptr ||
      !CreateProcessW(nullptr, commandLine, nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &started))
    return 2;
  WaitForSingleObject(started.hProcess, INFINITE);
  DWORD code = 2;
  GetExitCodeProcess(started.hProcess, &code);
  return static_cast<int>(code);
}

}  // namespace

int wmain(int count, wchar_t** values) {
  const std::wstring what = count > 2 ? values[1] : L"";
  if (what == L"sql" && count == 4) return sql(values[2], values[3]);
  if (what == L"figures" && count == 3) return figures(values[2]);
  if (what == L"unseen" && restOfCommandLine() != nullptr) return unseen(restOfCommandLine());
  return std::fputs("usage: suiteprobe sql FILE STATEMENT | figures PROGRAM | unseen PROGRAM ...\n", stderr),
         2;
}
