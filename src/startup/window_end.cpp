#include "startup/window_end.h"

#include "language/message_numbers.h"
#include "startup/scheduled_runs.h"
#include "startup/window_parts.h"

namespace vordane::startup {

using automation::byRef;

// From here on nothing reaches window or database; the classes are withdrawn.
void WindowEnd::beginEnding() {
  if (parts_.life.beginEnding()) withdraw();
}

void WindowEnd::withdraw() {
  parts_.application.station().process.stopServing();
  parts_.timer.disable();
  parts_.session.interrupt();
}

void WindowEnd::Unload() {
  const WindowLife::Entry entry(parts_.life);
  const auto unloading = parts_.life.beginUnload();
  if (!unloading.begins) return;
  parts_.runs.reportOutcome();
  if (unloading.endingBegins) attempt([&] { withdraw(); });
  attempt([&] { parts_.place.remember(); });
  attempt([&] { parts_.view().stopTimer(); });
  parts_.receipts.ended();
  parts_.store.close();
  attempt([&] { parts_.view().detach(); });
  attempt([&] { closeLater(parts_.life, parts_.application.LangDB); });
  parts_.faults.close();
  if (!unloading.hostKnows) attempt([&] { notifyUnload(); });
  attempt([&] { parts_.session.release(); });
  parts_.state().busy = false;
  if (parts_.state().StandAlone || !parts_.life.hasUsers()) endProcess();
}

void WindowEnd::endProcess() {
  if (parts_.life.endProcess()) parts_.application.station().process.end();
}

void WindowEnd::notifyUnload() {
  HostLink& host = parts_.host;
  if (!host.ref()) return;
  const RunMode mode = std::exchange(parts_.state().runMode, RunMode::interactive);
  if (mode == RunMode::creatingSchedule) {
    host.call(u"EndCreateSchedule", {byRef(parts_.job.cancelled())});
    host.call(u"UnloadChild2", {byRef(host.ID())});
    return;
  }
  if (mode == RunMode::scheduledRun) {
    attempt([&] { comSchedule::endRunLog(parts_.application.runLog()); });
    parts_.state().schedule.RunState = 0;
    host.call(u"EndProcess", {byRef(parts_.job.Key()), byRef(parts_.state().stepCode)});
  }
  host.call(u"UnloadChild", {byRef(host.ID())});
}

void WindowEnd::userReleased() noexcept {
  const WindowLife::Entry entry(parts_.life);
  if (parts_.life.DecrementCount() >= 1) return;
  if (parts_.alive() && parts_.state().runMode == RunMode::scheduledRun) attempt([&] { runLetGo(); });
  attempt([&] { beginEnding(); });
  attempt([&] { parts_.place.FrmPositionSave(); });
  parts_.host.letGo();
  Unload();
  endProcess();
}

void WindowEnd::runLetGo() {
  const std::u16string line = parts_.text(message::runLetGo);
  comSchedule::writeRunLine(parts_.application.runLog(), line);
  parts_.application.events().runFailed(line);
}

void WindowEnd::Ending() {
  const WindowLife::Entry entry(parts_.life);
  if (!parts_.alive()) return;
  beginEnding();
  parts_.runs.reportOutcome();
  notifyEnding();
  parts_.state().busy = false;
  parts_.state().runMode = RunMode::interactive;
  Unload();
}

void WindowEnd::notifyEnding() {
  HostLink& host = parts_.host;
  if (!host.ref()) return;
  if (parts_.state().runMode == RunMode::creatingSchedule) {
    host.call(u"EndCreateSchedule", {byRef(parts_.job.cancelled())});
    host.call(u"UnloadChild2", {byRef(host.ID())});
    parts_.life.hostTold();
  } else if (parts_.state().runMode == RunMode::scheduledRun) {
    comSchedule::endRunLog(parts_.application.runLog());
    parts_.state().runMode = RunMode::interactive;
    host.call(u"EndProcess", {byRef(parts_.job.Key()), byRef(parts_.job.result())});
  }
}

}  // namespace vordane::startup
