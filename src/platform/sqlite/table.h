// A table of the file, as its columns are declared.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/database.h"
#include "platform/description.h"
#include "platform/sqlite/statement.h"

namespace vordane::sqlite {

enum class Kind { text, integer, integer16, yesNo, date, other };
// What SQLite makes of a value that a column of this declaration is given or compared with.
enum class Affinity { text, integer, other };

struct Column {
  std::u16string name;    // as declared
  std::u16string folded;  // in lower case
  std::string quoted;     // UTF-8, for SQL text
  Kind kind = Kind::other;
  Affinity affinity = Affinity::other;
};

// The columns of events, where a table is declared as such tables are in files of our own: what else each of
// them is for says `database::EventTable`. The key is the auto-number.
struct EventColumns {
  static constexpr std::size_t moment = 3, description = 4;  // behind those of the kind
  std::size_t owner = 0;
  std::array<std::size_t, 5> texts{};
};

struct Table {
  std::u16string name;
  std::u16string folded;
  std::string quoted;
  std::vector<Column> columns;
  std::optional<std::size_t> autoNumber;  // the column that is the row's key
  bool counted = false;                   // its numbers are never used again
  // INSERT and UPDATE statements, by the columns they set (a bit for each).
  std::unordered_map<std::uint64_t, StatementPool> inserts, updates;
  std::optional<EventColumns> events;

  // Throws DatabaseError with `number` when there is none.
  std::size_t column(std::u16string_view columnName, int errorNumber) const;
  std::optional<std::size_t> find(std::u16string_view columnName) const;
};

// As it is described, else as it is declared: plain SQLite may not show a documented type.
Kind kindOf(database::Descriptions descriptions, std::u16string_view table, std::u16string_view column,
            std::u16string_view declared);
// The table of events that one of them describes, if any.
const database::EventTable* eventsOf(database::Descriptions descriptions);
Affinity affinityOf(std::u16string_view declared);
std::string quote(std::u16string_view name);

// What `description` says of the table's columns; nothing where they are declared otherwise, since their
// values compare otherwise then.
std::optional<EventColumns> findEvents(const Table& table, const database::EventTable& description);
// `sql` with the quoted names of the table and its columns for {table}, {key}, {owner}, {kind0} to {kind2},
// {moment} and {description}.
std::string eventSql(const Table& table, std::string_view sql);

// `value` as the column keeps it. Throws DatabaseError (badValue).
database::Value fit(const Column& column, database::Value value, bool utf8File);

// The highest number a column's auto-number may reach.
std::int64_t limitOf(const Column& column);

}  // namespace vordane::sqlite
