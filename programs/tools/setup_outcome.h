// How an installation or a removal ends, as its exit code says it. The installer has a sentence for each of
// them in every language; the text of a failure is English and names the place.
#pragma once

#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>

namespace vordane::tools {

enum class Outcome : std::uint8_t {
  done = 0,
  failed = 1,          // something that has no code of its own
  inUse = 10,          // a program or file of the suite is in use, and the wait is over
  noRights = 11,       // the folder can't be written
  diskFull = 12,       //
  newer = 13,          // what stands there is newer
  badPlace = 14,       // no folder of a suite can be made there
  notRegistered = 15,  // Windows did not take the registration
  unreadable = 16,     // what is installed can't be read, so what must be kept of it can't be kept
  nothingThere = 17,   // there is nothing to remove
  underWay = 18,       // another installation runs
};

// The place where an installation stops. By then everything stands as it stood before.
class SetupFailure : public std::runtime_error {
 public:
  SetupFailure(Outcome outcome, const std::string& text) : std::runtime_error(text), outcome_(outcome) {}
  Outcome outcome() const { return outcome_; }

 private:
  Outcome outcome_;
};

// A path as its failure and the log name it.
std::string pathText(const std::filesystem::path& path);

// The failure of a step at `path`, by what the system says of it.
[[noreturn]] void failAt(const std::filesystem::path& path, const std::error_code& failure);
// The same of a step that named its path itself.
[[noreturn]] void failAt(const std::filesystem::filesystem_error& failure);

}  // namespace vordane::tools
