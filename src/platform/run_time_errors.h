// Run-time errors: the numbers under which hosts know what went wrong in a call.
#pragma once

#include <cstdint>
#include <optional>
#include <utility>

#include "platform/automation.h"

namespace vordane::automation {

// Of a call that automation itself has turned down, before any member ran.
inline constexpr std::pair<std::int32_t, int> refusedCalls[] = {
    {error::unknownName, 438},       {error::memberNotFound, 438},
    {error::typeMismatch, 13},       {error::overflow, error::overflowNumber},
    {error::badParameterCount, 450}, {error::parameterNotOptional, 449},
};

// The number for a code of automation itself; nothing for any other.
constexpr std::optional<int> refusedCallNumber(std::int32_t code) {
  for (const auto& [refused, number] : refusedCalls)
    if (refused == code) return number;
  return std::nullopt;
}

// The number that a code carries; nothing unless it is a run-time error's.
constexpr std::optional<int> runTimeNumber(std::int32_t code) {
  const auto number = static_cast<int>(static_cast<std::uint32_t>(code) & 0xFFFFU);
  return error::runTime(number) == code ? std::optional(number) : std::nullopt;
}

}  // namespace vordane::automation
