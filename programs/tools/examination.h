// All that the doctor looks at on this machine.
#pragma once

#include <vector>

#include "doctor_checks.h"
#include "doctor_surroundings.h"
#include "setup_system.h"

namespace vordane::tools {

// `system` must live as long.
Surroundings surroundingsHere(SetupSystem& system);

// Files, the store of a data source, the surroundings, and on Windows settings and registration. Changes
// nothing.
std::vector<Finding> examineSuite(const SuiteLayout& layout, database::Engine& engine,
                                  const Surroundings& around);

}  // namespace vordane::tools
