#include "startup/window_actions.h"

#include "language/message_numbers.h"
#include "startup/scheduled_runs.h"
#include "startup/window_end.h"
#include "startup/window_parts.h"

namespace vordane::startup {

void WindowActions::tick() {
  const auto action = parts_.timer.tick();
  if (!action) return;
  const WindowLife::Entry entry(parts_.life);
  try {
    noteReset(*action);
    dispatch(*action);
  } catch (...) {
    endBroken(*action);
    throw;
  }
}

// A reset begins, or was answered with something else than its answer.
void WindowActions::noteReset(Action action) {
  if (action == Action::reset) parts_.receipts.begin(parts_.host.PBXName());
  if (action == Action::ingest || action == Action::alarmState)
    parts_.receipts.answered(parts_.session.received(), false);
}

void WindowActions::dispatch(Action action) {
  switch (action) {
    case Action::request:
      return converse([&] { return parts_.session.RequestFaultList(); });
    case Action::reset:
      return converse([&] { return parts_.session.AcknowledgeAndClear(); });
    case Action::print:
      return work([&] { parts_.store.PrintFaultReport(); });
    case Action::clear:
      return work([&] { parts_.store.DeleteExchange(); });
    case Action::close:
      return close();
    case Action::followUp:
      return followUp();
    case Action::ingest:
      return ingest();
    case Action::alarmsCleared:
      return endLampAction(parts_.store.ClearAlarm(parts_.session.received()), message::reasonClearAnswer);
    case Action::alarmState:
      return endLampAction(parts_.store.UpDateAlarm(parts_.session.received()), message::reasonLampAnswer);
    case Action::runStep:
      return runStep();
    case Action::stopRun:
      comSchedule::CancelScheduleCount(parts_.state().schedule);
      return runStep();
  }
}

template <class Request>
void WindowActions::converse(Request request) {
  parts_.state().busy = true;
  if (!request()) endAction();
}

template <class Work>
void WindowActions::work(Work work) {
  parts_.state().busy = true;
  work();
  if (parts_.alive()) parts_.state().busy = false;
}

void WindowActions::close() {
  if (parts_.state().StandAlone)
    parts_.end.Unload();
  else
    parts_.view().setVisible(false);
}

void WindowActions::followUp() {
  if (parts_.state().runMode == RunMode::scheduledRun)
    parts_.runs.step();
  else if (parts_.state().runMode == RunMode::creatingSchedule)
    parts_.end.Ending();
}

void WindowActions::ingest() {
  using After = store::FaultStore::After;
  const After after = parts_.store.IngestFaultList(parts_.session.received());
  if (after == After::nothing) return;
  if (after == After::acknowledge && parts_.session.AcknowledgeFaultList()) return;
  endAction();
}

// A good answer makes an earlier failure old.
void WindowActions::endLampAction(bool good, std::size_t reason) {
  if (parts_.alive()) parts_.store.DisplayAlarm();
  if (parts_.alive() && good) {
    parts_.status.attemptSucceeded();
    status::showLine(parts_.view(), parts_.status);
  } else if (parts_.alive()) {
    parts_.talk.attemptFailed(parts_.session.requestKind(), parts_.session.requestName(),
                              parts_.sentence(reason));
  }
  endAction();
}

void WindowActions::runStep() {
  if (parts_.state().runMode == RunMode::scheduledRun) parts_.runs.step();
}

void WindowActions::endAction() {
  if (!parts_.alive()) return;
  parts_.status.idle();
  parts_.showNotice();
  if (parts_.state().runMode == RunMode::scheduledRun)
    parts_.runs.step();
  else
    parts_.state().busy = false;
}

// An action that ran out of memory is over all the same: a busy flag that stayed would keep everybody out.
void WindowActions::endBroken(Action action) {
  if (!parts_.alive()) return;
  parts_.receipts.failed({step::alarmClearRequest, parts_.session.requestName(), pbx::Failure::noMemory});
  parts_.status.idle();
  const std::int16_t request = action == Action::request ? step::faultListRequest
                               : action == Action::reset ? step::alarmClearRequest
                                                         : parts_.session.requestKind();
  attempt([&] {
    if (action == Action::request || action == Action::reset || isAnswer(action))
      parts_.talk.attemptFailed(request, parts_.session.requestName(),
                                parts_.sentence(message::reasonNoMemory));
  });
  parts_.talk.concluded(std::nullopt);
}

}  // namespace vordane::startup
