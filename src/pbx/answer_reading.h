// Reading an answered record, which lives in the exchange server's process and may lack anything.
#pragma once

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

// Nothing for a value that can't be read or converted; ServerGone is thrown through.
std::optional<std::u16string> readText(automation::Object& record, std::u16string_view member);
std::optional<std::int32_t> readLong(automation::Object& record, std::u16string_view member);
// "" for an entry that can't be read.
std::u16string readEntry(automation::Object& record, std::u16string_view member, std::int32_t index);

// Appends the first `count` entries to `copy` while `wanted` says so: four calls for each. A value that can't
// be read is empty at its place, so that groups of four stay together.
void copyEntries(automation::Object& record, std::int32_t count, cListRequest& copy,
                 const std::function<bool()>& wanted);

}  // namespace vordane::pbx
