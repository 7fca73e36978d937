// A job of the host's scheduler, in its creation or its run: which job, how often it ran, what became of it.
// It decides what comes next and does nothing itself. One thread.
#pragma once

#include <cstdint>
#include <string>

#include "settings/shared_state.h"

namespace vordane::startup {

class ScheduledJob {
 public:
  static constexpr std::int16_t stateRunning = 11;
  static constexpr std::int16_t resultStarted = 0;
  static constexpr std::int16_t resultOtherKind = 10020;
  static constexpr std::int16_t resultNoExchange = 10021;

  const std::u16string& Key() const { return key_; }
  void setKey(std::u16string key) { key_ = std::move(key); }
  std::int32_t iteration() const { return iteration_; }
  std::int16_t result() const { return result_; }  // told at the run's end
  bool cancelled() const { return cancelled_; }    // the creation was given up, or the run

  void beginCreation() { cancelled_ = false; }
  void beginRun() { iteration_ = 0; }
  void cancel() { cancelled_ = true; }

  // True when the run goes on with one more iteration, which then counts.
  bool nextIteration(const ScheduleState& options);

  enum class Start {
    request,     // the fault list is fetched
    otherKind,   // nothing to do: no answer will come that would move the run on
    noExchange,  // the run is over
  };
  Start start(const ScheduleState& options, bool exchangeRegistered);

 private:
  std::u16string key_;
  std::int16_t iteration_ = 0;
  std::int16_t result_ = 0;
  bool cancelled_ = false;
};

}  // namespace vordane::startup
