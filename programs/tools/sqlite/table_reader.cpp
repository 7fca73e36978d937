#include "tools/sqlite/table_reader.h"

#include "platform/sqlite/connection.h"
#include "startup/databases.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

using sqlite::Column;
using sqlite::Connection;
using sqlite::Kind;
using sqlite::Statement;
using sqlite::Table;

constexpr std::u16string_view ownPrefix = u"vordane";  // of the index the engine keeps beside the faults

access::ColumnType typeOf(const Column& column) {
  switch (column.kind) {
    case Kind::text:
      return access::ColumnType::memo;
    case Kind::integer:
      return access::ColumnType::longInteger;
    case Kind::integer16:
      return access::ColumnType::integer;
    case Kind::yesNo:
      return access::ColumnType::boolean;
    case Kind::date:
      return access::ColumnType::dateTime;
    case Kind::other:
      break;
  }
  return access::ColumnType::doubleFloat;
}

std::int64_t singleNumber(Connection& connection, const std::string& sql, std::u16string_view name = {}) {
  Statement statement(connection, sql);
  if (!name.empty()) statement.bindText(1, name);
  return statement.step() ? statement.integer(0) : 0;
}

access::Table describe(Connection& connection, const Table& table) {
  access::Table description;
  description.name = table.name;
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    const Column& column = table.columns[i];
    const bool counter = table.autoNumber == i && table.counted;
    // Access counts with 32 bits, whatever range this system keeps to.
    const auto type = counter ? access::ColumnType::longInteger : typeOf(column);
    description.columns.push_back({column.name, type, 0, counter});
  }
  description.rowCount =
      static_cast<std::uint32_t>(singleNumber(connection, "SELECT COUNT(*) FROM " + table.quoted));
  if (table.counted)
    description.lastAutoNumber = static_cast<std::int32_t>(
        singleNumber(connection, "SELECT seq FROM sqlite_sequence WHERE name = ?", table.name));
  return description;
}

std::vector<const Table*> ownTables(const Connection& connection) {
  std::vector<const Table*> tables = connection.tables().all();
  std::erase_if(tables, [](const Table* table) { return table->folded.starts_with(ownPrefix); });
  return tables;
}

void readRows(Connection& connection, const Table& table, access::Visitor& visitor) {
  Statement rows(connection, "SELECT * FROM " + table.quoted + " ORDER BY rowid");
  std::vector<database::Value> values(table.columns.size());
  while (rows.step()) {
    for (std::size_t i = 0; i < values.size(); ++i)
      values[i] = rows.value(static_cast<int>(i), table.columns[i].kind == Kind::yesNo);
    visitor.row(values);
  }
}

}  // namespace

std::vector<access::Table> describeTables(std::u16string_view path) {
  Connection connection(sqlite::openToRead(path, {}), true, {}, startup::databases);
  std::vector<access::Table> descriptions;
  for (const Table* table : ownTables(connection)) descriptions.push_back(describe(connection, *table));
  return descriptions;
}

void readTables(std::u16string_view path, access::Visitor& visitor) {
  Connection connection(sqlite::openToRead(path, {}), true, {}, startup::databases);
  for (const Table* table : ownTables(connection)) {
    visitor.beginTable(describe(connection, *table));
    readRows(connection, *table, visitor);
    visitor.endTable();
  }
}

}  // namespace vordane::tools
