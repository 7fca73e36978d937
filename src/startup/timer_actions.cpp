// The window's timer and what its ticks do, the user's actions that lead there, and help.
#include <algorithm>
#include <utility>

#include "language/message_numbers.h"
#include "startup/dlgFaultDisplay.h"
#include "startup/form_model.h"
#include "text/numbers.h"

namespace vordane {
namespace {

constexpr int keyF1 = 112;
constexpr int rightButton = 2;
constexpr std::u16string_view helpFile = u"VORDANE.HLP";
constexpr std::u16string_view whatsThisControls[] = {u"lblListups", u"lblMJ", u"lblMN", u"lblTimetag",
                                                     u"txtTimeTag"};

}  // namespace

struct dlgFaultDisplay::TimerAction {
  std::int16_t code;
  void (dlgFaultDisplay::*run)();
};

// Any other code does nothing.
constexpr dlgFaultDisplay::TimerAction dlgFaultDisplay::timerActions[] = {
    {0, &dlgFaultDisplay::requestAction},     {1, &dlgFaultDisplay::clearAlarmAction},
    {2, &dlgFaultDisplay::printAction},       {3, &dlgFaultDisplay::deleteAction},
    {4, &dlgFaultDisplay::closeAction},       {5, &dlgFaultDisplay::scheduleFollowUp},
    {10, &dlgFaultDisplay::ingestAction},     {11, &dlgFaultDisplay::alarmsClearedAction},
    {12, &dlgFaultDisplay::alarmStateAction}, {99, &dlgFaultDisplay::runStepAction},
    {100, &dlgFaultDisplay::stopRunAction},
};

void dlgFaultDisplay::enableTimer(std::int16_t nextAction) {
  if (!alive()) return;
  nextAction_ = nextAction;
  timerEnabled_ = true;
  view().startTimer(timerInterval);
}

void dlgFaultDisplay::tick() {
  if (!timerEnabled_ || !alive()) return;
  if (depth_ > 0) return view().startTimer(timerInterval);  // waits until the call or box below has returned
  const Entry entry(*this);
  timerEnabled_ = false;
  view().stopTimer();
  dispatch(nextAction_);
}

void dlgFaultDisplay::dispatch(std::int16_t action) {
  for (const TimerAction& entry : timerActions)
    if (entry.code == action) return (this->*entry.run)();
}

void dlgFaultDisplay::requestAction() {
  state().busy = true;
  if (!session_.RequestFaultList()) endAction();
}

void dlgFaultDisplay::clearAlarmAction() {
  state().busy = true;
  if (!session_.AcknowledgeAndClear()) endAction();
}

void dlgFaultDisplay::printAction() {
  state().busy = true;
  store_.PrintFaultReport();
  if (alive()) state().busy = false;
}

void dlgFaultDisplay::deleteAction() {
  state().busy = true;
  store_.DeleteExchange();
  if (alive()) state().busy = false;
}

void dlgFaultDisplay::closeAction() {
  if (state().StandAlone)
    Unload();
  else
    view().setVisible(false);
}

void dlgFaultDisplay::scheduleFollowUp() {
  if (state().runMode == RunMode::scheduledRun)
    ScheduledRunStep();
  else if (state().runMode == RunMode::creatingSchedule)
    Ending();
}

void dlgFaultDisplay::ingestAction() {
  store_.IngestFaultList();
}

void dlgFaultDisplay::alarmsClearedAction() {
  const bool confirmed = store_.ClearAlarm();
  if (alive()) store_.DisplayAlarm();
  if (alive()) tellAttempt(confirmed, message::reasonClearAnswer);
  endAction();
}

void dlgFaultDisplay::alarmStateAction() {
  const bool readable = store_.UpDateAlarm();
  if (alive()) store_.DisplayAlarm();
  if (alive()) tellAttempt(readable, message::reasonLampAnswer);
  endAction();
}

void dlgFaultDisplay::runStepAction() {
  if (state().runMode == RunMode::scheduledRun) ScheduledRunStep();
}

void dlgFaultDisplay::stopRunAction() {
  comSchedule::CancelScheduleCount(state().schedule);
  runStepAction();
}

void dlgFaultDisplay::endAction() {
  if (!alive()) return;
  showIdle();
  if (state().runMode == RunMode::scheduledRun)
    ScheduledRunStep();
  else
    state().busy = false;
}

// --- the conversation's ends

void dlgFaultDisplay::actionFollows(std::int16_t action) {
  enableTimer(action);
}

void dlgFaultDisplay::answerFailed() {
  // The next step of a run waits until the exchange server has its call back.
  if (state().runMode == RunMode::scheduledRun)
    enableTimer(99);
  else
    state().busy = false;
}

// --- what a wait and a failure look like

void dlgFaultDisplay::waitingFor(std::int16_t kind) {
  const std::size_t notice = kind == step::faultListRequest    ? message::noticeWaitingList
                             : kind == step::alarmStateRequest ? message::noticeWaitingAlarms
                                                               : message::noticeWaitingReset;
  // The acknowledgement belongs to the list before it, whose failure stays.
  if (kind != step::alarmStateRequest) failure_.clear();
  waiting_ = fillText(messageText(state(), notice), {session_.requestName()});
  showOwnNotice();
}

// A wait before a failure, a failure before what a job's creation asks for.
bool dlgFaultDisplay::showOwnNotice() {
  using window::NoticeKind;
  const bool chooses = state().runMode == RunMode::creatingSchedule;
  const auto show = [&](NoticeKind kind, const std::u16string& text) {
    view().setNoticeKind(kind);
    view().setNotice(text);
    return true;
  };
  if (!waiting_.empty()) return show(NoticeKind::waiting, waiting_);
  if (!failure_.empty()) return show(NoticeKind::failure, failure_);
  return chooses && show(NoticeKind::hint, messageText(state(), message::noticeChooseJob));
}

// Nothing is waited for any more.
void dlgFaultDisplay::showIdle() {
  waiting_.clear();
  showNotice();
}

void dlgFaultDisplay::showNotice() {
  if (!faultDatabase_) return;
  if (store_.rows().size() == 0) return store_.showNotice();
  if (showOwnNotice()) return;
  view().setNoticeKind(window::NoticeKind::hint);
  view().setNotice({});
}

// A failed attempt, and behind it what came last: in this session, else before it.
void dlgFaultDisplay::showStatus() {
  const bool quiet = attemptLine_.empty() && listLine_.empty();
  std::u16string line = listLine_.empty() ? storedLine_ : listLine_;
  if (!attemptLine_.empty()) line = attemptLine_ + u" " + line;
  if (quiet && !textsIncomplete_.empty())
    line = fillText(messageText(state(), message::statusTextsIncomplete), {textsIncomplete_});
  if (quiet && faultDatabase_ && faultDatabase_->isOnNetwork())
    line = messageText(state(), message::statusNetworkDrive) + u" " + line;
  view().setStatus(window::accountPart, line);
}

void dlgFaultDisplay::exchangeShown(std::u16string_view name, std::u16string_view received) {
  const std::size_t text = name.empty()       ? message::statusNoList
                           : received.empty() ? message::statusStoredUndated
                                              : message::statusStored;
  storedLine_ = fillText(messageText(state(), text), {name, received});
  showStatus();
}

std::u16string dlgFaultDisplay::reasonText(pbx::Failure failure, std::int32_t errorCode) {
  using pbx::Failure;
  const auto text = [&](std::size_t number) { return messageText(state(), number); };
  switch (failure) {
    case Failure::loginBusy:
      return text(message::reasonBusy);
    case Failure::loginRefused:
      return text(message::reasonRefused);
    case Failure::unreachable:
      return fillText(text(message::reasonUnreachable),
                      {text::hexadecimal(static_cast<std::uint32_t>(errorCode))});
    case Failure::noServer:
      return text(message::reasonNoServer);
    case Failure::sendFailed:
      return text(message::reasonSendFailed);
    case Failure::errorCode:
      return fillText(text(message::reasonErrorCode), {text::decimal(errorCode)});
    case Failure::unreadable:
      return text(message::reasonServerGone);
    case Failure::cancelled:
    case Failure::declined:
      return text(message::reasonCancelled);
  }
  return {};
}

void dlgFaultDisplay::requestFailed(pbx::Failure failure, std::int32_t errorCode) {
  if (failure == pbx::Failure::declined) return;  // the user knows
  showAttemptFailed(reasonText(failure, errorCode));
}

void dlgFaultDisplay::showAttemptFailed(const std::u16string& reason) {
  const auto now = clock().regional(clock().now());
  const auto& exchange = session_.requestName();
  const bool acknowledging = state().stepCode == step::alarmStateRequest;
  const std::size_t line = acknowledging                                 ? message::statusAckFailed
                           : state().stepCode == step::alarmClearRequest ? message::statusResetFailed
                                                                         : message::statusAttemptFailed;
  attemptLine_ = fillText(messageText(state(), line), {now, reason, exchange});
  showStatus();
  waiting_.clear();
  failure_ = fillText(messageText(state(), message::noticeRequestFailed), {exchange, reason});
  showOwnNotice();
  if (state().runMode == RunMode::scheduledRun)
    runLogLine(fillText(messageText(state(), acknowledging ? message::runAckFailed : message::runListFailed),
                        {reason}));
}

// What an answer that came was worth; a good one makes an earlier failure old.
void dlgFaultDisplay::tellAttempt(bool good, std::size_t reason) {
  if (!good) return showAttemptFailed(messageText(state(), reason));
  attemptLine_.clear();
  showStatus();
}

void dlgFaultDisplay::listTaken(const store::ListAccount& account) {
  attemptLine_.clear();
  listLine_ = store::statusText(state(), account);
  showStatus();
  waiting_.clear();
  failure_.clear();
  if (!account.complete())
    failure_ = fillText(messageText(state(), message::noticeListFailed),
                        {account.exchange, store::reasonText(state(), account)});
  if (state().runMode == RunMode::scheduledRun) runLogLine(store::runLogText(state(), account));
}

// --- what a person does

// A press counts only between requests; one that comes while a call is served is dropped too.
bool dlgFaultDisplay::pressCounts(int action) {
  if (!alive() || depth_ > 0 || state().busy || timerEnabled_) return false;
  if (state().runMode == RunMode::scheduledRun) return false;
  const auto name = startup::buttonOfAction(action);
  return !name.empty() && model_.control(name).flag(u"Enabled");
}

void dlgFaultDisplay::buttonPressed(int action) {
  if (!pressCounts(action)) return;
  const Entry entry(*this);
  if (state().runMode != RunMode::creatingSchedule) return enableTimer(static_cast<std::int16_t>(action));
  // The request button stands for the one job there is.
  if (action == startup::actionRequest) enableTimer(5);
  if (action == startup::actionClose) CancelSchedule();
}

void dlgFaultDisplay::closeAsked() {
  const Entry entry(*this);
  if (!alive()) return;
  if (!QueryCancelRun() || !alive()) return;
  if (state().runMode == RunMode::creatingSchedule)
    CancelSchedule();
  else
    closeAction();
}

void dlgFaultDisplay::headingClicked(int column) {
  if (!alive() || depth_ > 0) return;
  const Entry entry(*this);
  store_.headingClicked(column);
  if (alive()) showNotice();
}

void dlgFaultDisplay::exchangeChosen(int listIndex) {
  if (!alive()) return;
  window::Control& list = model_.control(u"drpPBXList");
  if (depth_ > 0 || state().busy || timerEnabled_) return list.setListIndex(list.listIndex());
  const Entry entry(*this);
  list.setListIndex(listIndex);
  failure_.clear();  // it was about what was shown before
  store_.exchangeListClicked();
  if (alive()) showIdle();
}

std::optional<std::size_t> dlgFaultDisplay::lookUp(std::u16string_view text, std::ptrdiff_t after) {
  if (!alive() || depth_ > 0) return std::nullopt;
  const Entry entry(*this);
  return store_.lookUp(text, after);
}

// --- help

void dlgFaultDisplay::keyPressed(int keyCode) {
  const Entry entry(*this);
  if (keyCode == keyF1 && alive()) callHost(u"DisplayHelp", {automation::byRef(std::u16string(helpFile))});
}

void dlgFaultDisplay::mousePressed(window::Control& control, int button) {
  if (button != rightButton || !alive()) return;
  if (std::find(std::begin(whatsThisControls), std::end(whatsThisControls), control.name()) !=
      std::end(whatsThisControls))
    ShowWhatsThis(control);
}

void dlgFaultDisplay::ShowWhatsThis(window::Control& control) {
  const Entry entry(*this);
  if (!alive()) return;
  whatsThisTarget_ = &control;
  view().popUpMenu(u"mnuWhatsThis");
  whatsThisTarget_ = nullptr;
}

void dlgFaultDisplay::whatsThisChosen() {
  const Entry entry(*this);
  if (whatsThisTarget_ == nullptr || !alive()) return;
  const auto help = helpTexts_.find(whatsThisTarget_->name());
  view().showWhatsThis(*whatsThisTarget_,
                       help == helpTexts_.end() ? messageText(state(), message::noHelpText) : help->second);
}

}  // namespace vordane
