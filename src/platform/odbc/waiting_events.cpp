#include "platform/odbc/waiting_events.h"

#include "platform/odbc/identity.h"

namespace vordane::odbc {
namespace {

constexpr std::size_t mostRowsTogether = 4000;
constexpr std::size_t mostCharactersTogether = 4 << 20;

}  // namespace

void WaitingEvents::add(const Table& table, const NewRow& row) {
  table_ = &table;
  rows_.push_back(row);
  std::u16string identity = identityOf(table, row);
  if (identity.empty()) return;
  characters_ += identity.size();
  identities_.insert(std::move(identity));
}

bool WaitingEvents::enough() const {
  return rows_.size() >= mostRowsTogether || characters_ >= mostCharactersTogether;
}

std::vector<std::size_t> WaitingEvents::columns() const {
  std::vector<std::size_t> columns;
  for (std::size_t i = 0; i < table_->columns.size(); ++i)
    if (i != *table_->key) columns.push_back(i);
  return columns;
}

Fields WaitingEvents::arrays() const {
  Fields arrays;
  for (const std::size_t column : columns()) {
    std::u16string array;
    for (const NewRow& row : rows_) appendToArray(array, row[column] ? toField(*row[column]) : std::nullopt);
    array.push_back(u'}');
    arrays.emplace_back(std::move(array));
  }
  return arrays;
}

}  // namespace vordane::odbc
