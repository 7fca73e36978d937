#include "startup/scheduled_runs.h"

#include "language/message_numbers.h"
#include "startup/form_model.h"
#include "startup/window_end.h"
#include "startup/window_parts.h"
#include "text/numbers.h"

namespace vordane::startup {

void ScheduledRuns::CreateSchedule() {
  const WindowLife::Entry entry(parts_.life);
  if (!parts_.alive() || parts_.state().runMode == RunMode::scheduledRun) return;
  parts_.timer.dropPress();
  parts_.job.beginCreation();
  parts_.state().runMode = RunMode::creatingSchedule;
  parts_.store.showButtonStates();
  for (const Action action : {Action::request, Action::close})
    parts_.form.control(buttonOfAction(action)).set(u"Enabled", true);
  status::showConversation(parts_.view(), parts_.status);
}

// Only the run itself presses a button, in code; a person sees that none of them does anything.
void ScheduledRuns::showButtonsDead() {
  for (const Action action : {Action::request, Action::close})
    parts_.form.control(buttonOfAction(action)).set(u"Enabled", false);
  parts_.store.showButtonStates();
}

void ScheduledRuns::loadOptions() {
  comSchedule::Environment& log = parts_.application.runLog();
  const std::u16string reason = comSchedule::LoadScheduleOptions(log, parts_.job.Key());
  if (!reason.empty())
    parts_.application.events().fileFailed(platform::Event::jobOptionsUnusable, comSchedule::optionsPath(log),
                                           reason, parts_.job.Key());
}

std::int16_t ScheduledRuns::RunSchedule() {
  const WindowLife::Entry entry(parts_.life);
  if (!parts_.alive()) return 0;
  loadOptions();
  parts_.application.events().runBegins();
  parts_.state().schedule.RunState = ScheduledJob::stateRunning;
  parts_.job.beginRun();
  parts_.state().runMode = RunMode::scheduledRun;
  parts_.state().busy = true;
  showButtonsDead();
  // An answer that has come is worked off first; its end takes the run's first step.
  if (!parts_.timer.answerWaits()) parts_.timer.enable(Action::runStep);
  return 0;
}

std::int16_t ScheduledRuns::CancelSchedule() {
  const WindowLife::Entry entry(parts_.life);
  if (!parts_.alive()) return 0;
  reportOutcome();
  parts_.job.cancel();
  if (parts_.state().runMode == RunMode::scheduledRun)
    comSchedule::writeRunLine(parts_.application.runLog(), parts_.text(message::runCancelled));
  QueryCancelRun();  // a run's pending request is given up; that it "may not close" is not heeded here
  if (parts_.alive()) parts_.end.Unload();
  return 0;
}

bool ScheduledRuns::QueryCancelRun() {
  const WindowLife::Entry entry(parts_.life);
  if (parts_.state().runMode != RunMode::scheduledRun) return true;
  parts_.session.CancelRequest();
  return false;
}

void ScheduledRuns::step() {
  const ScheduleState& options = parts_.state().schedule;
  if (parts_.job.nextIteration(options)) {
    const std::int32_t iteration = parts_.job.iteration();
    if (options.ScheduleCount > 1)
      comSchedule::writeRunLine(parts_.application.runLog(),
                                parts_.text(message::runNumber) + u" " + text::decimal(iteration));
    parts_.state().runMode = RunMode::scheduledRun;
    parts_.status.runs(iteration, options.ScheduleCount);
    status::showConversation(parts_.view(), parts_.status);
    comSchedule::WaitSeconds(parts_.application.station().clock, options.ScheduleWait);
    if (startJob()) return;
  }
  parts_.end.Ending();
}

bool ScheduledRuns::startJob() {
  comSchedule::Environment& log = parts_.application.runLog();
  switch (parts_.job.start(parts_.state().schedule, !parts_.host.PBXName().empty())) {
    case ScheduledJob::Start::otherKind:
      comSchedule::writeRunLine(log, parts_.text(message::runOtherKind));
      parts_.application.events().runFailed(parts_.text(message::runOtherKind));
      parts_.timer.enable(Action::runStep);
      return true;
    case ScheduledJob::Start::noExchange:
      comSchedule::writeRunLine(
          log, fillText(parts_.text(message::runListFailed), {parts_.text(message::reasonNoExchange)}));
      parts_.application.events().runFailed(parts_.text(message::reasonNoExchange));
      return false;
    case ScheduledJob::Start::request:
      parts_.timer.enable(Action::request);  // the run's own press
      return true;
  }
  return false;
}

void ScheduledRuns::reportOutcome() noexcept {
  attempt([&] {
    const comSchedule::Environment& log = parts_.application.runLog();
    const bool kept = comSchedule::keepsLog(log.state);
    parts_.application.events().runEnds(kept ? comSchedule::logPath(log) : comSchedule::optionsPath(log),
                                        parts_.job.Key());
  });
}

void ScheduledRuns::reportRefusal(std::u16string_view key) noexcept {
  attempt([&] {
    parts_.application.events().fileFailed(platform::Event::runFailed,
                                           comSchedule::optionsPath(parts_.application.runLog()),
                                           u"RunSchedule = 10000", key);
  });
}

}  // namespace vordane::startup
