// What a command button stands for, what an exchange's answer calls for and what one tick of the window's
// timer does: one numbering, which the exchange's tags and the host's scheduler know too.
#pragma once

#include <cstdint>

namespace vordane {

enum class Action : std::int16_t {
  request = 0,
  reset = 1,
  print = 2,
  clear = 3,
  close = 4,
  followUp = 5,  // a run's next step, or the end of a job's creation
  ingest = 10,
  alarmsCleared = 11,
  alarmState = 12,
  runStep = 99,
  stopRun = 100,
};

// One that an exchange's answer calls for; its number is the tag of the request.
constexpr bool isAnswer(Action action) {
  return action == Action::ingest || action == Action::alarmsCleared || action == Action::alarmState;
}

}  // namespace vordane
