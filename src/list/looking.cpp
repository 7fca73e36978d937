#include "list/looking.h"

namespace vordane::list {

std::optional<Looking::Shown> Looking::see(const std::optional<Shown>& shown, Time now) {
  if (!shown) {
    begun_.reset();
    return {};
  }
  // Fewer faults than there were are others.
  const bool goesOn = begun_ && begun_->exchange == shown->exchange && begun_->highest <= shown->highest;
  if (!goesOn) {
    begun_ = shown;
    since_ = now;
  }
  if (now - since_ < longEnough) return {};
  const Shown seen = *begun_;
  begun_ = shown;
  since_ = now;
  if (lookedAt_ == seen) return {};
  return lookedAt_ = seen;
}

std::optional<Looking::Time> Looking::due() const {
  return begun_ && begun_ != lookedAt_ ? std::optional(since_ + longEnough) : std::nullopt;
}

}  // namespace vordane::list
