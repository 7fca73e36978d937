// The order of an owner's events by description. The texts of a million events are too long to be held at
// once: SQLite's own sorter puts them in order, in half of the engine's cache and a file of its own, by the
// texts' sort keys, which are half as long as the texts and are compared without rules.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/sqlite/connection.h"
#include "platform/sqlite/time_order.h"

namespace vordane::sqlite {

class DescriptionOrder {
 public:
  // Once for a connection, which it belongs to.
  explicit DescriptionOrder(Connection& connection);
  DescriptionOrder(const DescriptionOrder&) = delete;
  DescriptionOrder& operator=(const DescriptionOrder&) = delete;

  // The keys of the owner's rows by description, these texts of the kind, moment, key; null when one of them
  // is not short. The index must be good. Throws DatabaseError.
  SharedKeys of(const Table& table, std::int64_t owner, const std::vector<std::size_t>& kinds);

 private:
  static void keyFunction(sqlite3_context* context, int, sqlite3_value** values) noexcept;
  void step();

  Connection& connection_;
  std::size_t rows_ = 0, steps_ = 0;  // each row is read and handed over: two steps
  std::string key_;                   // keeps its memory between rows
  std::u16string copy_;
};

// Whether a row's key fits into four bytes. Access gives numbers of any size and sign where its auto-number
// is set to random.
bool hasShortKey(std::int64_t key);

}  // namespace vordane::sqlite
