// A subcommand of vordane-tools. Command-line tools speak English of their own.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace vordane::tools {

using Arguments = std::vector<std::string>;  // UTF-8, behind the subcommand's name

struct Command {
  std::string_view name;
  std::string_view usage;                  // one line for each form, "vordane-tools" left out
  std::string_view help;                   // what it does and what its options mean
  int (*run)(const Arguments& arguments);  // the exit code: 0 done, 1 failed
};

// Arguments that make no sense. The text says which; the usage is shown behind it, and the exit code is 2.
class Misuse : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace vordane::tools
