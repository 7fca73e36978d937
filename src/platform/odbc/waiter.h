// Makes calls that may take long on a thread of its own, so that their caller can paint meanwhile, and can
// give up a call that does not end.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

#include "platform/odbc/api.h"

namespace vordane::odbc {

// One caller. Owns a thread, once one is needed.
class Waiter {
 public:
  using Meanwhile = std::function<void()>;
  // Holds all that it works on: given up, it goes on by itself, and what it holds goes when it ends.
  using Step = std::function<Return()>;
  // How long a call may take; no time is for ever. Whoever `goesOn` has the same time once more.
  struct Patience {
    std::optional<std::chrono::milliseconds> time;
    std::function<bool()> goesOn;  // never throws; empty: nobody does
  };

  Waiter() = default;
  ~Waiter();
  Waiter(const Waiter&) = delete;
  Waiter& operator=(const Waiter&) = delete;

  // Called on the caller's thread, again and again while a call takes long; never throws. Empty: nothing is.
  void setMeanwhile(Meanwhile meanwhile) { meanwhile_ = std::move(meanwhile); }
  const Meanwhile& meanwhile() const { return meanwhile_; }

  // The call's result, when it has ended; nothing when it was given up.
  std::optional<Return> call(Step step, const Patience& patience);

 private:
  struct Work;
  void begin(Step step);

  Meanwhile meanwhile_;
  std::shared_ptr<Work> work_;  // null without a thread
};

}  // namespace vordane::odbc
