// Faults for the benchmarks, and their way into a database as the store makes it.
#pragma once

#include <cstdint>
#include <vector>

#include "bench/store/bare_store.h"
#include "platform/database.h"

namespace vordane::bench {

// Faults of one exchange, four in a minute, as an exchange sends them: oldest first, `first` of them left
// out.
std::vector<Fault> makeFaults(std::int16_t id, std::size_t count, std::size_t first = 0);

// A stored date, so many minutes after the first of them; every month has 28 days.
std::u16string minuteText(std::size_t minute);
std::u16string decimal(std::size_t number);

// An ingestion as the store makes it: a statement built for each fault, a recordset for the additions.
void ingest(database::Database& database, const std::vector<Fault>& faults);

}  // namespace vordane::bench
