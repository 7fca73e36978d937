#include "store/statements.h"

namespace vordane::store {

using database::Statement;

Statement findExchange(std::u16string_view name) {
  return statement::findExchange.with({name});
}

Statement selectExchange(std::u16string_view name, std::int16_t id) {
  return statement::selectExchange.with({name, id});
}

// Made once for each fault received.
Statement findFault(std::int16_t id, const FaultColumns& columns) {
  return statement::findFault.with(
      {id, columns.fault, columns.cpu, columns.alarm, columns.date, columns.description});
}

Statement faultsOfExchange(std::int32_t id, SortKey key) {
  return statement::orderedFaults.at(static_cast<std::size_t>(key)).with({id});
}

Statement deleteExchange(std::int16_t id) {
  return statement::deleteExchange.with({id});
}

Statement deleteFaults(std::int16_t id) {
  return statement::deleteFaults.with({id});
}

}  // namespace vordane::store
