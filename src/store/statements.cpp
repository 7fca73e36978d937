#include "store/statements.h"

#include "text/numbers.h"

namespace vordane::store {

std::u16string findExchange(std::u16string_view name) {
  return statement::findExchange.with({name});
}

std::u16string selectExchange(std::u16string_view name, std::int16_t id) {
  return statement::selectExchange.with({name, text::decimal(id)});
}

// Built once for each fault received.
std::u16string findFault(std::int16_t id, const FaultColumns& columns) {
  return statement::findFault.with(
      {text::decimal(id), columns.fault, columns.cpu, columns.alarm, columns.date, columns.description});
}

std::u16string faultsOfExchange(std::int32_t id, SortKey key) {
  const database::StatementPattern faults(statement::faultsOfExchange,
                                          sortClauses.at(static_cast<std::size_t>(key)));
  return faults.with({text::decimal(id)});
}

std::u16string deleteExchange(std::int16_t id) {
  return statement::deleteExchange.with({text::decimal(id)});
}

std::u16string deleteFaults(std::int16_t id) {
  return statement::deleteFaults.with({text::decimal(id)});
}

}  // namespace vordane::store
