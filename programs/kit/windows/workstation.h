// What the workstation is, and whether the kit may run on it.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "kit/windows/processes.h"

namespace vordane::kit {

// For the report: the system, its word size, the account's rights, screen, languages.
std::vector<std::pair<std::string, std::string>> describeSystem();

bool isAdministrator();
std::string localTime();

// Why the kit can't promise to leave everything as it is; empty when it can.
std::string reasonToRefuse(const Folders& folders);

}  // namespace vordane::kit
