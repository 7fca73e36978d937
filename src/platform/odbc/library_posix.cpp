// The driver manager of systems that have dlopen.
#include <dlfcn.h>

#include "platform/odbc/library.h"

namespace vordane::odbc {

Lookup systemLibrary() {
  return [](const char* name) -> void* {
    // Never closed: drivers leave threads and handlers behind.
    static void* const library = dlopen("libodbc.so.2", RTLD_NOW | RTLD_LOCAL);
    return library == nullptr ? nullptr : dlsym(library, name);
  };
}

}  // namespace vordane::odbc
