#include "list/steady.h"

#include <algorithm>

#include "text/blanks.h"
#include "text/text.h"

namespace vordane::list {
namespace {

// As the statement orders them: by date, then by number, both falling.
bool standsBefore(const window::GridRow& row, const window::GridRow& fault) {
  const std::u16string date = text::toLower(text::withoutTrailingBlanks(row.date)),
                       wanted = text::toLower(text::withoutTrailingBlanks(fault.date));
  return date != wanted ? date > wanted : row.count > fault.count;
}

}  // namespace

std::optional<std::size_t> placeOf(const window::GridRow& fault, window::GridSource& rows,
                                   std::size_t guess) {
  const auto stands = [&](std::size_t position) { return rows.row(position) == fault; };
  if (stands(guess)) return guess;
  std::size_t begin = 0, end = rows.size();
  while (begin < end) {
    const std::size_t middle = begin + (end - begin) / 2;
    const auto row = rows.row(middle);
    if (!row) return {};
    standsBefore(*row, fault) ? begin = middle + 1 : end = middle;
  }
  return begin < rows.size() && stands(begin) ? std::optional(begin) : std::nullopt;
}

void Steady::caretAt(const window::GridRow& fault, std::size_t position, std::size_t rows) {
  caret_ = Held{fault, position, rows};
}

std::optional<std::size_t> Steady::shown(window::GridSource& rows, Why why, bool moved) {
  newer_ = 0;
  // What came is mostly newer than all that was there.
  const auto find = [&](const Held& held) {
    const std::size_t more = rows.size() - std::min(held.rows, rows.size());
    return placeOf(held.fault, rows, held.position + more);
  };
  const auto place = why == Why::renewed && moved && caret_ ? find(*caret_) : std::nullopt;
  if (place) {
    if (const auto known = newest_ ? find(*newest_) : std::nullopt) newer_ = *known;
  } else if (why != Why::choice) {
    seen(rows);
  }
  return place;
}

void Steady::seen(window::GridSource& rows) {
  newer_ = 0;
  newest_.reset();
  if (const auto first = rows.row(0)) newest_ = Held{*first, 0, rows.size()};
}

}  // namespace vordane::list
