// The conversation with an exchange: log in through the exchange server, send a request record, take the
// answer when the server calls back, log out. One request at a time, one thread; other calls are served
// while an outgoing one waits, so the window may have ended when a call returns.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "pbx/cListRequest.h"
#include "pbx/failure.h"
#include "pbx/received_list.h"
#include "platform/action.h"
#include "platform/automation.h"
#include "platform/services.h"
#include "settings/shared_state.h"

namespace vordane::pbx {

// What the conversation needs of the window that holds it.
class SessionForm {
 public:
  virtual ~SessionForm() = default;
  virtual automation::ObjectRef host() = 0;    // Parent; null stand-alone and before RegisterPBX
  virtual automation::ObjectRef caller() = 0;  // the window, whose CallBack the server will call
  virtual std::u16string registeredName() = 0;
  virtual std::u16string jobKey() = 0;
  virtual void setHourglass(bool on) = 0;
  virtual void setInputEnabled(bool on) = 0;
  virtual int askBeforeRequest() = 0;  // box 109; 7 is No
  virtual bool alive() = 0;            // false once an ending has begun
  // Writes the copied answer into the run log; without a code, it could not be read. True: the run must stop.
  virtual bool logResponse(const cListRequest& answer, std::optional<std::int32_t> errorCode) = 0;
  // The conversation of an answered request is over: the action that its answer calls for, or none when the
  // answer failed.
  virtual void concluded(std::optional<Action> action) = 0;
  // For the status line: what is waited for (`request` as step::faultListRequest), and what came to nothing.
  virtual void waitingFor(std::int16_t request, std::u16string_view exchange) = 0;
  virtual void requestFailed(const FailedRequest& request) = 0;
};

class PbxSession {
 public:
  // Entries beyond these are not taken over: whole groups of four within a 16-bit count.
  static constexpr std::int32_t maximumEntries = 32764;

  PbxSession(SessionForm& form, SharedState& state) : form_(form), state_(state) {}
  PbxSession(const PbxSession&) = delete;
  PbxSession& operator=(const PbxSession&) = delete;

  // Stand-alone only: creates the exchange server, the simulator's when it lies in the current directory.
  // One that can't be created leaves the object unset. Whether it is the simulator's.
  bool createServer(platform::Files& files, platform::SettingsStore& settings,
                    platform::ObjectCreator& creator);

  // True when the request was sent (its answer may have come already). The acknowledgement keeps the
  // exchange of the list it acknowledges; the others take the registered one.
  bool RequestFaultList();
  bool AcknowledgeFaultList();
  bool AcknowledgeAndClear();

  // An answer from the server. Calls that no request waits for are ignored. Never throws: whatever is raised
  // while an answer is taken, a lack of memory included, makes it an unreadable one, and the log-out and the
  // end of the action follow as ever. One that comes while the host still hears of the acceptance is read at
  // once, since the server may let go of its record; what follows it waits until the host has taken
  // `TurnOnFlow`, so that the flow is never left turned on.
  void CallBack(const automation::ObjectRef& response);

  // Asks the server to give the request up, when a log-in identifier is held.
  void CancelRequest();
  // The window ends: an answer that still comes only logs out, while the host is held.
  void interrupt();
  // Lets go of the exchange server, behind the log-out that an open conversation with an own server still
  // needs: at once, or when the call that is under way has returned.
  void release();

  const cListRequest& response() const { return copy_; }
  // The last answer with the request it answers; its entries are valid until the next answer.
  ReceivedList received() const { return {copy_, request_.pbxName, request_.wide, truncated_, cut_}; }
  // The request under way or the last one.
  std::int16_t requestKind() const { return request_.kind; }
  const std::u16string& requestName() const { return request_.pbxName; }

 private:
  enum class Phase { idle, loggingIn, sending, waiting, interrupted };
  struct Request {
    std::int16_t kind = 0;
    std::u16string pbxName;
    bool wide = true;  // the processor texts of the exchange
  };
  struct Answer {
    bool success = false;
    std::optional<Failure> unreadable;  // why it could not be read
    std::optional<std::int32_t> errorCode;
    std::optional<Action> action;
    std::optional<std::u16string> message;
  };
  // While one exists, a step of the conversation is under way; the last one lets the released server go.
  class Step {
   public:
    explicit Step(PbxSession& session) : session_(session) { ++session_.steps_; }
    ~Step();
    Step(const Step&) = delete;
    Step& operator=(const Step&) = delete;

   private:
    PbxSession& session_;
  };

  void takeRegistered();
  bool send(std::int16_t kind, std::u16string_view secondData, Action answer, bool list);
  bool logInAndSend(cListRequest& record, const automation::ObjectRef& reference);
  bool endWithoutMemory();
  void accepted(const std::u16string& result);
  bool refuse(Failure failure, std::int32_t errorCode = 0);
  FailedRequest failed(Failure failure, std::int32_t errorCode) const;
  bool abandon();
  void logIn();
  Failure loginFailure() const;
  std::u16string sendRequest(const automation::ObjectRef& record);
  void LogOut();
  void letServerGo();

  bool isAnswer(const std::u16string& loginId) const;
  static std::u16string identifierOf(automation::Object& response);
  Answer take(automation::Object& response);
  std::optional<Failure> copy(automation::Object& response);
  void judge(automation::Object& response, Answer& answer);
  void showAnswer(Answer& answer);
  void stopByLog(Answer& answer);
  void conclude(Answer& answer);
  Failure failureOf(const Answer& answer) const;

  automation::ObjectRef server();  // Parent.oPBX, read afresh, or the own one; throws AutomationError
  void hostCall(std::u16string_view member, std::initializer_list<automation::Argument> arguments = {});
  void hostMessage(std::size_t number, const std::u16string& text);

  SessionForm& form_;
  SharedState& state_;
  automation::ObjectRef server_;
  std::u16string loginName_, loginId_;  // of the last log-in
  std::int32_t loginError_ = 0;         // raised by it
  bool loggedIn_ = false;               // and not out again
  Request request_;
  Phase phase_ = Phase::idle;
  int steps_ = 0;
  bool released_ = false;
  bool announcing_ = false;  // the host is being told that the request was accepted
  bool cancelAsked_ = false;
  std::optional<Answer> held_;  // came meanwhile
  cListRequest copy_;
  bool truncated_ = false, cut_ = false;
};

}  // namespace vordane::pbx
