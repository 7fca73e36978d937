#include "list/looking.h"

namespace vordane::list {

std::optional<Looking::Shown> Looking::see(const std::optional<Shown>& shown, Time now) {
  if (!shown || !goesOn(*shown)) waiting_.clear();
  if (!shown) return {};
  const bool told = waiting_.empty() ? lookedAt_ == shown : waiting_.back().shown == *shown;
  if (!told) waiting_.push_back({*shown, now});
  std::optional<Shown> looked;
  for (; !waiting_.empty() && now - waiting_.front().since >= longEnough; waiting_.pop_front())
    looked = lookedAt_ = waiting_.front().shown;
  return looked;
}

// Fewer faults than there were are others.
bool Looking::goesOn(const Shown& shown) const {
  return waiting_.empty() ||
         (waiting_.back().shown.exchange == shown.exchange && waiting_.back().shown.highest <= shown.highest);
}

std::optional<Looking::Time> Looking::due() const {
  return waiting_.empty() ? std::nullopt : std::optional(waiting_.front().since + longEnough);
}

}  // namespace vordane::list
