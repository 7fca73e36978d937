// A subcommand of vordane-tools. Command-line tools speak English of their own.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vordane::tools {

using Arguments = std::vector<std::string>;  // UTF-8, behind the subcommand's name

struct Command {
  std::string_view name;
  std::string_view usage;                  // one line
  int (*run)(const Arguments& arguments);  // the exit code: 0 done, 1 failed, 2 misused
};

}  // namespace vordane::tools
