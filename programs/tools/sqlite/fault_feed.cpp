#include "tools/sqlite/fault_feed.h"

#include "platform/sqlite/connection.h"
#include "platform/sqlite/errors.h"
#include "platform/stored_values.h"
#include "startup/databases.h"

namespace vordane::tools {
namespace {

using sqlite::Connection;
using sqlite::Statement;
using sqlite::Table;

std::string column(const Table& table, std::u16string_view name) {
  return table.columns[table.column(name, database::number::unknownName)].quoted;
}

// Column 1 is the exchange's name, Null where it is gone.
class Faults {
 public:
  explicit Faults(Connection& connection)
      : connection_(connection), table_(connection.tables().table(u"FaultDisplay")) {
    const bool numbered = table_.autoNumber && table_.counted &&
                          table_.columns[*table_.autoNumber].quoted == column(table_, u"Count");
    if (!numbered)
      throw database::DatabaseError(
          database::number::invalidOperation,
          u"Its faults are not numbered as the fault display does it: a number may be used again.");
    const Table& exchanges = connection.tables().table(u"PBXList");
    sql_ = "SELECT " + column(table_, u"Count") + ", (SELECT " + column(exchanges, u"PBXName") + " FROM " +
           exchanges.quoted + " AS exchange WHERE exchange." + column(exchanges, u"ID") + " = fault." +
           column(table_, u"ID") + " LIMIT 1)";
    for (const auto* name : {u"Fault", u"Alarm", u"Date", u"CPU", u"Description"})
      sql_ += ", " + column(table_, name);
    sql_ += " FROM " + table_.quoted + " AS fault WHERE " + column(table_, u"Count");
  }

  void behind(std::int64_t number, int most, FeedPiece& piece) {
    Statement rows(connection_, sql_ + " > ?1 ORDER BY " + column(table_, u"Count") + " LIMIT ?2");
    rows.bind(1, number);
    rows.bind(2, std::int64_t{most});
    piece.reached = number;
    int read = 0;
    for (; rows.step(); ++read) {
      piece.reached = rows.integer(0);
      if (!rows.isNull(1)) piece.faults.push_back(fault(rows));
    }
    piece.more = read == most;
  }

  std::optional<StoredFault> numbered(std::int64_t number) {
    Statement row(connection_, sql_ + " = ?1");
    row.bind(1, number);
    if (!row.step() || row.isNull(1)) return std::nullopt;
    return fault(row);
  }

  std::int64_t highest() {
    Statement row(connection_, "SELECT seq FROM sqlite_sequence WHERE name = ?");
    row.bindText(1, table_.name);
    return row.step() ? row.integer(0) : 0;
  }

 private:
  static StoredFault fault(const Statement& row) {
    const auto text = [&](int at) { return database::textOf(row.limitedValue(at, false)); };
    return {row.integer(0), text(1), text(2), text(3), text(4), text(5), text(6)};
  }

  Connection& connection_;
  const Table& table_;
  std::string sql_;
};

std::vector<StoredExchange> exchangesOf(Connection& connection) {
  const Table& table = connection.tables().table(u"PBXList");
  std::string sql;
  for (const auto* name : {u"ID", u"PBXName", u"TimeStamp", u"MJ", u"MN"})
    sql += (sql.empty() ? "SELECT " : ", ") + column(table, name);
  Statement rows(connection, sql + " FROM " + table.quoted + " ORDER BY " + column(table, u"ID"));
  const auto text = [&](int at) { return database::textOf(rows.limitedValue(at, false)); };
  const auto flag = [&](int at) { return database::flagOf(rows.value(at, true)); };
  std::vector<StoredExchange> exchanges;
  while (rows.step()) exchanges.push_back({rows.integer(0), text(1), text(2), {flag(3), flag(4)}});
  return exchanges;
}

}  // namespace

FeedPiece readFeed(std::u16string_view path, std::int64_t behind, std::int64_t witness, int most) {
  Connection connection(sqlite::openToRead(path, {}), true, {}, startup::databases);
  const Connection::Maintenance ownStatements(connection);
  connection.run("BEGIN");  // one moment for all that is read
  Faults faults(connection);
  FeedPiece piece;
  faults.behind(behind, most, piece);
  piece.witness = faults.numbered(witness);
  piece.highest = faults.highest();
  piece.exchanges = exchangesOf(connection);
  connection.run("COMMIT");
  return piece;
}

}  // namespace vordane::tools
