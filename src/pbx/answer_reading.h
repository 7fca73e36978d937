// Reading an answered record, which lives in the exchange server's process and may lack anything.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

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

}  // namespace vordane::pbx
