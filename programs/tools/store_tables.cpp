#include "store_tables.h"

#include "platform/described.h"
#include "store/statements.h"

namespace vordane::tools {
namespace {

access::ColumnType typeOf(database::ColumnType type) {
  using database::ColumnType;
  switch (type) {
    case ColumnType::text:
      return access::ColumnType::text;
    case ColumnType::integer:
    case ColumnType::autoNumber:
      return access::ColumnType::longInteger;
    case ColumnType::shortInteger:
    case ColumnType::shortAutoNumber:
      return access::ColumnType::integer;
    case ColumnType::number:
      return access::ColumnType::doubleFloat;
    case ColumnType::yesNo:
      return access::ColumnType::boolean;
    case ColumnType::dateTime:
      return access::ColumnType::dateTime;
  }
  return access::ColumnType::text;
}

void readTable(database::Database& store, const database::TableDefinition& definition,
               std::u16string_view statement, access::Visitor& visitor) {
  access::Table table{std::u16string(definition.name), {}};
  for (const database::ColumnDefinition& column : definition.columns)
    table.columns.push_back(
        {std::u16string(column.name), typeOf(column.type), 0, database::isAutoNumber(column.type)});
  visitor.beginTable(table);
  std::vector<access::Value> values;
  for (const auto rows = store.openRecordset(statement); !rows->atEnd(); rows->moveNext()) {
    values.clear();
    for (const database::ColumnDefinition& column : definition.columns)
      values.push_back(rows->get(column.name));
    visitor.row(values);
  }
  visitor.endTable();
}

}  // namespace

void readStoreTables(database::Database& store, access::Visitor& visitor) {
  readTable(store, store::faultTables[1], store::addFaults, visitor);
  readTable(store, store::faultTables[0], store::allExchanges, visitor);
}

}  // namespace vordane::tools
