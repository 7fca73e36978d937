// The order of an exchange's faults by Description. The texts of a million faults are too long to be held at
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

  // `Count` of the exchange's rows by Description, Fault, Alarm, Date, Count; null when one of them has no
  // short key. The fault index must be good. Throws DatabaseError.
  SharedCounts of(std::int64_t id);

 private:
  static void keyFunction(sqlite3_context* context, int, sqlite3_value** values) noexcept;
  void step();

  Connection& connection_;
  std::size_t rows_ = 0, steps_ = 0;  // each row is read and handed over: two steps
  std::string key_;                   // keeps its memory between rows
  std::u16string copy_;
};

// Whether `Count` is a row's key of four bytes. Access gives numbers of any size and sign where its
// auto-number is set to random.
bool hasShortKey(std::int64_t count);

}  // namespace vordane::sqlite
