#include "pbx/pbx_session.h"

#include <algorithm>
#include <utility>

#include "pbx/answer_reading.h"

namespace vordane::pbx {
namespace {

using automation::AutomationError;
using automation::byRef;
using automation::byVal;
using automation::ObjectRef;

constexpr int answerNo = 7;
constexpr std::size_t serverAnswer = 1;  // message texts: before an identifier or a send result
constexpr std::size_t requestDone = 2;   // for an answer without a message of its own

constexpr std::u16string_view simulator = u"Zulsim.exe";
constexpr std::u16string_view simulatorServer = u"CalderinProj30001.cPBXOLE";

bool isRefusal(std::u16string_view answer) {
  return answer.empty() || answer == u"BUSY" || answer == u"ERROR";
}

std::int16_t actionOfTag(std::u16string_view tag) {
  try {
    const std::int16_t number = automation::toInteger(std::u16string(tag));
    const bool known =
        number == action::ingest || number == action::alarmsCleared || number == action::alarmState;
    return known ? number : std::int16_t{0};
  } catch (const AutomationError&) {
    return 0;
  }
}

// What a raised error stands for.
template <class Call>
std::u16string textOrEmpty(const Call& call) {
  try {
    return automation::toText(call());
  } catch (const AutomationError&) {
    return {};
  }
}

}  // namespace

// --- the server object

void PbxSession::CreateServer(platform::Files& files, platform::SettingsStore& settings,
                              platform::ObjectCreator& creator) {
  std::u16string progId(simulatorServer);
  if (!files.exists(simulator))
    progId = u"CalderinProj" + settings.read(u"Quilmar32", state_.AddinsSection, u"ZUL").value_or(u"") +
             u".cPBXOle";
  try {
    server_ = creator.create(progId);
  } catch (const AutomationError&) {
    server_.reset();
  }
}

ObjectRef PbxSession::server() {
  ObjectRef found = server_;
  if (!state_.StandAlone) {
    const ObjectRef host = form_.host();
    if (!host) throw AutomationError(automation::error::memberNotFound);
    found = automation::toObject(automation::get(*host, u"oPBX"));
  }
  if (!found) throw AutomationError(automation::error::memberNotFound);
  return found;
}

void PbxSession::hostCall(std::u16string_view member, std::initializer_list<automation::Argument> arguments) {
  const ObjectRef host = state_.StandAlone ? nullptr : form_.host();
  if (!host) return;
  try {
    automation::call(*host, member, arguments);
  } catch (const AutomationError&) {
    // A host that lacks a service or fails in it must not stop the conversation.
  }
}

void PbxSession::hostMessage(std::size_t number, const std::u16string& text) {
  hostCall(u"ShowMessage", {byVal(messageText(state_, number) + u" " + text)});
}

// --- requests

void PbxSession::takeRegistered() {
  request_.pbxName = form_.registeredName();
  request_.wide = state_.WideFaultFields;
}

bool PbxSession::RequestFaultList() {
  state_.stepCode = step::faultListRequest;
  if (state_.SysInfoBit8) {
    const int answer = form_.askBeforeRequest();
    if (!form_.alive()) return false;
    if (answer == answerNo) return refuse(Failure::declined);
  }
  takeRegistered();
  return send(step::faultListRequest, u"", u"10", true);
}

bool PbxSession::AcknowledgeFaultList() {
  return send(step::alarmStateRequest, u"", u"12", false);
}

bool PbxSession::AcknowledgeAndClear() {
  takeRegistered();
  return send(step::alarmClearRequest, u"CCC", u"11", false);
}

bool PbxSession::send(std::int16_t kind, std::u16string_view secondData, std::u16string_view tag, bool list) {
  state_.stepCode = kind;
  request_.kind = kind;
  auto record = std::make_shared<cListRequest>();
  if (kind == step::alarmStateRequest) record->ShowBusy = false;
  record->AddToList(list ? u"LEA0" : u"EA1", list ? u"" : u"00", secondData);
  record->Tag = tag;
  return LogInAndSend(*record, record);
}

bool PbxSession::refuse(Failure failure) {
  phase_ = Phase::idle;
  form_.requestFailed(failure, 0);
  return false;
}

bool PbxSession::LogInAndSend(cListRequest& record, const ObjectRef& reference) {
  form_.waitingFor(request_.kind);
  form_.setHourglass(true);
  if (state_.runMode == RunMode::scheduledRun) {
    record.Mode = static_cast<std::int16_t>(state_.runMode);
    record.Key = form_.jobKey();
  }
  phase_ = Phase::loggingIn;
  cancelAsked_ = false;
  loginId_ = logIn();
  if (!form_.alive()) return false;
  hostMessage(serverAnswer, loginId_);
  if (!form_.alive()) return false;
  if (isRefusal(loginId_)) {
    form_.setHourglass(false);
    const bool noServer = state_.StandAlone && !server_;
    return refuse(noServer              ? Failure::noServer
                  : loginId_ == u"BUSY" ? Failure::loginBusy
                                        : Failure::loginRefused);
  }
  record.LoginID = loginId_;
  record.PBXName = request_.pbxName;

  phase_ = Phase::sending;
  const std::u16string result = sendRequest(reference);
  if (!form_.alive()) return false;
  // Once the answer has come, what SendRequest said no longer matters.
  const bool answered = phase_ == Phase::idle;
  if (!answered && !isRefusal(result)) {
    accepted(result);
    return true;
  }
  phase_ = Phase::idle;
  hostMessage(serverAnswer, result);
  if (!form_.alive()) return false;
  if (answered) return true;
  LogOut(loginId_);
  return form_.alive() && refuse(Failure::sendFailed);
}

// The answer is waited for from here on; one that comes before the host knows that much is held.
void PbxSession::accepted(const std::u16string& result) {
  phase_ = Phase::waiting;
  announcing_ = true;
  hostMessage(serverAnswer, result);
  if (form_.alive()) {
    form_.setInputEnabled(false);
    hostCall(u"TurnOnFlow");
  }
  announcing_ = false;
  const auto answer = std::exchange(held_, std::nullopt);
  if (!answer) return;
  showAnswer(*answer);
  conclude(*answer);
}

std::u16string PbxSession::logIn() {
  return textOrEmpty([&] {
    return automation::call(*server(), u"Login", {byRef(request_.pbxName), byVal(form_.caller())});
  });
}

std::u16string PbxSession::sendRequest(const ObjectRef& record) {
  return textOrEmpty([&] { return automation::call(*server(), u"SendRequest", {byRef(record)}); });
}

void PbxSession::LogOut(const std::u16string& loginId) {
  try {
    automation::call(*server(), u"LogOut", {byRef(request_.pbxName), byRef(loginId)});
  } catch (const AutomationError&) {
    // The exchange server ends what was left open by itself.
  }
  hostCall(u"TurnOffFlow");
  if (!form_.alive()) return;
  form_.setInputEnabled(true);
  form_.setHourglass(false);
}

void PbxSession::CancelRequest() {
  if (isRefusal(loginId_)) return;
  cancelAsked_ = true;
  try {
    automation::call(*server(), u"CancelRequest", {byRef(request_.pbxName), byRef(loginId_)});
  } catch (const AutomationError&) {
    // The answer, or its absence, is dealt with as ever.
  }
}

void PbxSession::interrupt() {
  const bool open = phase_ == Phase::sending || phase_ == Phase::waiting;
  phase_ = open ? Phase::interrupted : Phase::idle;
}

void PbxSession::release() {
  server_.reset();
}

// --- the answer

bool PbxSession::isAnswer(const std::u16string& loginId) const {
  const bool expected = phase_ == Phase::sending || phase_ == Phase::waiting || phase_ == Phase::interrupted;
  return expected && (loginId.empty() || loginId == loginId_);
}

void PbxSession::CallBack(const ObjectRef& response) {
  if (!response || !isAnswer({})) return;
  std::u16string loginId;
  try {
    loginId = readText(*response, u"LoginID").value_or(u"");
  } catch (const ServerGone&) {
  }
  if (!isAnswer(loginId)) return;  // asked again: another call may have been served meanwhile
  if (loginId.empty()) loginId = loginId_;
  if (std::exchange(phase_, Phase::idle) == Phase::interrupted) return LogOut(loginId);

  Answer answer = take(*response);
  answer.loginId = loginId;
  if (!announcing_) showAnswer(answer);
  stopByLog(*response, answer);
  if (announcing_)
    held_ = std::move(answer);
  else
    conclude(answer);
}

// All that is read of the record but the run log's lines.
PbxSession::Answer PbxSession::take(automation::Object& response) {
  const bool copied = copy(response);
  Answer answer = judge(response, copied);
  if (!form_.alive()) return answer;
  try {
    answer.message = readText(response, u"Message");
  } catch (const ServerGone&) {
  }
  return answer;
}

void PbxSession::stopByLog(automation::Object& response, Answer& answer) {
  if (!form_.alive() || state_.runMode != RunMode::scheduledRun || !form_.logResponse(response)) return;
  answer.action = action::stopRun;
  answer.success = true;
}

// False when the record could not be read as a whole.
bool PbxSession::copy(automation::Object& response) {
  copy_.Clear();
  truncated_ = false;
  try {
    const auto count = readLong(response, u"Count");
    if (!count) return false;
    truncated_ = *count > maximumEntries;
    copyEntries(response, std::min(*count, maximumEntries));
    return true;
  } catch (const ServerGone&) {
    return false;
  }
}

// A value that can't be read is empty at its place, so that groups of four stay together.
void PbxSession::copyEntries(automation::Object& response, std::int32_t count) {
  for (std::int32_t i = 0; i < count && form_.alive(); ++i) {
    const auto cmd = readEntry(response, u"CMD", i);
    const auto first = readEntry(response, u"FirstData", i);
    const auto second = readEntry(response, u"SecondData", i);
    copy_.AddToList(cmd, first, second);
    copy_.set(cListRequest::Column::ExtraData, i, readEntry(response, u"ExtraData", i));
  }
}

PbxSession::Answer PbxSession::judge(automation::Object& response, bool copied) {
  Answer answer;
  answer.unreadable = true;
  if (!form_.alive() || !copied) return answer;
  try {
    const auto code = readLong(response, u"ErrCode");
    if (!code) return answer;
    answer.unreadable = false;
    answer.errorCode = *code;
    if (*code % 100 != 0) return answer;
    answer.action = actionOfTag(readText(response, u"Tag").value_or(u""));
    answer.success = answer.action != 0;
    if (!answer.success) return answer;
    if (readText(response, u"Message") == u"")
      automation::put(response, u"Message", messageText(state_, requestDone));
  } catch (const ServerGone&) {
    answer = {};
    answer.unreadable = true;
  } catch (const AutomationError&) {
    // A message that can't be written stays as it is.
  }
  return answer;
}

void PbxSession::showAnswer(const Answer& answer) {
  if (form_.alive() && answer.message) hostCall(u"ShowMessage", {byVal(*answer.message)});
  if (form_.alive() && !answer.unreadable) hostCall(u"ShowCode", {byVal(answer.errorCode)});
}

void PbxSession::conclude(const Answer& answer) {
  LogOut(answer.loginId);
  if (!form_.alive()) return;
  if (!answer.success || answer.action == action::stopRun)
    form_.requestFailed(failureOf(answer), answer.errorCode);
  if (answer.success)
    form_.actionFollows(answer.action);
  else
    form_.answerFailed();
}

Failure PbxSession::failureOf(const Answer& answer) const {
  if (answer.unreadable) return Failure::unreadable;
  return cancelAsked_ ? Failure::cancelled : Failure::errorCode;
}

}  // namespace vordane::pbx
