// The window's timer: it holds the one action that its next tick does. One thread.
#pragma once

#include <optional>

#include "platform/action.h"
#include "platform/view.h"
#include "startup/window_life.h"

namespace vordane::startup {

class ActionTimer {
 public:
  static constexpr int interval = 100;  // milliseconds

  ActionTimer(const WindowLife& life, window::View& view) : life_(life), view_(view) {}

  // The next action, taken by one tick; a number that stands for none does nothing. Nothing once an ending
  // has begun.
  void enable(Action next);
  bool enabled() const { return enabled_; }
  // What the next tick will do as things are; nothing when it will do nothing.
  std::optional<Action> due() const;
  // The timer stands for an answer that has come, not for a press.
  bool answerWaits() const { return enabled_ && isAnswer(next_); }
  void dropPress();  // an answer stays
  void disable() { enabled_ = false; }

  // A tick has come: the action it is for. Nothing when none is due, or when a call or box below has to
  // return first, after which the tick comes again.
  std::optional<Action> tick();

 private:
  const WindowLife& life_;
  window::View& view_;
  Action next_ = Action::request;
  bool enabled_ = false;
};

}  // namespace vordane::startup
