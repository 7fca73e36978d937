#include "platform/database.h"

#include <algorithm>

#include "text/text.h"
#include "text/utf8.h"

namespace vordane::database {

DatabaseError::DatabaseError(int number, std::u16string description)
    : number_(number), description_(std::move(description)), what_(text::toUtf8(description_)) {}

namespace {

bool holds(const std::vector<Value>& row, std::u16string_view needle) {
  return std::any_of(row.begin(), row.end(), [&](const Value& value) {
    return !automation::isNull(value) && text::contains(text::toLower(automation::toText(value)), needle);
  });
}

}  // namespace

std::optional<std::size_t> RowList::find(std::u16string_view needle, std::size_t first,
                                         const Progress& progress, Walk walk) {
  std::vector<Value> row;
  const std::size_t rows = size();
  for (std::size_t i = 0; i < rows; ++i) {
    if (progress && i % rowsBetweenProgress == rowsBetweenProgress - 1) progress(i);
    const std::size_t position = walked(first, i, walk);
    if (fetch(position, row) && (holds(row, needle) || noteHolds(position, needle))) return position;
  }
  return {};
}

void RowList::choose(std::u16string_view needle, std::span<const std::uint32_t> positions,
                     std::vector<std::uint32_t>& chosen) {
  std::vector<Value> row;
  for (const std::uint32_t position : positions)
    if (fetch(position, row) && (holds(row, needle) || noteHolds(position, needle)))
      chosen.push_back(position);
}

}  // namespace vordane::database
