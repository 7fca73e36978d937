// Windows' ODBC driver manager.
#include <windows.h>

#include "platform/odbc/library.h"

namespace vordane::odbc {

Lookup systemLibrary() {
  return [](const char* name) -> void* {
    // Never freed: drivers leave threads behind.
    static const HMODULE library = LoadLibraryExW(L"odbc32.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    return library == nullptr ? nullptr : reinterpret_cast<void*>(GetProcAddress(library, name));
  };
}

}  // namespace vordane::odbc
