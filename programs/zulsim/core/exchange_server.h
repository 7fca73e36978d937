// The simulated exchange server: class cPBXOLE with Login, SendRequest, LogOut and CancelRequest, answering
// from a scenario. Everything runs on one thread; answers come from timers that the program around it owns.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/member_table.h"
#include "zulsim/core/answer_record.h"
#include "zulsim/core/scenario.h"

namespace vordane::zulsim {

// What the simulator needs of the program it runs in.
class Services {
 public:
  virtual ~Services() = default;
  // Runs `step` once, after that many milliseconds and never before this call has returned.
  virtual void after(int milliseconds, std::function<void()> step) = 0;
  virtual void pause(int milliseconds) = 0;  // returns then
  virtual void log(std::u16string_view line) = 0;
  // Words: whoever gives one lets what waits for it go on. `taken` is true once for each time it was given.
  virtual bool taken(std::u16string_view word) = 0;
  virtual void give(std::u16string_view word) = 0;
  virtual void vanish() = 0;  // ends the process without a word; a test's may return
};

// What all server objects of the process share: the scenario and how far its sequences have come.
class Simulation {
 public:
  // Both outlive it.
  Simulation(const Scenario& scenario, Services& services) : scenario_(scenario), services_(services) {}

  Services& services() { return services_; }
  const Exchange* exchange(std::u16string_view name) const { return findExchange(scenario_, name); }
  // The number of earlier uses of the sequence `what` of the exchange `name`.
  std::size_t use(std::u16string_view name, std::u16string_view what);
  std::u16string nextIdentifier(std::u16string_view prefix);
  std::u16string& alarmOf(const Exchange& exchange, std::u16string_view name);

 private:
  const Scenario& scenario_;
  Services& services_;
  std::map<std::u16string, std::size_t> uses_;
  std::map<std::u16string, std::u16string> alarms_;
  std::map<std::u16string, int> identifiers_;
};

class ExchangeServer : public automation::TableObject {
 public:
  explicit ExchangeServer(std::shared_ptr<Simulation> simulation) : simulation_(std::move(simulation)) {}
  static const automation::ClassTable& classTable();
  const automation::ClassTable& table() const override { return classTable(); }

  // An identifier, or "BUSY", "ERROR" or "". `caller` is kept until LogOut or the server's release.
  std::u16string Login(const std::u16string& PBXName, automation::ObjectRef caller);
  // An acceptance text, or "BUSY", "ERROR" or "".
  std::u16string SendRequest(const automation::ObjectRef& request);
  void LogOut(const std::u16string& PBXName, const std::u16string& LoginID);
  // A request under way is answered with code 61 at once, unless the scenario ignores it.
  void CancelRequest(const std::u16string& PBXName, const std::u16string& LoginID);

 protected:
  automation::Value invokeMember(std::size_t member, automation::CallKind kind,
                                 std::span<automation::Argument> arguments) override;

 private:
  struct Session {
    std::u16string id, name;
    const Exchange* exchange;
    automation::ObjectRef caller;
  };
  // An accepted request; the timer of its answer holds it weakly, so that log-out ends it.
  struct Request {
    std::u16string loginId, name, command, key;
    const Exchange* exchange;
    automation::ObjectRef caller, record;
    Answer answer;
  };

  const Session* session(std::u16string_view loginId) const;
  std::optional<std::u16string> reply(const Session& session, std::u16string_view what,
                                      const std::vector<Reply>& sequence, std::u16string_view identifier);
  std::shared_ptr<Request> requestOf(const Session& session, const automation::ObjectRef& record);
  void schedule(const std::shared_ptr<Request>& request);
  void answerWhen(const std::shared_ptr<Request>& request, int milliseconds);
  void deliver(const std::shared_ptr<Request>& request);
  automation::ObjectRef answered(const Request& request);
  void forget(std::u16string_view loginId);

  std::shared_ptr<Simulation> simulation_;
  std::vector<Session> sessions_;
  std::vector<std::shared_ptr<Request>> requests_;
};

}  // namespace vordane::zulsim
