// The statements to FAULT.MDB with their values, exactly as built: plain concatenation, nothing escaped. A
// value that holds the quoting character breaks its statement; that is accepted.
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

std::u16string findExchange(std::u16string_view name);
std::u16string selectExchange(std::u16string_view name, std::int16_t id);
std::u16string findFault(std::int16_t id, const FaultColumns& columns);
std::u16string faultsOfExchange(std::int32_t id, SortKey key);
std::u16string deleteExchange(std::int16_t id);
std::u16string deleteFaults(std::int16_t id);

}  // namespace vordane::store
