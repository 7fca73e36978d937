#include "list/row_walk.h"

#include "platform/stored_rows.h"

namespace vordane::list {

RowWalk::RowWalk(Desk& desk, std::vector<Stretch> rows) : desk_(desk), rows_(std::move(rows)) {
  std::erase_if(rows_, [](const Stretch& stretch) { return stretch.begin == stretch.end; });
  for (const Stretch& stretch : rows_) of_ += stretch.end - stretch.begin;
  if (!rows_.empty()) place_ = rows_.front().begin;
}

void RowWalk::step() {
  ++done_;
  if (++place_ < rows_[stretch_].end) return;
  if (++stretch_ < rows_.size()) place_ = rows_[stretch_].begin;
}

// Nothing for one that has gone, or whose columns are not those of a fault.
std::optional<window::GridRow> RowWalk::read(database::RowList& rows) {
  if (place_ >= desk_.size() || !rows.fetch(desk_.storedPosition(place_), values_)) return {};
  try {
    window::GridRow row = database::gridRowOf(values_);
    row.description = desk_.asRead(row);
    return row;
  } catch (const automation::AutomationError&) {
    return {};
  }
}

database::Note RowWalk::noteOf(database::RowList& rows, std::int64_t fault) {
  database::Notes* notes = rows.notes();
  return notes == nullptr ? database::Note{} : notes->of(fault).value_or(database::Note{});
}

bool RowWalk::next(const Take& take, const std::function<bool()>& again) {
  while (!atEnd()) {
    database::RowList* rows = desk_.list();
    if (rows == nullptr) return false;  // while a long step runs
    if (const auto row = read(*rows))
      take(place_, *row, noteOf(*rows, row->count));
    else
      ++gone_;
    step();
    if (!again()) break;
  }
  return atEnd();
}

}  // namespace vordane::list
