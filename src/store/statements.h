// The statements to FAULT.MDB with their values. Their texts are plain concatenation, nothing escaped: a
// value that holds the quoting character breaks its statement; that is accepted. The values are seen and not
// kept.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "store/fault_database.h"
#include "store/sort_orders.h"

namespace vordane::store {

using statement::addFaults;
using statement::allExchanges;
using statement::exchangesNewestFirst;
using statement::faultsNewestFirst;

// The columns by which a fault counts as the same.
struct FaultColumns {
  std::u16string_view fault, alarm, cpu, date, description;
};

database::Statement findExchange(std::u16string_view name);
database::Statement selectExchange(std::u16string_view name, std::int16_t id);
database::Statement findFault(std::int16_t id, const FaultColumns& columns);
database::Statement faultsOfExchange(std::int32_t id, SortKey key);
database::Statement deleteExchange(std::int16_t id);
database::Statement deleteFaults(std::int16_t id);

}  // namespace vordane::store
