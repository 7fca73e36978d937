// How this system reads an Access file: in a child process on Linux, through DAO on Windows.
#pragma once

#include <memory>

#include "import_suite.h"
#include "platform/database.h"

namespace vordane::tools {

AccessReading accessReading();

// Opens Access files as they are, for statements; on Linux there is no such engine, and opening fails saying
// so.
std::unique_ptr<database::Engine> accessEngine();

}  // namespace vordane::tools
