#include "platform/sqlite/time_order.h"

#include <utility>

#include "platform/sqlite/description_order.h"

namespace vordane::sqlite {

void TimeOrder::keep(std::int64_t owner, std::int64_t version, std::vector<std::uint32_t> keys,
                     std::string lastMoment) {
  lastKey_ = keys.empty() ? 0 : keys.back();
  keys_ = std::make_shared<std::vector<std::uint32_t>>(std::move(keys));
  added_.clear();
  lastMoment_ = std::move(lastMoment);
  version_ = version;
  owner_ = owner;
}

void TimeOrder::forget() noexcept {
  owner_.reset();
  keys_.reset();
  added_.clear();
}

SharedKeys TimeOrder::of(std::int64_t owner, std::int64_t version) {
  if (owner_ != owner || version_ != version) {
    forget();
    return {};
  }
  append();
  return keys_;
}

// Whoever still shows the rows before keeps them as they were.
void TimeOrder::append() {
  if (added_.empty()) return;
  constexpr std::size_t spare = 16;  // room for this part more is made at once
  const std::size_t needed = keys_->size() + added_.size();
  if (keys_.use_count() > 1 || keys_->capacity() < needed) {
    auto grown = std::make_shared<std::vector<std::uint32_t>>();
    grown->reserve(needed + needed / spare);
    *grown = *keys_;
    keys_ = std::move(grown);
  }
  keys_->insert(keys_->end(), added_.begin(), added_.end());
  added_.clear();
}

void TimeOrder::added(std::int64_t owner, std::string_view moment, std::int64_t key) {
  if (owner_ != owner) return;
  if (moment < lastMoment_ || key <= lastKey_ || !hasShortKey(key)) return forget();
  added_.push_back(static_cast<std::uint32_t>(key));
  lastMoment_.assign(moment);
  lastKey_ = key;
}

}  // namespace vordane::sqlite
