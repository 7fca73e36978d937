#include "list/new_rows.h"

#include <algorithm>

namespace vordane::list {
namespace {

constexpr std::size_t rowsNumbered = 32'768;  // in a piece

void readToEnd(database::RowList& rows) {
  try {
    while (!rows.isRead()) rows.readOn();
  } catch (const database::DatabaseError&) {
    // What has been read will do.
  }
}

}  // namespace

void NewRows::begin() {
  busy_ = true;
  next_ = 0;
  highest_.reset();
}

void NewRows::forget() {
  busy_ = false;
  highest_.reset();
}

void NewRows::work(const std::function<bool()>& again) {
  do {
    if (!busy()) return;
    const database::RowList* rows = desk_.list();
    const std::size_t end = std::min(rows->size(), next_ + rowsNumbered);
    for (; next_ < end; ++next_)
      if (const auto number = rows->number(next_)) highest_ = std::max(highest_.value_or(*number), *number);
    busy_ = next_ < rows->size();
  } while (busy_ && again());
}

bool NewRows::isNew(std::size_t shown, std::int64_t mark) const {
  const database::RowList* rows = desk_.list();
  if (rows == nullptr || shown >= desk_.size()) return false;
  const auto number = rows->number(desk_.storedPosition(shown));
  return number && *number > mark;
}

std::optional<std::size_t> NewRows::next(std::int64_t mark, std::optional<std::size_t> from) const {
  if (desk_.list() != nullptr) readToEnd(*desk_.list());
  const std::size_t rows = desk_.size(), first = from ? *from + 1 : 0;
  for (std::size_t i = 0; i < rows; ++i)
    if (const std::size_t row = (first + i) % rows; isNew(row, mark)) return row;
  return {};
}

}  // namespace vordane::list
