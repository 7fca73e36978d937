// The options by which a person says which of the stored faults are meant.
#pragma once

#include <optional>
#include <string>

#include "fault_selection.h"
#include "options/options.h"

namespace vordane::tools {

// As they were written, in UTF-8.
struct FaultSelectionWords {
  std::optional<std::string> exchange, since, until;
  options::Words classes, kinds;

  void declare(options::Command& command);
  FaultSelection selection() const;
};

}  // namespace vordane::tools
