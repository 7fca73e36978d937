// What makes a suite whose files are whole fail all the same: full logs and disks, a clock that is wrong,
// rights, and what an ended program has left behind.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "doctor_checks.h"

namespace vordane::tools {

// The workstation around the suite.
struct Surroundings {
  std::u16string latest;  // "YYYY-MM-DD HH:MM:SS": what is later lies in the future, clock changes aside
  std::function<std::optional<std::uintmax_t>(const std::filesystem::path& folder)> roomAt;  // bytes
  // Whether a program has opened the file; none where nobody can tell.
  std::function<bool(const std::filesystem::path& file)> inUse = {};
};

// Changes nothing. What examineFiles has said already is not said again.
std::vector<Finding> examineSurroundings(const SuiteLayout& layout, database::Engine& engine,
                                         const Surroundings& around);

// Locks of the Access engine beside the suite's databases that no program holds.
std::vector<std::filesystem::path> staleLocks(const SuiteLayout& layout, const Surroundings& around);

// A local time a little ahead of now, as `latest` wants it.
std::u16string latestNow();

}  // namespace vordane::tools
