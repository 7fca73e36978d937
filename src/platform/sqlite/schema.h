// The documented tables of the suite's databases, and the making of new files that hold them. Used by the
// tools only: the add-in itself never creates a database.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "platform/database.h"

namespace vordane::sqlite {

enum class ColumnType { text, integer, number, yesNo, dateTime, autoNumber };

struct ColumnDefinition {
  std::u16string_view name;
  ColumnType type;
};

struct TableDefinition {
  std::u16string_view name;
  std::span<const ColumnDefinition> columns;
};

namespace schema {
std::span<const TableDefinition> faultDatabase();   // FAULT.MDB: PBXList, FaultDisplay
std::span<const TableDefinition> ownLanguage();     // VORDANE.LNG: tForms ... tMsgBox, tPicture
std::span<const TableDefinition> commonLanguage();  // Common.LNG: tMsgBox, PictureFileName
std::span<const TableDefinition> registration();    // Register.mdb: Registry
std::span<const TableDefinition> schedule();        // Schedule.mdb: Options
}  // namespace schema

// Writes a new database file in one piece: until `finish` nothing stands under the path, and without it
// nothing ever does.
class DatabaseWriter {
 public:
  // Throws DatabaseError when `path` exists already (unless it may be replaced) or can't be written.
  explicit DatabaseWriter(std::u16string_view path, bool replace = false);
  ~DatabaseWriter();
  DatabaseWriter(const DatabaseWriter&) = delete;
  DatabaseWriter& operator=(const DatabaseWriter&) = delete;

  void createTable(const TableDefinition& table);
  void createTables(std::span<const TableDefinition> tables);
  // One value for each column, in the table's order. Null gives an auto-number its next value; a date
  // column takes "YYYY-MM-DD HH:MM:SS".
  void insert(std::u16string_view table, std::span<const database::Value> row);
  // Carries an auto-number's counter over: the next row of `table` gets at least `last` + 1.
  void setLastAutoNumber(std::u16string_view table, std::int64_t last);
  void finish();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

// A new file with these tables and no row.
void createDatabase(std::u16string_view path, std::span<const TableDefinition> tables, bool replace = false);

}  // namespace vordane::sqlite
