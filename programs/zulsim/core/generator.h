// Fault lists made from a seed, in the form an exchange sends them: four entries for each fault.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "zulsim/core/scenario.h"

namespace vordane::zulsim {

// A number generator that gives the same row everywhere; the standard distributions do not promise that.
class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed) {}
  std::uint64_t next();
  // Between both limits, which are included.
  std::int64_t between(std::int64_t low, std::int64_t high);

 private:
  std::uint64_t state_;
};

// Appends the faults of `generation`, seeded with its seed plus `seedOffset`.
void generate(const Generation& generation, std::uint64_t seedOffset, std::vector<Entry>& entries);

// The kinds that a list of every kind holds, one with no meaning of its own among them.
std::vector<std::uint8_t> knownKinds();

// "YY/MM/DD" with an optional " HH:MM" as minutes since 1970; years below 80 belong to 2000.
std::optional<std::int64_t> parseMinute(std::u16string_view text);
std::u16string formatMinute(std::int64_t minute);

}  // namespace vordane::zulsim
