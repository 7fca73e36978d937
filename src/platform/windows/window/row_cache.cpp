#include "platform/windows/window/row_cache.h"

namespace vordane::window::win32 {

void RowCache::setSource(GridSource* source) {
  source_ = source;
  forget();
}

void RowCache::forget() {
  for (Place& place : cache_) place = Place{};
}

std::unique_ptr<database::RowList::Together> RowCache::readTogether() {
  database::RowList* const list = source_ != nullptr ? source_->list() : nullptr;
  return list != nullptr ? list->readTogether() : nullptr;
}

const ShownRow* RowCache::row(std::size_t position) {
  if (position >= size()) return nullptr;
  Place& place = cache_[position % places];
  if (place.position != position) {
    auto fetched = source_->row(position);
    place.present = fetched.has_value();
    // A row that is not given while a step holds the file has not gone.
    place.position = place.present || source_->list() != nullptr ? position : none;
    place.noteKnown = false;
    if (fetched) {
      place.row.description = source_->asRead(*fetched);
      place.row.text = rowText(place.row.description);
      place.row.fault = std::move(*fetched);
    }
  }
  if (place.present && !place.noteKnown) {
    place.noteKnown = source_->list() != nullptr;
    place.row.note = source_->note(place.row.fault.count).value_or(database::Note{});
  }
  return place.present ? &place.row : nullptr;
}

}  // namespace vordane::window::win32
