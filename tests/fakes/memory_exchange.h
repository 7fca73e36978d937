// An exchange server that behaves: it lets in, takes a request and answers when the test says so, or while
// it still takes the request. Every call it gets goes into the story's trace.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "fakes/scripted_object.h"
#include "pbx/cListRequest.h"
#include "text/numbers.h"
#include "text/utf8.h"

namespace vordane::fakes {

using Trace = std::vector<std::string>;

// The server's own record: the request that it was sent, and a message.
class ServerRecord : public automation::Object {
 public:
  explicit ServerRecord(std::shared_ptr<automation::Object> request) : request_(std::move(request)) {}

  automation::Value invoke(std::u16string_view member, automation::CallKind kind,
                           std::span<automation::Argument> arguments) override {
    if (broken && broken(member)) throw automation::AutomationError(brokenWith);
    if (text::equalIgnoringCase(member, u"Message")) {
      if (!hasMessage) throw automation::AutomationError(automation::error::unknownName);
      if (!automation::isPut(kind)) return message;
      message = automation::toText(arguments[0].value);
      return {};
    }
    if (text::equalIgnoringCase(member, u"Count") && count) return *count;
    if (text::equalIgnoringCase(member, u"LoginID") && loginId && !automation::isPut(kind)) return *loginId;
    return request_->invoke(member, kind, arguments);
  }

  bool hasMessage = true;
  std::u16string message;
  std::optional<automation::Value> count, loginId;
  std::function<bool(std::u16string_view member)> broken;
  std::int32_t brokenWith = automation::error::runTime(5);

 private:
  std::shared_ptr<automation::Object> request_;
};

class MemoryExchange : public ScriptedObject {
 public:
  explicit MemoryExchange(Trace& trace) : trace_(trace) {
    on(u"Login", [this](auto arguments) { return logIn(arguments); });
    on(u"SendRequest", [this](auto arguments) { return send(arguments); });
    on(u"LogOut", [this](auto arguments) { return both("LogOut", arguments); });
    on(u"CancelRequest", [this](auto arguments) { return both("CancelRequest", arguments); });
  }

  // The answer to the last request taken, with one entry for each text given as FirstData.
  std::shared_ptr<ServerRecord> record(std::int32_t errCode = 0,
                                       const std::vector<std::u16string>& entries = {}) {
    automation::call(*request, u"Clear");
    for (const auto& entry : entries)
      automation::call(*request, u"AddToList",
                       {automation::byVal(std::u16string(u"LEA0")), automation::byVal(entry)});
    automation::put(*request, u"ErrCode", errCode);
    return std::make_shared<ServerRecord>(request);
  }
  void callBack(const automation::ObjectRef& answer) {
    automation::call(*caller, u"CallBack", {automation::byVal(answer)});
  }
  void answer(std::int32_t errCode = 0, const std::vector<std::u16string>& entries = {}) {
    callBack(record(errCode, entries));
  }
  // The alarm state's answer: one entry whose SecondData is the lamp text.
  void answerLamps(std::u16string lamps) {
    const auto answered = record();
    automation::call(*request, u"AddToList",
                     {automation::byVal(std::u16string(u"EA1")), automation::byVal(std::u16string(u"00")),
                      automation::byVal(std::move(lamps))});
    callBack(answered);
  }

  automation::Value loginAnswer = std::u16string(u"L1");
  automation::Value sendAnswer = std::u16string(u"ACCEPTED");
  bool loginRaises = false, sendRaises = false;
  std::function<void()> duringLogin, duringSend;
  std::shared_ptr<automation::Object> request;
  automation::ObjectRef caller;

 private:
  static std::string utf8(const automation::Argument& argument) {
    return text::toUtf8(automation::toText(argument.value)) + (argument.byReference ? "&" : "");
  }

  automation::Value logIn(std::span<automation::Argument> arguments) {
    trace_.push_back("Login " + utf8(arguments[0]));
    caller = automation::toObject(arguments[1].value);
    if (duringLogin) duringLogin();
    if (loginRaises) throw automation::AutomationError(automation::error::runTime(5));
    return loginAnswer;
  }

  automation::Value send(std::span<automation::Argument> arguments) {
    request = automation::toObject(arguments[0].value);
    const auto text = [&](std::u16string_view member) {
      return text::toUtf8(automation::toText(automation::get(*request, member)));
    };
    const auto entry = [&](std::u16string_view member) {
      return text::toUtf8(
          automation::toText(automation::get(*request, member, {automation::byVal(std::int16_t{0})})));
    };
    // Read one after the other, as a server does.
    const std::string cmd = entry(u"CMD"), first = entry(u"FirstData"), second = entry(u"SecondData"),
                      tag = text(u"Tag"), name = text(u"PBXName"), login = text(u"LoginID"),
                      busy = text(u"ShowBusy"), mode = text(u"Mode"), key = text(u"Key");
    trace_.push_back("SendRequest " + cmd + "/" + first + "/" + second + " tag " + tag + " for " + name +
                     " as " + login + " busy " + busy + " mode " + mode + " key " + key);
    if (duringSend) duringSend();
    if (sendRaises) throw automation::AutomationError(automation::error::runTime(5));
    return sendAnswer;
  }

  automation::Value both(const char* name, std::span<automation::Argument> arguments) {
    trace_.push_back(std::string(name) + " " + utf8(arguments[0]) + " " + utf8(arguments[1]));
    return {};
  }

  Trace& trace_;
};

}  // namespace vordane::fakes
