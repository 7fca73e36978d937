// Whether the stored faults are told in the words of the installed language.
#pragma once

#include <vector>

#include "doctor_checks.h"

namespace vordane::tools {

// Looks at the newest faults, as far as another language's file beside VORDANE.LNG tells which language they
// are in. What can't be read is left to the other examinations.
void examineStoringLanguage(const SuiteLayout& layout, database::Engine& engine, database::Database& faults,
                            std::vector<Finding>& findings);

}  // namespace vordane::tools
