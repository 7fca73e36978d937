#include "platform/sqlite/time_order.h"

#include <utility>

#include "platform/sqlite/description_order.h"

namespace vordane::sqlite {

void TimeOrder::keep(std::int64_t id, std::int64_t version, std::vector<std::uint32_t> counts,
                     std::string lastMoment) {
  lastCount_ = counts.empty() ? 0 : counts.back();
  counts_ = std::make_shared<std::vector<std::uint32_t>>(std::move(counts));
  added_.clear();
  lastMoment_ = std::move(lastMoment);
  version_ = version;
  id_ = id;
}

void TimeOrder::forget() noexcept {
  id_.reset();
  counts_.reset();
  added_.clear();
}

SharedCounts TimeOrder::of(std::int64_t id, std::int64_t version) {
  if (id_ != id || version_ != version) {
    forget();
    return {};
  }
  append();
  return counts_;
}

// Whoever still shows the rows before keeps them as they were.
void TimeOrder::append() {
  if (added_.empty()) return;
  constexpr std::size_t spare = 16;  // room for this part more is made at once
  const std::size_t needed = counts_->size() + added_.size();
  if (counts_.use_count() > 1 || counts_->capacity() < needed) {
    auto grown = std::make_shared<std::vector<std::uint32_t>>();
    grown->reserve(needed + needed / spare);
    *grown = *counts_;
    counts_ = std::move(grown);
  }
  counts_->insert(counts_->end(), added_.begin(), added_.end());
  added_.clear();
}

void TimeOrder::added(std::int64_t id, std::string_view moment, std::int64_t count) {
  if (id_ != id) return;
  if (moment < lastMoment_ || count <= lastCount_ || !hasShortKey(count)) return forget();
  added_.push_back(static_cast<std::uint32_t>(count));
  lastMoment_.assign(moment);
  lastCount_ = count;
}

}  // namespace vordane::sqlite
