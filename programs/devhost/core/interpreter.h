// Runs a script: creates the add-in's objects, drives them, waits for what they tell the host.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "devhost/core/environment.h"
#include "devhost/core/host.h"
#include "devhost/core/script.h"
#include "devhost/core/trace.h"
#include "platform/database.h"

namespace vordane::devhost {

// What the process answers when it ends.
enum class Outcome : int { done = 0, scriptWrong = 2, callFailed = 3, waitFailed = 4 };

struct Settings {
  std::u16string reportDirectory;      // empty: beside the layout
  std::u16string scenarioDirectory;    // where the scenario files of `pbx in-process` are; empty: as named
  database::Engine* engine = nullptr;  // for reports; null: none are printed
};

class Interpreter {
 public:
  // `environment` outlives it. The trace goes to the environment's print.
  Interpreter(Environment& environment, Settings settings);
  ~Interpreter();

  Outcome run(const std::vector<Statement>& statements);

 private:
  using Runner = Outcome (Interpreter::*)(const Statement&);
  struct Action {
    Verb verb;
    Runner run;
  };
  static const Action actions[];

  Outcome runOne(const Statement& statement);
  template <class Call>
  Outcome attempt(const Statement& statement, const Call& call);
  automation::Object& current();
  automation::Object& labelled(const std::u16string& label);
  std::u16string print(const ReportRequest& request);

  Outcome usePbx(const Statement& statement);
  Outcome simulatePbx(const Statement& statement);
  Outcome dropPbx(const Statement& statement);
  Outcome create(const Statement& statement);
  Outcome use(const Statement& statement);
  Outcome release(const Statement& statement);
  Outcome call(const Statement& statement);
  Outcome get(const Statement& statement);
  Outcome put(const Statement& statement);
  Outcome registerExchange(const Statement& statement);
  Outcome show(const Statement& statement);
  Outcome hide(const Statement& statement);
  Outcome visible(const Statement& statement);
  Outcome createSchedule(const Statement& statement);
  Outcome runSchedule(const Statement& statement);
  Outcome cancel(const Statement& statement);
  Outcome background(const Statement& statement);
  Outcome wait(const Statement& statement);
  Outcome never(const Statement& statement);
  Outcome when(const Statement& statement);
  Outcome sleep(const Statement& statement);
  Outcome set(const Statement& statement);
  Outcome depart(const Statement& statement);
  Outcome give(const Statement& statement);
  Outcome die(const Statement& statement);
  Outcome note(const Statement& statement);
  Outcome loudness(const Statement& statement);
  Outcome repeat(const Statement& statement);

  Environment& environment_;
  Settings settings_;
  Trace trace_;
  std::shared_ptr<HostState> state_;
  std::shared_ptr<Host> host_;
  std::vector<std::unique_ptr<zulsim::Scenario>> scenarios_;  // of the simulators, which outlive their use
  std::map<std::u16string, automation::ObjectRef> objects_;
  std::u16string label_;   // of the object that the short statements mean
  std::size_t heard_ = 0;  // notifications up to here have been waited for
};

}  // namespace vordane::devhost
