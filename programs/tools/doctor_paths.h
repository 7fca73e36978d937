// Whether the program finds the suite's files where it looks for them.
#pragma once

#include <vector>

#include "doctor_checks.h"

namespace vordane::tools {

// The paths are those that the program in `programDirectory` (no trailing separator) makes of the settings.
// Names the files that the suite has and that don't exist under the program's path: a file system that tells
// capitals from small letters keeps them from it. Without `workstation.exists` nothing is named.
std::vector<Finding> examinePaths(const SuiteLayout& layout, std::u16string_view programDirectory,
                                  const Workstation& workstation);

}  // namespace vordane::tools
