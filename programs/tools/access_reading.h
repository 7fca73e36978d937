// How this system reads an Access file: in a child process on Linux, through DAO on Windows.
#pragma once

#include "import_suite.h"

namespace vordane::tools {

AccessReading accessReading();

}  // namespace vordane::tools
