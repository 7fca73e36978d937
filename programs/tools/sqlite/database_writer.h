// Makes new files of the embedded engine. The add-in itself never creates a database.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "platform/database.h"
#include "platform/description.h"

namespace vordane::tools {

// Writes a new database file in one piece: until `finish` nothing stands under the path, and without it
// nothing ever does.
class DatabaseWriter {
 public:
  // Throws DatabaseError when `path` exists already (unless it may be replaced) or can't be written.
  explicit DatabaseWriter(std::u16string_view path, bool replace = false);
  ~DatabaseWriter();
  DatabaseWriter(const DatabaseWriter&) = delete;
  DatabaseWriter& operator=(const DatabaseWriter&) = delete;

  void createTable(const database::TableDefinition& table);
  void createTables(std::span<const database::TableDefinition> tables);
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
void createDatabase(std::u16string_view path, std::span<const database::TableDefinition> tables,
                    bool replace = false);

}  // namespace vordane::tools
