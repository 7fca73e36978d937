#include "platform/described.h"
#include "platform/odbc/dialect.h"

namespace vordane::odbc {
namespace {

using database::ColumnType;

std::optional<Owners> ownersIn(const database::TableDefinition& table, std::u16string_view owner) {
  Owners owners{table.name, {}, {}};
  for (const database::ColumnDefinition& column : table.columns) {
    if (isAutoNumber(column.type) && column.name == owner) owners.key = column.name;
    if (column.type == ColumnType::text && owners.name.empty()) owners.name = column.name;
  }
  return owners.key.empty() || owners.name.empty() ? std::nullopt : std::optional(owners);
}

}  // namespace

std::optional<Owners> ownersOf(const database::Description& description) {
  if (description.events == nullptr) return std::nullopt;
  for (const database::TableDefinition& table : description.tables)
    if (const auto owners = ownersIn(table, description.events->owner)) return owners;
  return std::nullopt;
}

}  // namespace vordane::odbc
