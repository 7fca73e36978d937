// A function of one of the system's libraries that is loaded when it is first wanted. A library that the
// program is linked with costs time at every start, and one of the same name in the program's own folder
// would be taken.
#pragma once

#include <windows.h>

namespace vordane::com {

// Null where the system has no such library or function. The library stays as long as the process lives.
template <typename Function>
Function systemFunction(const wchar_t* library, const char* name) {
  const HMODULE loaded = LoadLibraryExW(library, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
  const FARPROC found = loaded == nullptr ? nullptr : GetProcAddress(loaded, name);
  return reinterpret_cast<Function>(reinterpret_cast<void*>(found));
}

}  // namespace vordane::com
