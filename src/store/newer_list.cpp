#include "store/newer_list.h"

#include <algorithm>
#include <limits>

namespace vordane::store {

bool NewerList::ask(const std::optional<Shown>& shown, const Store& store) {
  if (shown_ != shown) {
    shown_ = shown;
    mark_.reset();
    known_ = false;
    pause_ = betweenQuestions;
  }
  if (!shown_ || known_) return false;
  try {
    const auto arrivals = store();
    const auto latest =
        arrivals != nullptr
            ? arrivals->latest(shown_->exchange, mark_.value_or(std::numeric_limits<std::int64_t>::max()))
            : std::nullopt;
    pause_ = betweenQuestions;
    known_ = latest && isNewer(*latest);
  } catch (const database::DatabaseError&) {
    pause_ = pause_ < afterFailure ? afterFailure : std::min(pause_ * 2, longestPause);
  }
  return known_;
}

// A long list comes in pieces: more of it may come under a time that is shown already.
bool NewerList::isNewer(const database::Latest& latest) {
  mark_ = latest.highest;
  return latest.more || latest.listed != shown_->listed;
}

}  // namespace vordane::store
