// Scenario files as people write them. docs/scenarios.md describes every line.
#pragma once

#include <string_view>
#include <vector>

#include "zulsim/core/line_reader.h"
#include "zulsim/core/scenario.h"

namespace vordane::zulsim {

struct ParsedScenario {
  Scenario scenario;                     // what could be read
  std::vector<lines::Problem> problems;  // empty: the whole file was
};

// `utf8` may begin with a byte order mark and end its lines in LF or CRLF.
ParsedScenario parseScenario(std::string_view utf8);

}  // namespace vordane::zulsim
