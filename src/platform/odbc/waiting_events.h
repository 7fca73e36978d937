// Events that were added in a batch and wait to travel to the server together. One thread.
#pragma once

#include <string>
#include <unordered_set>
#include <vector>

#include "platform/odbc/tables.h"
#include "platform/odbc/values.h"

namespace vordane::odbc {

class WaitingEvents {
 public:
  bool empty() const { return rows_.empty(); }
  // All rows are of one table, which must live as long as they wait.
  void add(const Table& table, const NewRow& row);
  bool holds(const std::u16string& identity) const { return identities_.contains(identity); }
  // So many rows, or so long ones, that they should travel now.
  bool enough() const;

  // Only while there are any.
  const Table& table() const { return *table_; }
  const std::vector<NewRow>& rows() const { return rows_; }
  // All columns but the key, by their places, and all rows' values of each as one array.
  std::vector<std::size_t> columns() const;
  Fields arrays() const;

 private:
  const Table* table_ = nullptr;
  std::vector<NewRow> rows_;
  std::unordered_set<std::u16string> identities_;
  std::size_t characters_ = 0;
};

}  // namespace vordane::odbc
