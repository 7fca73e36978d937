// Looking things up in the descriptions that an engine is made with. The case of names does not matter; null
// is what is not described.
#pragma once

#include <string_view>

#include "platform/description.h"

namespace vordane::database {

constexpr bool isAutoNumber(ColumnType type) {
  return type == ColumnType::autoNumber || type == ColumnType::shortAutoNumber;
}

const TableDefinition* findTable(Descriptions descriptions, std::u16string_view table);
const ColumnDefinition* findColumn(Descriptions descriptions, std::u16string_view table,
                                   std::u16string_view column);
// The description that has a table of events.
const Description* findEvents(Descriptions descriptions);

}  // namespace vordane::database
