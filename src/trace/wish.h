// Whether a trace is wanted, and what of it, as the settings say: application VORDANE, section Trace.
#pragma once

#include <optional>
#include <string>

#include "platform/services.h"
#include "trace/trace_files.h"

namespace vordane::trace {

struct Wish {
  std::u16string folder;  // empty: the usual one
  Limits limits;
  bool identifiers = false;  // shown
};

// What the user's settings say, or the workstation's where the user's say nothing about it. Nothing: no
// trace.
std::optional<Wish> wishOf(platform::SettingsStore& user, platform::SettingsStore& workstation);

}  // namespace vordane::trace
