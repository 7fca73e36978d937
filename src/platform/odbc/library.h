// The driver manager of the system that this is built for: odbc32 on Windows (platform/windows/services),
// unixODBC elsewhere (library_posix.cpp).
#pragma once

#include "platform/odbc/api.h"

namespace vordane::odbc {

// It is loaded when the first name is looked up, so that a program starts where there is none.
Lookup systemLibrary();

}  // namespace vordane::odbc
