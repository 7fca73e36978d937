#include "platform/database.h"

#include <algorithm>

#include "text/text.h"
#include "text/utf8.h"

namespace vordane::database {

DatabaseError::DatabaseError(int number, std::u16string description)
    : number_(number), description_(std::move(description)), what_(text::toUtf8(description_)) {}

std::optional<std::size_t> RowList::find(std::u16string_view needle, std::size_t first,
                                         const Progress& progress, Walk walk) {
  const auto holds = [&](const Value& value) {
    return !automation::isNull(value) && text::contains(text::toLower(automation::toText(value)), needle);
  };
  std::vector<Value> row;
  const std::size_t rows = size();
  for (std::size_t i = 0; i < rows; ++i) {
    if (progress && i % rowsBetweenProgress == rowsBetweenProgress - 1) progress(i);
    const std::size_t position = walked(first, i, walk);
    if (fetch(position, row) && std::any_of(row.begin(), row.end(), holds)) return position;
  }
  return {};
}

}  // namespace vordane::database
