// Jobs of the host's scheduler: their creation, their unattended runs, their ends, and the parameters that
// the host keeps for them.
#include <utility>

#include "language/message_numbers.h"
#include "startup/dlgFaultDisplay.h"
#include "startup/form_model.h"
#include "text/numbers.h"
#include "text/text.h"

namespace vordane {
namespace {

using automation::byRef;
using automation::byVal;

constexpr std::int16_t stateRunning = 11;
constexpr std::int16_t resultStarted = 0;
constexpr std::int16_t resultOtherKind = 10020;
constexpr std::int16_t resultNoExchange = 10021;
constexpr std::int16_t fetchFaultList = 2;  // the job kind that this add-in runs
constexpr std::u16string_view logEndMark = u"...";

}  // namespace

void dlgFaultDisplay::CreateSchedule() {
  const Entry entry(*this);
  if (!alive() || state().runMode == RunMode::scheduledRun) return;
  dropPress();
  cancelled_ = false;
  state().runMode = RunMode::creatingSchedule;
  store_.showButtonStates();
  for (const int action : {startup::actionRequest, startup::actionClose})
    model_.control(startup::buttonOfAction(action)).set(u"Enabled", true);
  showOwnNotice();
}

// Only the run itself presses a button, in code; a person sees that none of them does anything.
void dlgFaultDisplay::showButtonsDead() {
  for (const int action : {startup::actionRequest, startup::actionClose})
    model_.control(startup::buttonOfAction(action)).set(u"Enabled", false);
  store_.showButtonStates();
}

std::int16_t dlgFaultDisplay::RunSchedule() {
  const Entry entry(*this);
  if (!alive()) return 0;
  comSchedule::LoadScheduleOptions(application_.runLog(), key_);
  state().schedule.RunState = stateRunning;
  iteration_ = 0;
  state().runMode = RunMode::scheduledRun;
  state().busy = true;
  showButtonsDead();
  // An answer that has come is worked off first; its end takes the run's first step.
  if (!answerWaits()) enableTimer(99);
  return 0;
}

std::int16_t dlgFaultDisplay::CancelSchedule() {
  const Entry entry(*this);
  if (!alive()) return 0;
  cancelled_ = true;
  if (state().runMode == RunMode::scheduledRun) runLogLine(messageText(state(), message::runCancelled));
  QueryCancelRun();  // a run's pending request is given up; that it "may not close" is not heeded here
  if (alive()) Unload();
  return 0;
}

bool dlgFaultDisplay::QueryCancelRun() {
  const Entry entry(*this);
  if (state().runMode != RunMode::scheduledRun) return true;
  session_.CancelRequest();
  return false;
}

void dlgFaultDisplay::runLogLine(const std::u16string& text) {
  comSchedule::WriteRunLog(application_.runLog(), text, true, false);
}

// The run is over: behind its end mark stands no line of it, whoever calls or waits from here on.
void dlgFaultDisplay::closeRunLog() {
  if (state().schedule.LogEnabled) runLogLine(std::u16string(logEndMark));
  comSchedule::CloseRunLog(state().schedule);
  state().schedule.RunState = 0;
}

void dlgFaultDisplay::ScheduledRunStep() {
  const ScheduleState& schedule = state().schedule;
  if (schedule.RunState == stateRunning && iteration_ < schedule.ScheduleCount) {
    ++iteration_;
    if (schedule.ScheduleCount > 1)
      runLogLine(messageText(state(), message::runNumber) + u" " + text::decimal(iteration_));
    state().runMode = RunMode::scheduledRun;
    waiting_ = fillText(messageText(state(), message::noticeScheduledRun),
                        {text::decimal(iteration_), text::decimal(schedule.ScheduleCount)});
    showOwnNotice();
    comSchedule::WaitSeconds(clock(), schedule.ScheduleWait);
    if (startJob()) return;
  }
  Ending();
}

bool dlgFaultDisplay::startJob() {
  resultCode_ = resultOtherKind;
  if (state().schedule.JobKind != fetchFaultList) {
    // No answer will come that would move the run on.
    runLogLine(messageText(state(), message::runOtherKind));
    enableTimer(99);
    return true;
  }
  if (pbxName_.empty()) {
    resultCode_ = resultNoExchange;
    runLogLine(fillText(messageText(state(), message::runListFailed),
                        {messageText(state(), message::reasonNoExchange)}));
    return false;
  }
  resultCode_ = resultStarted;
  enableTimer(startup::actionRequest);  // the run's own press
  return true;
}

void dlgFaultDisplay::Ending() {
  const Entry entry(*this);
  if (!alive()) return;
  beginEnding();
  notifyEnding();
  state().busy = false;
  state().runMode = RunMode::interactive;
  Unload();
}

void dlgFaultDisplay::notifyEnding() {
  if (!parent_) return;
  if (state().runMode == RunMode::creatingSchedule) {
    callHost(u"EndCreateSchedule", {byRef(cancelled_)});
    callHost(u"UnloadChild2", {byRef(id_)});
    endingTold_ = true;
  } else if (state().runMode == RunMode::scheduledRun) {
    closeRunLog();
    state().runMode = RunMode::interactive;
    callHost(u"EndProcess", {byRef(key_), byRef(resultCode_)});
  }
}

// --- job parameters

std::vector<std::u16string> dlgFaultDisplay::GetJobParameter(const automation::ObjectRef& host,
                                                             std::u16string_view name) {
  if (!host) return {};
  automation::Argument arguments[] = {byVal(std::u16string(programName)), byRef(std::u16string(name)),
                                      byRef(std::u16string{})};
  std::u16string value;
  try {
    automation::call(*host, u"GetComData", arguments);
    value = automation::toText(arguments[2].value);
  } catch (const automation::AutomationError&) {
    return {};  // a host that keeps no data is put up with
  }
  if (name == u"MOVE") return text::split(value, u',');
  if (name == u"FilePath") return filePathPieces(value);
  return {};
}

// "path,name": the directory in front of the name, and the name, when there is such a directory and the name
// is that of a comma-separated file.
std::vector<std::u16string> dlgFaultDisplay::filePathPieces(const std::u16string& value) {
  const auto& station = application_.station();
  if (value.empty()) return {station.program.directory};
  const auto entries = text::split(value, u',');
  if (entries.size() < 2 || entries[1].empty()) return {};
  const std::u16string path = text::toUpper(entries[0]) + u"\\";
  const std::size_t cut = path.find(text::toUpper(entries[1]) + u"\\");
  if (cut == std::u16string::npos || cut == 0) return {};
  const std::u16string directory = entries[0].substr(0, cut);
  const bool isList = text::right(text::toUpper(entries[1]), 4) == u".CSV";
  if (directory.back() != u'\\' || !isList || !station.files.directoryExists(directory)) return {};
  return {directory, entries[1]};
}

void dlgFaultDisplay::StoreJobParameter(std::u16string_view first, const std::u16string& second) {
  callHost(u"REGComData", {byVal(std::u16string(programName)), byRef(std::u16string(first)), byRef(second)});
}

}  // namespace vordane
