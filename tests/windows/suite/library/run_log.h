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
// Its lines without their times; throws Failure when there is no log, or a line that does not begin with a
// time.
std::vector<std::string> runLog(const std::string& name);
// The same in one text, "TIME" in each time's place.
std::string timeless(const std::string& name);
// The lines' times as seconds of the day.
std::vector<int> runLogSeconds(const std::string& name);

}  // namespace vordane::suite
