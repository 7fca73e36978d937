#include "startup/action_timer.h"

namespace vordane::startup {

void ActionTimer::enable(Action next) {
  if (!life_.alive()) return;
  next_ = next;
  enabled_ = true;
  view_.startTimer(interval);
}

void ActionTimer::dropPress() {
  if (!enabled_ || answerWaits()) return;
  enabled_ = false;
  view_.stopTimer();
}

std::optional<Action> ActionTimer::due() const {
  if (!enabled_ || !life_.alive() || life_.callUnderWay()) return {};
  return next_;
}

std::optional<Action> ActionTimer::tick() {
  if (!enabled_ || !life_.alive()) return {};
  if (life_.callUnderWay()) {
    view_.startTimer(interval);
    return {};
  }
  enabled_ = false;
  view_.stopTimer();
  return next_;
}

}  // namespace vordane::startup
