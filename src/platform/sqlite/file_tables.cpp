#include "platform/sqlite/file_tables.h"

#include <algorithm>
#include <utility>

#include "platform/sqlite/connection.h"
#include "platform/sqlite/errors.h"
#include "text/text.h"
#include "text/utf8.h"

namespace vordane::sqlite {
namespace {

std::int64_t readNumber(Statement& statement) {
  const Running running(statement);
  statement.step();
  return statement.integer(0);
}

}  // namespace

FileTables::FileTables(Connection& connection, database::Descriptions descriptions)
    : connection_(connection),
      descriptions_(descriptions),
      changes_(connection, "PRAGMA data_version"),
      schema_(connection, "PRAGMA schema_version") {
  load();
  declarations_ = readDeclarations();
  seenChanges_ = changesByOthers();
  seenSchema_ = readNumber(schema_);
}

void FileTables::load() {
  const Connection::Maintenance maintenance(connection_);
  tables_.clear();
  Statement names(
      connection_,
      "SELECT name, coalesce(sql LIKE '%AUTOINCREMENT%', 0) AND EXISTS (SELECT 1 FROM sqlite_schema WHERE "
      "name = 'sqlite_sequence') FROM sqlite_schema WHERE type = 'table' AND "
      "substr(name, 1, 7) <> 'sqlite_' AND sql NOT LIKE 'CREATE VIRTUAL%'");
  while (names.step()) {
    auto table = std::make_unique<Table>();
    table->name = names.text(0);
    table->folded = text::toLower(table->name);
    table->quoted = quote(table->name);
    table->counted = names.integer(1) != 0;
    tables_.emplace(table->folded, std::move(table));
  }
  names.reset();
  for (auto& [folded, table] : tables_) readColumns(*table);
}

void FileTables::readColumns(Table& table) {
  Statement columns(connection_, "SELECT name, type, pk FROM pragma_table_info(?)");
  columns.bindText(1, table.name);
  int keys = 0;
  while (columns.step()) {
    Column column{columns.text(0), {}, {}, Kind::other};
    column.folded = text::toLower(column.name);
    column.quoted = quote(column.name);
    const std::u16string declared = columns.text(1);
    column.kind = kindOf(descriptions_, table.name, column.name, declared);
    column.affinity = affinityOf(declared);
    if (columns.integer(2) != 0 && ++keys == 1 && text::equalIgnoringCase(declared, u"integer"))
      table.autoNumber = table.columns.size();
    table.columns.push_back(std::move(column));
  }
  // A key that has an index of its own is not the row's number.
  Statement keyIndex(connection_, "SELECT 1 FROM pragma_index_list(?) WHERE origin = 'pk'");
  keyIndex.bindText(1, table.name);
  if (keys != 1 || keyIndex.step()) table.autoNumber.reset();
}

// How the tables are declared, but for those the engine keeps for itself.
std::string FileTables::readDeclarations() {
  const Connection::Maintenance maintenance(connection_);
  Statement all(connection_,
                "SELECT type || ' ' || name || ' ' || coalesce(sql, '') FROM sqlite_schema WHERE type IN "
                "('table', 'view') AND substr(name, 1, 7) NOT IN ('Vordane', 'sqlite_') ORDER BY 1");
  std::string declarations;
  while (all.step()) declarations += text::toUtf8(all.text(0)) + '\n';
  return declarations;
}

void FileTables::follow() {
  if (!connection_.inTransaction()) look();
}

// Another program may copy, drop and rename a table while it is open here: rows have other keys then.
void FileTables::look() {
  const std::int64_t changes = changesByOthers();
  if (changes == seenChanges_) return;
  const std::int64_t schema = readNumber(schema_);
  if (schema != seenSchema_) {
    std::string declarations = readDeclarations();
    if (declarations != declarations_) {
      former_.push_back(std::exchange(tables_, {}));
      ++timesChanged_;
      load();
      declarations_ = std::move(declarations);
    }
  }
  seenSchema_ = schema;
  seenChanges_ = changes;
}

std::int64_t FileTables::changesByOthers() {
  return readNumber(changes_);
}

Table* FileTables::find(std::u16string_view name) const {
  const auto found = tables_.find(text::toLower(name));
  return found == tables_.end() ? nullptr : found->second.get();
}

Table& FileTables::table(std::u16string_view name) const {
  Table* found = find(name);
  if (!found) fail(number::unknownTable, name);
  return *found;
}

std::vector<const Table*> FileTables::all() const {
  std::vector<const Table*> all;
  for (const auto& [folded, table] : tables_) all.push_back(table.get());
  std::sort(all.begin(), all.end(), [](const Table* a, const Table* b) { return a->folded < b->folded; });
  return all;
}

}  // namespace vordane::sqlite
