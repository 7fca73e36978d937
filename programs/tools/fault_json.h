// Stored faults and lamps as JSON objects for other systems, the same in a list and in what `follow` tells:
// docs/for-other-systems.md, with a schema beside it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "tools/sqlite/fault_feed.h"

namespace vordane::tools {

// A name for the fault that is the same whenever it is asked for and that no other fault of any file has: its
// number, and a mark of what stands in it. The time has no part in it, since a year is widened later.
std::string identifierOf(const StoredFault& fault);

// {"event":"fault","id":..}, on one line without its end.
std::string jsonOf(const StoredFault& fault);

// The lamps of an exchange as they are told once: as their latest state.
struct LampsTold {
  std::string id;
  std::u16string exchange;
  std::int64_t exchangeNumber = 0;  // the exchange's ID
  std::int64_t sequence = 0;        // how often its lamps have been told, this time included
  Lamps lamps;
  std::u16string received;  // when its last list came
};
std::string jsonOf(const LampsTold& told);

// A text in quotes.
std::string jsonText(std::u16string_view text);

}  // namespace vordane::tools
