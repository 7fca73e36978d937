#include "doctor_checks.h"

namespace vordane::tools {

std::optional<Workstation> thisWorkstation() {
  return std::nullopt;
}

}  // namespace vordane::tools
