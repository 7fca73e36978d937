// The rules of waiting for other programs: when a rejected call is tried again, when a question comes up.
// The message filter of the Windows half hands its events in; every time is in milliseconds. One thread.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/process.h"

namespace vordane::platform {

class CallFilter {
 public:
  explicit CallFilter(CallQuestions& questions) : questions_(questions) {}

  void setTimes(const CallTimes& times) { times_ = times; }
  const CallTimes& times() const { return times_; }

  // A call made `elapsed` ago was turned down: how long to wait before the next try, -1 to give up.
  int rejected(std::uint32_t elapsed);

  // A message came in at `now` (any clock that only grows) while a call made `elapsed` ago waits for its
  // answer; `input` is true for a key or button press.
  void waiting(std::uint32_t now, std::uint32_t elapsed, bool input);

  static constexpr int retryPause = 250;
  static constexpr int giveUp = -1;

 private:
  bool alreadyNoted(std::uint32_t began);

  CallQuestions& questions_;
  CallTimes times_;
  std::uint32_t patienceFrom_ = 0;  // the age of the rejected call when the person last chose to go on
  std::optional<std::uint32_t> notedCall_;
  bool asking_ = false;
};

}  // namespace vordane::platform
