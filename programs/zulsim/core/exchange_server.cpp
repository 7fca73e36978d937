#include "zulsim/core/exchange_server.h"

#include <algorithm>

#include "text/numbers.h"
#include "text/text.h"

namespace vordane::zulsim {
namespace {

using automation::Argument;
using automation::AutomationError;
using automation::CallKind;
using automation::ClassTable;
using automation::Member;
using automation::MemberKind;
using automation::ObjectRef;
using automation::Parameter;
using automation::Type;
using automation::Value;

constexpr Parameter loginParameters[] = {{u"PBXName", Type::text}, {u"Caller", Type::object}};
constexpr Parameter sendParameters[] = {{u"Request", Type::object}};
constexpr Parameter sessionParameters[] = {{u"PBXName", Type::text}, {u"LoginID", Type::text}};

enum MemberIndex : std::size_t { loginMember, sendMember, logOutMember, cancelMember };
constexpr Member members[] = {
    {u"Login", 1, MemberKind::method, Type::text, loginParameters},
    {u"SendRequest", 2, MemberKind::method, Type::text, sendParameters},
    {u"LogOut", 3, MemberKind::method, Type::none, sessionParameters},
    {u"CancelRequest", 4, MemberKind::method, Type::none, sessionParameters},
};

constexpr ClassTable serverTable{u"cPBXOLE",
                                 u"CalderinProj30001.cPBXOLE",
                                 u"A simulated exchange server for development, training and demonstrations.",
                                 "{5C1B0E50-8A0F-4B36-9B7D-6E1D3C9A4F12}",
                                 "{5C1B0E51-8A0F-4B36-9B7D-6E1D3C9A4F12}",
                                 members};

constexpr std::u16string_view refused = u"ERROR";
constexpr std::int32_t cancelledByUser = 61;
constexpr int cancelMilliseconds = 1500;
constexpr int betweenLooks = 20;  // milliseconds from one look for a word to the next

std::u16string quoted(std::u16string_view text) {
  return u"\"" + std::u16string(text) + u"\"";
}

// "EA1/00/CCC": command, first and second data, without what is empty at the end.
std::u16string keyOf(std::u16string_view command, std::u16string_view first, std::u16string_view second) {
  std::u16string key(command);
  if (!first.empty() || !second.empty()) key += u"/" + std::u16string(first);
  if (!second.empty()) key += u"/" + std::u16string(second);
  return key;
}

std::u16string entryText(automation::Object& record, std::u16string_view member) {
  return automation::toText(automation::get(record, member, {automation::byVal(std::int16_t{0})}));
}

bool isFailure(std::u16string_view text) {
  return text.empty() || text == u"BUSY" || text == refused;
}

// What an exchange answers to a command that its scenario says nothing about.
Answer ordinaryAnswer(std::u16string_view key, const std::u16string& alarm) {
  Answer answer;
  if (text::equalIgnoringCase(key, u"LEA0")) {
    answer.parts.emplace_back(Entry{u"DATA NOT FOUND", {}, {}, {}});
  } else if (text::equalIgnoringCase(key, u"EA1/00")) {
    answer.parts.emplace_back(Entry{u"00", alarm, u"OK", {}});
  } else if (text::equalIgnoringCase(key, u"EA1/00/CCC")) {
    answer.parts.emplace_back(Entry{u"00", u"CCC", u"OK", {}});
    answer.alarm = u"00";
  } else {
    answer.parts.emplace_back(Entry{u"CODE NOT USED", {}, {}, {}});
    answer.errCode = 1;
    answer.message = u"CODE NOT USED";
  }
  return answer;
}

Answer cancelledAnswer(const Exchange& exchange) {
  Answer answer;
  answer.parts.emplace_back(Entry{u"ZUL_USERCANCEL", {}, {}, {}});
  answer.errCode = cancelledByUser;
  answer.message = u"ZUL_USERCANCEL";
  if (exchange.cancelledWhen.empty())
    answer.delay = cancelMilliseconds;
  else
    answer.when = {exchange.cancelledWhen};
  return answer;
}

}  // namespace

std::size_t Simulation::use(std::u16string_view name, std::u16string_view what) {
  return uses_[std::u16string(name) + u"\n" + std::u16string(what)]++;
}

std::u16string Simulation::nextIdentifier(std::u16string_view prefix) {
  return std::u16string(prefix) + text::decimal(++identifiers_[std::u16string(prefix)]);
}

std::u16string& Simulation::alarmOf(const Exchange& exchange, std::u16string_view name) {
  return alarms_.try_emplace(std::u16string(name), exchange.alarm).first->second;
}

const ClassTable& ExchangeServer::classTable() {
  return serverTable;
}

Value ExchangeServer::invokeMember(std::size_t member, CallKind, std::span<Argument> arguments) {
  const auto textAt = [&](std::size_t position) { return automation::toText(arguments[position].value); };
  switch (member) {
    case loginMember:
      return Login(textAt(0), automation::toObject(arguments[1].value));
    case sendMember:
      return SendRequest(automation::toObject(arguments[0].value));
    case logOutMember:
      LogOut(textAt(0), textAt(1));
      break;
    default:
      CancelRequest(textAt(0), textAt(1));
      break;
  }
  return automation::Empty{};
}

// Plays the next step of a sequence: its pause, its error or its text; nothing when the call is ignored.
std::optional<std::u16string> ExchangeServer::reply(const Session& session, std::u16string_view what,
                                                    const std::vector<Reply>& sequence,
                                                    std::u16string_view identifier) {
  const std::size_t use = simulation_->use(session.name, what);
  const Reply step = sequence.empty() ? Reply{} : stepOf(sequence, use, session.exchange->repeatAll);
  if (step.pause > 0) simulation_->services().pause(step.pause);
  if (step.kind == Reply::Kind::raise) throw AutomationError(step.code, step.text, u"Zulsim");
  if (step.kind == Reply::Kind::ignore) return std::nullopt;
  if (step.kind == Reply::Kind::text || !step.text.empty() || identifier.empty()) return step.text;
  return simulation_->nextIdentifier(identifier);
}

std::u16string ExchangeServer::Login(const std::u16string& PBXName, ObjectRef caller) {
  simulation_->services().log(u"Login " + quoted(PBXName));
  Session opened{{}, PBXName, simulation_->exchange(PBXName), std::move(caller)};
  if (!opened.exchange) return std::u16string(refused);
  opened.id = reply(opened, u"login", opened.exchange->login, u"SIM-").value_or(std::u16string{});
  simulation_->services().log(u"Login = " + quoted(opened.id));
  if (!isFailure(opened.id)) sessions_.push_back(opened);
  return opened.id;
}

const ExchangeServer::Session* ExchangeServer::session(std::u16string_view loginId) const {
  for (const Session& session : sessions_)
    if (session.id == loginId) return &session;
  return nullptr;
}

std::u16string ExchangeServer::SendRequest(const ObjectRef& record) {
  if (!record) throw AutomationError(automation::error::typeMismatch, {}, {}, 0);
  const std::u16string loginId = automation::toText(automation::get(*record, u"LoginID"));
  const Session* found = session(loginId);
  if (!found) {
    simulation_->services().log(u"SendRequest without a log-in: " + quoted(loginId));
    return std::u16string(refused);
  }
  const Session asking = *found;  // an answer that comes early may log out
  const std::shared_ptr<Request> request = requestOf(asking, record);
  std::u16string text =
      reply(asking, u"send", asking.exchange->send, u"ACCEPTED-").value_or(std::u16string{});
  simulation_->services().log(u"SendRequest " + request->key + u" = " + quoted(text));
  if (isFailure(text)) return text;
  const std::size_t use = simulation_->use(asking.name, request->key);
  const Command* command = findCommand(*asking.exchange, request->key);
  request->answer = command
                        ? stepOf(command->answers, use, asking.exchange->repeatAll)
                        : ordinaryAnswer(request->key, simulation_->alarmOf(*asking.exchange, asking.name));
  requests_.push_back(request);
  if (request->answer.early)
    deliver(request);
  else if (!request->answer.never)
    schedule(request);
  return text;
}

std::shared_ptr<ExchangeServer::Request> ExchangeServer::requestOf(const Session& session,
                                                                   const ObjectRef& record) {
  auto request = std::make_shared<Request>();
  request->loginId = session.id;
  request->name = session.name;
  request->exchange = session.exchange;
  request->caller = session.caller;
  request->record = record;
  // The first entry is the command; the records that this server meets hold no more.
  request->command = entryText(*record, u"CMD");
  request->key = keyOf(request->command, entryText(*record, u"FirstData"), entryText(*record, u"SecondData"));
  return request;
}

void ExchangeServer::schedule(const std::shared_ptr<Request>& request) {
  // A waiting request lives in the server object and nowhere else, so its being there proves the other.
  answerWhen(request, request->answer.delay);
}

// Delivers the answer after that time, and when its words have been given.
void ExchangeServer::answerWhen(const std::shared_ptr<Request>& request, int milliseconds) {
  simulation_->services().after(milliseconds, [this, weak = std::weak_ptr(request)] {
    const auto due = weak.lock();
    if (!due) return;
    std::vector<std::u16string>& words = due->answer.when;
    while (!words.empty() && simulation_->services().taken(words.front())) words.erase(words.begin());
    if (words.empty()) return deliver(due);
    answerWhen(due, betweenLooks);
  });
}

void ExchangeServer::deliver(const std::shared_ptr<Request>& request) {
  const auto place = std::find(requests_.begin(), requests_.end(), request);
  if (place == requests_.end()) return;
  requests_.erase(place);
  const std::shared_ptr<Simulation> simulation = simulation_;  // the call may release this server
  if (request->answer.vanishAfter == 0) return simulation->services().vanish();
  if (request->answer.alarm) simulation->alarmOf(*request->exchange, request->name) = *request->answer.alarm;
  const ObjectRef record = answered(*request);
  for (int time = 0; time < (request->answer.twice ? 2 : 1); ++time) {
    simulation->services().log(u"CallBack " + request->key + u" to " + quoted(request->loginId));
    try {
      automation::call(*request->caller, u"CallBack", {automation::byVal(record)});
    } catch (const AutomationError&) {
      simulation->services().log(u"CallBack failed");
    }
  }
  if (!request->answer.then.empty()) simulation->services().give(request->answer.then);
}

ObjectRef ExchangeServer::answered(const Request& request) {
  const auto own = std::make_shared<AnswerRecord>();
  const Answer& answer = request.answer;
  const std::vector<Entry> entries = entriesOf(answer, request.exchange->number);
  if (answer.sentRecord) {
    automation::call(*request.record, u"Clear");
    for (const Entry& entry : entries)
      automation::call(*request.record, u"AddToList",
                       {automation::byVal(request.command), automation::byVal(entry.FirstData),
                        automation::byVal(entry.SecondData), automation::byVal(entry.ExtraData),
                        automation::byVal(entry.DescriptionData)});
    automation::put(*request.record, u"ErrCode", answer.errCode);
    if (answer.loginId) automation::put(*request.record, u"LoginID", *answer.loginId);
    if (answer.tag) automation::put(*request.record, u"Tag", *answer.tag);
    return request.record;
  }
  own->copyHead(*request.record);
  for (const Entry& entry : entries) own->addEntry(request.command, entry);
  own->setScalar(u"ErrCode", answer.errCode);
  own->setScalar(u"Message", answer.message);
  if (answer.loginId) own->setScalar(u"LoginID", *answer.loginId);
  if (answer.tag) own->setScalar(u"Tag", *answer.tag);
  for (const std::u16string& member : answer.omitted) own->omit(member);
  if (answer.vanishAfter)
    own->watch([&services = simulation_->services(), left = *answer.vanishAfter]() mutable {
      if (--left < 0) services.vanish();
    });
  return own;
}

void ExchangeServer::LogOut(const std::u16string& PBXName, const std::u16string& LoginID) {
  simulation_->services().log(u"LogOut " + quoted(PBXName) + u" " + quoted(LoginID));
  const Session* found = session(LoginID);
  if (!found) return;
  const Session leaving = *found;
  forget(LoginID);
  reply(leaving, u"logout", leaving.exchange->logOut, {});
}

void ExchangeServer::forget(std::u16string_view loginId) {
  std::erase_if(sessions_, [&](const Session& session) { return session.id == loginId; });
  std::erase_if(requests_,
                [&](const std::shared_ptr<Request>& request) { return request->loginId == loginId; });
}

void ExchangeServer::CancelRequest(const std::u16string& PBXName, const std::u16string& LoginID) {
  simulation_->services().log(u"CancelRequest " + quoted(PBXName) + u" " + quoted(LoginID));
  const Session* found = session(LoginID);
  if (!found || !reply(*found, u"cancel", found->exchange->cancel, {})) return;
  for (std::shared_ptr<Request>& request : requests_) {
    if (request->loginId != LoginID) continue;
    // A new object, so that the timer of the answer it replaces finds nothing.
    request = std::make_shared<Request>(*request);
    request->answer = cancelledAnswer(*request->exchange);
    schedule(request);
  }
}

}  // namespace vordane::zulsim
