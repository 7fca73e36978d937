// What an installation decides before it changes anything. Pure but for looking at files.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "suite_files.h"

namespace vordane::tools {

enum class Words : std::uint8_t { x64, x86 };
std::string_view nameOf(Words words);  // "x64"
std::optional<Words> wordsNamed(std::string_view name);

// A suite has databases of its own, and nothing of them is overwritten. A set that stands alone is all ours.
enum class Situation : std::uint8_t { suite, alone };
std::string_view nameOf(Situation situation);

// Whether a suite stands below a version directory, whatever an earlier installation there said of itself.
bool suiteStands(const SuiteLayout& layout);

// Access' engine is 32-bit: so is the add-in where any database that it opens is an Access file. Elsewhere it
// follows the system.
Words wordsFor(const SuiteLayout& layout, Words system);

// The version that a person reads, as numbers: "1.0.12". Nothing for anything else.
struct Version {
  int major = 0, minor = 0, revision = 0;
  // The check takes the 0 that the comparison is made of for a pointer. NOLINTNEXTLINE(modernize-use-nullptr)
  auto operator<=>(const Version&) const = default;
};
std::optional<Version> versionOf(std::string_view text);

}  // namespace vordane::tools
