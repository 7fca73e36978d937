#include "pbx/pbx_session.h"

#include <algorithm>
#include <array>
#include <new>
#include <utility>

#include "pbx/answer_reading.h"
#include "settings/suite_settings.h"
#include "text/numbers.h"

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

std::optional<Action> actionOfTag(std::u16string_view tag) {
  try {
    const auto action = static_cast<Action>(automation::toInteger(std::u16string(tag)));
    if (isAnswer(action)) return action;
  } catch (const AutomationError&) {
    // No number is no action either.
  }
  return {};
}

std::u16string tagOf(Action action) {
  return text::decimal(static_cast<std::int16_t>(action));
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

// A step whose failure, a lack of memory included, must not stop what follows.
template <class Step>
void regardless(const Step& step) {
  try {
    step();
  } catch (const std::exception&) {
    // Whatever a host or a server lacks or does, every further step still runs.
  }
}

// A lack of memory may be over in a moment: what an unreadable answer took has been freed.
template <class Step>
void twice(const Step& step) {
  try {
    step();
  } catch (const std::bad_alloc&) {
    step();
  }
}

// Runs a step of taking an answer; what it raises is told as the reason why the answer could not be read.
template <class Step>
void reading(std::optional<Failure>& unreadable, const Step& step) {
  try {
    step();
  } catch (const std::bad_alloc&) {
    unreadable = Failure::noMemory;
  } catch (const std::exception&) {
    unreadable = Failure::unreadable;
  }
}

}  // namespace

// --- the server object

bool PbxSession::createServer(platform::Files& files, platform::SettingsStore& settings,
                              platform::ObjectCreator& creator) {
  const bool simulated = files.exists(simulator);
  std::u16string progId(simulatorServer);
  if (!simulated)
    progId =
        u"CalderinProj" +
        settings.read(u"Quilmar32", state_.AddinsSection, settings::setting::exchangeVersion).value_or(u"") +
        u".cPBXOle";
  try {
    server_ = creator.create(progId);
  } catch (const AutomationError&) {
    server_.reset();
  }
  return simulated;
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
  regardless([&] { automation::call(*host, member, arguments); });
}

void PbxSession::hostMessage(std::size_t number, const std::u16string& text) {
  regardless([&] { hostCall(u"ShowMessage", {byVal(messageText(state_, number) + u" " + text)}); });
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
  return send(step::faultListRequest, u"", Action::ingest, true);
}

bool PbxSession::AcknowledgeFaultList() {
  return send(step::alarmStateRequest, u"", Action::alarmState, false);
}

bool PbxSession::AcknowledgeAndClear() {
  takeRegistered();
  return send(step::alarmClearRequest, u"CCC", Action::alarmsCleared, false);
}

bool PbxSession::send(std::int16_t kind, std::u16string_view secondData, Action answer, bool list) try {
  const Step step(*this);
  state_.stepCode = kind;
  request_.kind = kind;
  auto record = std::make_shared<cListRequest>();
  if (kind == step::alarmStateRequest) record->ShowBusy = false;
  record->AddToList(list ? u"LEA0" : u"EA1", list ? u"" : u"00", secondData);
  record->Tag = tagOf(answer);
  return logInAndSend(*record, record);
} catch (const std::bad_alloc&) {
  return endWithoutMemory();
}

// No memory for a request is the end of that request alone. False.
bool PbxSession::endWithoutMemory() {
  const Step step(*this);
  phase_ = Phase::idle;
  LogOut();
  if (!form_.alive()) return false;
  form_.setHourglass(false);
  regardless([&] { refuse(Failure::noMemory); });
  return false;
}

FailedRequest PbxSession::failed(Failure failure, std::int32_t errorCode) const {
  return {request_.kind, request_.pbxName, failure, errorCode};
}

bool PbxSession::refuse(Failure failure, std::int32_t errorCode) {
  phase_ = Phase::idle;
  form_.requestFailed(failed(failure, errorCode));
  return false;
}

bool PbxSession::logInAndSend(cListRequest& record, const ObjectRef& reference) {
  form_.waitingFor(request_.kind, request_.pbxName);
  form_.setHourglass(true);
  if (state_.runMode == RunMode::scheduledRun) {
    record.Mode = static_cast<std::int16_t>(state_.runMode);
    record.Key = form_.jobKey();
  }
  phase_ = Phase::loggingIn;
  cancelAsked_ = false;
  logIn();
  if (!form_.alive()) return abandon();
  hostMessage(serverAnswer, loginId_);
  if (!form_.alive()) return abandon();
  if (isRefusal(loginId_)) {
    form_.setHourglass(false);
    return refuse(loginFailure(), loginError_);
  }
  record.LoginID = loginId_;
  record.PBXName = request_.pbxName;

  phase_ = Phase::sending;
  const std::u16string result = sendRequest(reference);
  if (!form_.alive()) return phase_ == Phase::interrupted && isRefusal(result) && abandon();
  // Once the answer has come, what SendRequest said no longer matters.
  const bool answered = phase_ == Phase::idle;
  if (!answered && !isRefusal(result)) {
    accepted(result);
    return true;
  }
  phase_ = Phase::idle;
  hostMessage(serverAnswer, result);
  if (!form_.alive()) return !answered && abandon();
  if (answered) return true;
  LogOut();
  return form_.alive() && refuse(Failure::sendFailed);
}

// The window has ended meanwhile and no answer will come: the exchange is let go all the same. False.
bool PbxSession::abandon() {
  phase_ = Phase::idle;
  LogOut();
  return false;
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
  if (auto answer = std::exchange(held_, std::nullopt)) conclude(*answer);
}

// A raised error counts as an empty identifier; only what the user is told differs.
void PbxSession::logIn() {
  loginError_ = 0;
  std::u16string name = request_.pbxName, identifier;  // the last ones stand until there are new ones
  try {
    identifier = automation::toText(
        automation::call(*server(), u"Login", {byRef(request_.pbxName), byVal(form_.caller())}));
  } catch (const AutomationError& failure) {
    loginError_ = failure.code();
  }
  loggedIn_ = !isRefusal(identifier);
  loginId_ = std::move(identifier);
  loginName_ = std::move(name);
}

Failure PbxSession::loginFailure() const {
  if (state_.StandAlone && !server_) return Failure::noServer;
  if (loginError_ != 0) return Failure::unreachable;
  return loginId_ == u"BUSY" ? Failure::loginBusy : Failure::loginRefused;
}

std::u16string PbxSession::sendRequest(const ObjectRef& record) {
  return textOrEmpty([&] { return automation::call(*server(), u"SendRequest", {byRef(record)}); });
}

// Once for each log-in.
void PbxSession::LogOut() {
  if (!std::exchange(loggedIn_, false)) return;
  regardless([&] {
    // Only what the call needs is made again when memory ran out; the call itself is made once.
    ObjectRef exchange;
    std::array<automation::Argument, 2> arguments;
    twice([&] {
      exchange = server();
      arguments = {byRef(loginName_), byRef(loginId_)};
    });
    automation::call(*exchange, u"LogOut", arguments);
  });
  hostCall(u"TurnOffFlow");
  if (!form_.alive()) return;
  form_.setInputEnabled(true);
  form_.setHourglass(false);
}

void PbxSession::CancelRequest() {
  if (isRefusal(loginId_)) return;
  cancelAsked_ = true;
  // The answer, or its absence, is dealt with as ever.
  regardless([&] { automation::call(*server(), u"CancelRequest", {byRef(loginName_), byRef(loginId_)}); });
}

void PbxSession::interrupt() {
  const bool open = phase_ == Phase::sending || phase_ == Phase::waiting;
  phase_ = open ? Phase::interrupted : Phase::idle;
}

PbxSession::Step::~Step() {
  --session_.steps_;
  session_.letServerGo();
}

void PbxSession::release() {
  released_ = true;
  letServerGo();
}

// An answer of an own server that is let go could come nowhere, so the exchange is let go first.
void PbxSession::letServerGo() {
  if (!released_ || steps_ > 0) return;
  if (state_.StandAlone) {
    phase_ = Phase::idle;
    LogOut();
  }
  server_.reset();
}

// --- the answer

bool PbxSession::isAnswer(const std::u16string& loginId) const {
  const bool expected = phase_ == Phase::sending || phase_ == Phase::waiting || phase_ == Phase::interrupted;
  return expected && (loginId.empty() || loginId == loginId_);
}

// Empty for one that can't be read, which stands for the own one.
std::u16string PbxSession::identifierOf(automation::Object& response) {
  std::u16string identifier;
  regardless([&] {
    try {
      identifier = readText(response, u"LoginID").value_or(u"");
    } catch (const ServerGone&) {
    }
  });
  return identifier;
}

void PbxSession::CallBack(const ObjectRef& response) {
  if (!response || !isAnswer({})) return;
  const Step step(*this);
  // Asked again: another call may have been served meanwhile.
  if (!isAnswer(identifierOf(*response))) return;
  if (std::exchange(phase_, Phase::idle) == Phase::interrupted) return LogOut();

  Answer answer = take(*response);
  if (announcing_)
    held_ = std::move(answer);
  else
    conclude(answer);
}

// All that is read of the record.
PbxSession::Answer PbxSession::take(automation::Object& response) {
  Answer answer;
  answer.unreadable = copy(response);
  reading(answer.unreadable, [&] { judge(response, answer); });
  if (form_.alive())
    reading(answer.unreadable, [&] {
      try {
        answer.message = readText(response, u"Message");
      } catch (const ServerGone&) {
      }
    });
  return answer;
}

// Why the record could not be read as a whole.
std::optional<Failure> PbxSession::copy(automation::Object& response) {
  copy_.Clear();
  truncated_ = cut_ = false;
  std::optional<Failure> unreadable;
  reading(unreadable, [&] {
    try {
      const auto count = readLong(response, u"Count");
      if (!count) {
        unreadable = Failure::unreadable;
        return;
      }
      truncated_ = *count > maximumEntries;
      const Copied copied =
          copyEntries(response, std::min(*count, maximumEntries), copy_, [this] { return form_.alive(); });
      cut_ = copied.cut;
      if (copied.tooLarge) unreadable = Failure::tooLarge;
    } catch (const ServerGone&) {
      unreadable = Failure::unreadable;
    }
  });
  if (unreadable == Failure::noMemory) copy_.Clear();
  return unreadable;
}

void PbxSession::judge(automation::Object& response, Answer& answer) {
  if (!form_.alive()) return;
  try {
    answer.errorCode = readLong(response, u"ErrCode");
    if (!answer.errorCode) answer.unreadable = answer.unreadable.value_or(Failure::unreadable);
    if (answer.unreadable || *answer.errorCode % 100 != 0) return;
    answer.action = actionOfTag(readText(response, u"Tag").value_or(u""));
    answer.success = answer.action.has_value();
    if (!answer.success) return;
    if (readText(response, u"Message") == u"")
      automation::put(response, u"Message", messageText(state_, requestDone));
  } catch (const ServerGone&) {
    answer = {};
    answer.unreadable = Failure::unreadable;
  } catch (const AutomationError&) {
    // A message that can't be written stays as it is.
  }
}

void PbxSession::showAnswer(Answer& answer) {
  if (form_.alive() && answer.message)
    reading(answer.unreadable, [&] { hostCall(u"ShowMessage", {byVal(std::move(*answer.message))}); });
  if (form_.alive() && answer.errorCode)
    reading(answer.unreadable, [&] { hostCall(u"ShowCode", {byVal(*answer.errorCode)}); });
}

void PbxSession::stopByLog(Answer& answer) {
  if (!form_.alive() || state_.runMode != RunMode::scheduledRun) return;
  if (!form_.logResponse(copy_, answer.errorCode)) return;
  answer.action = Action::stopRun;
}

// All that follows an answer, whatever became of it.
void PbxSession::conclude(Answer& answer) {
  showAnswer(answer);
  stopByLog(answer);
  LogOut();
  if (!form_.alive()) return;
  const bool stops = answer.action == Action::stopRun;
  const bool taken = answer.success && !answer.unreadable;
  if (!taken || stops)
    regardless([&] {
      FailedRequest request = failed(failureOf(answer), answer.errorCode.value_or(0));
      request.answer = &copy_;
      twice([&] { form_.requestFailed(request); });
    });
  form_.concluded(taken || stops ? answer.action : std::nullopt);
}

Failure PbxSession::failureOf(const Answer& answer) const {
  if (answer.unreadable) return *answer.unreadable;
  return cancelAsked_ ? Failure::cancelled : Failure::errorCode;
}

}  // namespace vordane::pbx
