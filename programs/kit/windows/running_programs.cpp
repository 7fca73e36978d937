#include "kit/windows/running_programs.h"

#include <tlhelp32.h>

#include <cwchar>

#include "platform/windows/com/owned.h"

namespace vordane::kit {
namespace {

void askToEnd(DWORD processId) {
  const com::File all(CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
  THREADENTRY32 entry{};
  entry.dwSize = sizeof entry;
  for (BOOL more = Thread32First(all.get(), &entry); more; more = Thread32Next(all.get(), &entry))
    if (entry.th32OwnerProcessID == processId) PostThreadMessageW(entry.th32ThreadID, WM_QUIT, 0, 0);
}

// For a moment the list still holds a process whose end its waiters have been told.
bool hasEnded(DWORD processId) {
  const com::Handle process(OpenProcess(SYNCHRONIZE, FALSE, processId));
  return process && WaitForSingleObject(process.get(), 0) == WAIT_OBJECT_0;
}

}  // namespace

std::vector<std::pair<DWORD, std::wstring>> runningPrograms() {
  std::vector<std::pair<DWORD, std::wstring>> found;
  const com::File all(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
  PROCESSENTRY32W entry{};
  entry.dwSize = sizeof entry;
  for (BOOL more = Process32FirstW(all.get(), &entry); more; more = Process32NextW(all.get(), &entry))
    if (!hasEnded(entry.th32ProcessID)) found.emplace_back(entry.th32ProcessID, entry.szExeFile);
  return found;
}

std::wstring fileOf(DWORD processId) {
  const com::Handle process(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, processId));
  std::wstring path(4096, L'\0');
  auto length = static_cast<DWORD>(path.size());
  if (!process || !QueryFullProcessImageNameW(process.get(), 0, path.data(), &length)) return {};
  path.resize(length);
  return path;
}

bool liesBelow(const std::wstring& file, const std::filesystem::path& folder) {
  const std::wstring beginning = folder.wstring() + L"\\";
  return _wcsnicmp(file.c_str(), beginning.c_str(), beginning.size()) == 0;
}

bool endProgram(DWORD processId, DWORD politely, DWORD atMost, UINT code) {
  const com::Handle process(OpenProcess(SYNCHRONIZE | PROCESS_TERMINATE, FALSE, processId));
  if (!process) return true;
  askToEnd(processId);
  if (WaitForSingleObject(process.get(), politely) == WAIT_OBJECT_0) return true;
  TerminateProcess(process.get(), code);
  WaitForSingleObject(process.get(), atMost);
  return false;
}

}  // namespace vordane::kit
