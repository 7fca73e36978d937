#include "measuring.h"

#include <psapi.h>
#include <winternl.h>

#include <cstddef>

#include "kit/windows/running_programs.h"
#include "platform/windows/com/apartment.h"

namespace vordane::test {
namespace {

// Wine answers the plain question with 0 and lists every process's handles instead, in this form.
struct ListedHandle {
  ULONG process;
  BYTE type, flags;
  USHORT value;
  void* object;
  ULONG access;
};
struct HandleList {
  ULONG count;
  ListedHandle entries[1];
};
constexpr auto allHandles = static_cast<SYSTEM_INFORMATION_CLASS>(16);

DWORD listedHandles(DWORD processId) {
  std::vector<std::byte> buffer(1024 * 1024);
  if (NtQuerySystemInformation(allHandles, buffer.data(), static_cast<ULONG>(buffer.size()), nullptr) < 0)
    return 0;
  const auto* list = reinterpret_cast<const HandleList*>(buffer.data());
  DWORD count = 0;
  for (ULONG i = 0; i < list->count; ++i) count += list->entries[i].process == processId;
  return count;
}

DWORD handlesOf(HANDLE process) {
  DWORD count = 0;
  if (GetProcessHandleCount(process, &count) && count > 0) return count;
  return listedHandles(GetProcessId(process));
}

}  // namespace

Holding holdingOf(HANDLE process) {
  Holding holding{handlesOf(process), 0};
  PROCESS_MEMORY_COUNTERS memory{};
  // What is committed for this process alone; Wine fills no newer field with it.
  if (GetProcessMemoryInfo(process, &memory, sizeof memory)) holding.privateBytes = memory.PagefileUsage;
  return holding;
}

std::vector<DWORD> processesOf(const std::wstring& program) {
  std::vector<DWORD> found;
  for (const auto& [number, running] : kit::runningPrograms())
    if (_wcsicmp(running.c_str(), program.c_str()) == 0) found.push_back(number);
  return found;
}

com::Handle openProcess(DWORD processId) {
  return com::Handle(
      OpenProcess(SYNCHRONIZE | PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, processId));
}

bool endsWithin(HANDLE process, int milliseconds) {
  return com::serveMessagesUntil([&] { return WaitForSingleObject(process, 0) == WAIT_OBJECT_0; },
                                 milliseconds);
}

}  // namespace vordane::test
