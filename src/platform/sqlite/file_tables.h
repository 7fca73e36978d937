// The tables of an open file as they are declared, followed while other programs may declare them anew.
// Failures are DatabaseErrors; one thread, the connection's.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/description.h"
#include "platform/sqlite/statement.h"
#include "platform/sqlite/table.h"

namespace vordane::sqlite {

class FileTables {
 public:
  // Reads them. The connection must live longer.
  FileTables(Connection& connection, database::Descriptions descriptions);
  FileTables(const FileTables&) = delete;
  FileTables& operator=(const FileTables&) = delete;

  // Case does not matter; `table` throws (unknownTable), `find` gives null.
  Table& table(std::u16string_view name) const;
  Table* find(std::u16string_view name) const;
  std::vector<const Table*> all() const;  // by name

  // Reads them anew, after this program has made some.
  void load();

  // Looks what others have done since, and reads the tables anew where these have changed. Inside a
  // transaction nobody else changes anything, so `follow` does nothing there.
  void follow();
  void look();
  // How often others have changed the tables themselves, as far as it was noticed. Tables read before stay
  // valid as objects.
  std::uint64_t timesChanged() const { return timesChanged_; }

  // Differs from what it was when another connection has changed the file since; and what it was at the last
  // look.
  std::int64_t changesByOthers();
  std::int64_t seenChanges() const { return seenChanges_; }

 private:
  using Tables = std::unordered_map<std::u16string, std::unique_ptr<Table>>;  // by folded name

  void readColumns(Table& table);
  std::string readDeclarations();

  Connection& connection_;
  database::Descriptions descriptions_;
  Tables tables_;
  std::vector<Tables> former_;  // rows and statements of which may still be held
  std::string declarations_;    // of `tables_`
  std::uint64_t timesChanged_ = 0;
  Statement changes_, schema_;
  std::int64_t seenChanges_ = 0, seenSchema_ = 0;
};

}  // namespace vordane::sqlite
