// Counts this program's own calls of a function of the system that can't be told by what it does: a system
// may do the same without having been asked.
#pragma once

#include <windows.h>

#include <cstring>

namespace vordane::window::testing {

// The place in this program's table of imports where a function's address stands; null when it imports none
// of that name.
inline ULONG_PTR* importOf(const char* function) {
  auto* const base = reinterpret_cast<BYTE*>(GetModuleHandleW(nullptr));
  const auto* headers =
      reinterpret_cast<IMAGE_NT_HEADERS*>(base + reinterpret_cast<IMAGE_DOS_HEADER*>(base)->e_lfanew);
  const auto& table = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
  for (auto* library = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(base + table.VirtualAddress);
       library->Name != 0; ++library) {
    auto* names = reinterpret_cast<IMAGE_THUNK_DATA*>(base + library->OriginalFirstThunk);
    auto* places = reinterpret_cast<IMAGE_THUNK_DATA*>(base + library->FirstThunk);
    for (; names->u1.AddressOfData != 0; ++names, ++places) {
      if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal)) continue;
      const auto* name = reinterpret_cast<IMAGE_IMPORT_BY_NAME*>(base + names->u1.AddressOfData);
      if (std::strcmp(reinterpret_cast<const char*>(name->Name), function) == 0)
        return reinterpret_cast<ULONG_PTR*>(&places->u1.Function);
    }
  }
  return nullptr;
}

// While one lives, SetForegroundWindow is counted, and made.
class ForegroundCalls {
 public:
  ForegroundCalls() : place_(importOf("SetForegroundWindow")) {
    calls() = 0;
    if (place_ != nullptr) put(reinterpret_cast<ULONG_PTR>(&counted));
  }
  ~ForegroundCalls() {
    if (place_ != nullptr) put(reinterpret_cast<ULONG_PTR>(real()));
  }
  ForegroundCalls(const ForegroundCalls&) = delete;
  ForegroundCalls& operator=(const ForegroundCalls&) = delete;

  static int& calls() {
    static int count = 0;
    return count;
  }

 private:
  using Function = BOOL(WINAPI*)(HWND);
  static Function real() {
    const FARPROC found = GetProcAddress(GetModuleHandleW(L"user32.dll"), "SetForegroundWindow");
    return reinterpret_cast<Function>(reinterpret_cast<void*>(found));
  }
  static BOOL WINAPI counted(HWND window) {
    ++calls();
    return real()(window);
  }
  void put(ULONG_PTR address) {
    DWORD before = 0;
    VirtualProtect(place_, sizeof *place_, PAGE_READWRITE, &before);
    *place_ = address;
    VirtualProtect(place_, sizeof *place_, before, &before);
  }
  ULONG_PTR* place_;
};

}  // namespace vordane::window::testing
