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

bool RowWalk::next(const Take& take, const std::function<bool()>& again) {
  database::RowList* rows = desk_.list();
  if (atEnd() || rows == nullptr) return atEnd();  // none while a long step runs
  const auto together = rows->readTogether();
  database::Notes* notes = rows->notes();
  if (notes != nullptr && !notes->any()) notes = nullptr;
  do {
    if (const auto row = read(*rows))
      take(place_, *row,
           notes == nullptr ? database::Note{} : notes->of(row->count).value_or(database::Note{}));
    else
      ++gone_;
    step();
  } while (!atEnd() && again());
  return atEnd();
}

}  // namespace vordane::list
