// The logs of unattended runs.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "library/layout.h"

namespace vordane::suite {

// The log of that name without its ending ("ENDS31", "*" any) below the suite's folder; nothing when there is
// none.
std::optional<Path> findRunLog(const std::string& name);
// Its lines without their times; throws Failure when there is none.
std::vector<std::string> runLog(const std::string& name);

}  // namespace vordane::suite
