// Windows' ODBC driver manager.
#include <windows.h>

#include "platform/odbc/library.h"
#include "platform/windows/com/system_function.h"

namespace vordane::odbc {

Lookup systemLibrary() {
  return [](const char* name) -> void* {
    return com::systemFunction<void*>(L"odbc32.dll", name);  // never freed: drivers leave threads behind
  };
}

}  // namespace vordane::odbc
