#include "startup/scheduled_job.h"

namespace vordane::startup {
namespace {

constexpr std::int16_t fetchFaultList = 2;  // the job kind that this add-in runs

}  // namespace

bool ScheduledJob::nextIteration(const ScheduleState& options) {
  if (options.RunState != stateRunning || iteration_ >= options.ScheduleCount) return false;
  ++iteration_;
  return true;
}

ScheduledJob::Start ScheduledJob::start(const ScheduleState& options, bool exchangeRegistered) {
  if (options.JobKind != fetchFaultList) {
    result_ = resultOtherKind;
    return Start::otherKind;
  }
  result_ = exchangeRegistered ? resultStarted : resultNoExchange;
  return exchangeRegistered ? Start::request : Start::noExchange;
}

}  // namespace vordane::startup
