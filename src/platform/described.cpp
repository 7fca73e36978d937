#include "platform/described.h"

#include "text/text.h"

namespace vordane::database {

const TableDefinition* findTable(Descriptions descriptions, std::u16string_view table) {
  for (const Description& description : descriptions)
    for (const TableDefinition& each : description.tables)
      if (text::equalIgnoringCase(each.name, table)) return &each;
  return nullptr;
}

const ColumnDefinition* findColumn(Descriptions descriptions, std::u16string_view table,
                                   std::u16string_view column) {
  const TableDefinition* found = findTable(descriptions, table);
  if (found == nullptr) return nullptr;
  for (const ColumnDefinition& each : found->columns)
    if (text::equalIgnoringCase(each.name, column)) return &each;
  return nullptr;
}

const Description* findEvents(Descriptions descriptions) {
  for (const Description& description : descriptions)
    if (description.events != nullptr) return &description;
  return nullptr;
}

}  // namespace vordane::database
