// Reading an answered record, which lives in the exchange server's process and may lack anything.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "pbx/cListRequest.h"
#include "platform/automation.h"

namespace vordane::pbx {

// The process that holds the record has gone: nothing more can be read from it.
class ServerGone {};

bool isServerGone(std::int32_t code);

// No exchange comes near these. They keep a server that runs wild from taking the workstation along.
inline constexpr std::size_t longestText = 65'536;                // characters; what is longer is cut
inline constexpr std::size_t largestAnswer = 256 * 1024 * 1024U;  // bytes that the copied entries take

// Nothing for a value that can't be read or converted. ServerGone and bad_alloc are thrown through, the
// latter also for a call that failed for want of memory. Texts come cut.
std::optional<std::u16string> readText(automation::Object& record, std::u16string_view member);
std::optional<std::int32_t> readLong(automation::Object& record, std::u16string_view member);
// What became of a copy.
struct Copied {
  bool tooLarge = false;  // the copy was given up and emptied
  bool cut = false;       // a text was longer than is kept
};

// Appends the first `count` entries to `copy` while `wanted` says so: four calls for each. A value that can't
// be read is empty at its place, so that groups of four stay together.
Copied copyEntries(automation::Object& record, std::int32_t count, cListRequest& copy,
                   const std::function<bool()>& wanted);

}  // namespace vordane::pbx
