// The stored faults of an embedded FAULT.MDB in the order in which they were stored.
#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vordane::tools {

// A row of the stored faults, its columns as they stand, with the name of its exchange.
struct StoredFault {
  std::int64_t number = 0;
  std::u16string exchange, kind, alarm, time, processor, description;
};

struct Lamps {
  bool major = false, minor = false;

  bool operator==(const Lamps&) const = default;
};

struct StoredExchange {
  std::int64_t id = 0;
  std::u16string name, received;
  Lamps lamps;
};

inline constexpr std::int64_t beforeAllFaults = std::numeric_limits<std::int64_t>::min();

// What the file held at one moment.
struct FeedPiece {
  std::vector<StoredFault> faults;     // without those whose exchange is gone
  std::int64_t reached = 0;            // the number of the last fault looked at
  bool more = false;                   // there may be further ones
  std::int64_t highest = 0;            // the highest number that a fault of the file ever had
  std::optional<StoredFault> witness;  // unless it, or its exchange, is gone
  std::vector<StoredExchange> exchanges;
};

// At most `most` faults with numbers above `behind`, and the fault with the number `witness`. Opens the file,
// reads and lets go of it. Throws DatabaseError, also where another maker's file gives numbers that a later
// fault may get once more.
FeedPiece readFeed(std::u16string_view path, std::int64_t behind, std::int64_t witness, int most);

}  // namespace vordane::tools
