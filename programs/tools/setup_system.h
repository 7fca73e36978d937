// The workstation as an installation changes it; one implementation for each system.
#pragma once

#include <memory>

#include "setup.h"

namespace vordane::tools {

// Where there is no registry, nothing is registered or set, and no file counts as in use.
std::unique_ptr<SetupSystem> setupSystem();

}  // namespace vordane::tools
