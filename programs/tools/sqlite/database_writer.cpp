#include "tools/sqlite/database_writer.h"

#include <filesystem>
#include <unordered_map>

#include "platform/file_moves.h"
#include "platform/sqlite/connection.h"
#include "platform/sqlite/errors.h"
#include "startup/databases.h"
#include "text/text.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

using database::ColumnDefinition;
using database::TableDefinition;
using sqlite::Connection;
using sqlite::fail;
using sqlite::failWith;
using sqlite::quote;
using sqlite::Statement;
namespace number = sqlite::number;

// Texts must be declared so: any other word makes a number of '007'. Yes/No columns hold 0 and -1.
constexpr std::string_view declarationOf(database::ColumnType type) {
  using enum database::ColumnType;
  switch (type) {
    case text:
      return "TEXT";
    case integer:
    case shortInteger:
      return "INTEGER";
    case number:
      return "REAL";
    case yesNo:
      return "BOOLEAN NOT NULL DEFAULT 0";
    case dateTime:
      return "DATETIME";
    case autoNumber:
    case shortAutoNumber:
      return "INTEGER PRIMARY KEY AUTOINCREMENT";
  }
  return "";
}

// While it is written the file has a name of its own beside the final one.
std::filesystem::path temporaryName(const std::filesystem::path& path) {
  std::filesystem::path name = path;
  name += u".new";
  return name;
}

}  // namespace

struct DatabaseWriter::State {
  std::filesystem::path path, temporary;
  std::unique_ptr<Connection> connection;
  std::unordered_map<std::u16string, Statement> inserts;
};

DatabaseWriter::DatabaseWriter(std::u16string_view path, bool replace) : state_(std::make_unique<State>()) {
  state_->path = path;
  state_->temporary = temporaryName(state_->path);
  std::error_code failure;
  if (!replace && std::filesystem::exists(state_->path, failure)) fail(number::alreadyExists, path);
  std::filesystem::remove(state_->temporary, failure);
  sqlite3* raw = nullptr;
  const int result =
      sqlite3_open_v2(text::toUtf8(state_->temporary.u16string()).c_str(), &raw,
                      SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_EXRESCODE, nullptr);
  sqlite::Handle handle(raw);
  if (result != SQLITE_OK) failWith(result);
  // Texts keep every UTF-16 unit as it stands. Nothing is saved in between, so no journal is of use.
  constexpr const char* beginning = "PRAGMA encoding = 'UTF-16le'; PRAGMA journal_mode = MEMORY; BEGIN";
  if (sqlite3_exec(handle.get(), beginning, nullptr, nullptr, nullptr) != SQLITE_OK)
    failWith(sqlite3_extended_errcode(handle.get()));
  state_->connection =
      std::make_unique<Connection>(std::move(handle), false, sqlite::Options{}, startup::databases);
}

DatabaseWriter::~DatabaseWriter() {
  if (!state_->connection) return;
  state_->inserts.clear();
  state_->connection.reset();
  std::error_code failure;
  std::filesystem::remove(state_->temporary, failure);
}

void DatabaseWriter::createTable(const TableDefinition& table) {
  std::string columns;
  for (const ColumnDefinition& column : table.columns) {
    if (!columns.empty()) columns += ", ";
    columns += quote(column.name) + " " + std::string(declarationOf(column.type));
  }
  state_->connection->runMaintenance(("CREATE TABLE " + quote(table.name) + " (" + columns + ")").c_str());
  state_->connection->tables().load();
}

void DatabaseWriter::createTables(std::span<const TableDefinition> tables) {
  for (const TableDefinition& table : tables) createTable(table);
}

void DatabaseWriter::insert(std::u16string_view name, std::span<const database::Value> row) {
  Connection& connection = *state_->connection;
  const sqlite::Table& table = connection.tables().table(name);
  if (row.size() != table.columns.size()) fail(number::columnCount);
  Statement& insert = state_->inserts[table.folded];
  if (!insert) {
    std::string marks;
    for (std::size_t i = 0; i < row.size(); ++i) marks += i == 0 ? "?" : ", ?";
    insert = Statement(connection, "INSERT INTO " + table.quoted + " VALUES (" + marks + ")");
  }
  std::vector<database::Value> values;
  for (std::size_t i = 0; i < row.size(); ++i) values.push_back(sqlite::fit(table.columns[i], row[i], false));
  for (std::size_t i = 0; i < row.size(); ++i) insert.bind(static_cast<int>(i) + 1, values[i]);
  insert.run();
}

void DatabaseWriter::setLastAutoNumber(std::u16string_view name, std::int64_t last) {
  Connection& connection = *state_->connection;
  connection.keepNumber(connection.tables().table(name), last);
}

void DatabaseWriter::finish() {
  state_->inserts.clear();
  state_->connection->commit();
  state_->connection.reset();
  if (!platform::moveFile(state_->temporary, state_->path)) return;
  std::error_code ignored;
  std::filesystem::remove(state_->temporary, ignored);
  fail(number::noPermission, state_->path.u16string());
}

void createDatabase(std::u16string_view path, std::span<const TableDefinition> tables, bool replace) {
  DatabaseWriter writer(path, replace);
  writer.createTables(tables);
  writer.finish();
}

}  // namespace vordane::tools
