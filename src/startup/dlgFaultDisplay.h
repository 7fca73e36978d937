// The program's only window. It brings its parts together: who loads it, registers an exchange or answers is
// passed on to the part whose state it is. One thread.
#pragma once

#include <memory>
#include <string>

#include "language/comLanguage.h"
#include "startup/form_object.h"
#include "startup/scheduled_runs.h"
#include "startup/window_actions.h"
#include "startup/window_end.h"
#include "startup/window_help.h"
#include "startup/window_input.h"
#include "startup/window_parts.h"
#include "startup/window_reading.h"

namespace vordane {

class dlgFaultDisplay final {
 public:
  explicit dlgFaultDisplay(startup::Application& application);
  ~dlgFaultDisplay();
  dlgFaultDisplay(const dlgFaultDisplay&) = delete;
  dlgFaultDisplay& operator=(const dlgFaultDisplay&) = delete;

  void Load();  // once; a failure leaves CheckLoadError set
  void Unload() { end_.Unload(); }
  void userReleased() noexcept { end_.userReleased(); }
  bool alive() const { return life_.alive(); }
  bool loaded() const { return life_.stage() != startup::WindowLife::Stage::unborn; }
  // While what it returns exists a call is under way: timer actions wait.
  startup::WindowLife::Entry enter() { return startup::WindowLife::Entry(life_); }

  // --- what layers and hosts set
  void setParent(const automation::ObjectRef& host);
  void setPBXName(const std::u16string& name);
  bool visible();
  void setVisible(bool visible);
  void BackGround(std::int16_t index);

  // --- what the exchange server calls
  void CallBack(const automation::ObjectRef& response);

  // --- its parts
  window::Form& form() { return model_; }
  startup::WindowLife& life() { return life_; }
  startup::HostLink& host() { return host_; }
  startup::WindowPlace& place() { return place_; }
  startup::ActionTimer& timer() { return timer_; }
  startup::ScheduledJob& job() { return job_; }
  startup::StoreWindow& faults() { return faults_; }
  pbx::PbxSession& session() { return session_; }
  startup::ScheduledRuns& runs() { return runs_; }
  startup::WindowActions& actions() { return actions_; }
  startup::WindowHelp& help() { return help_; }
  window::ViewEvents& input() { return input_; }
  automation::ObjectRef caller() { return caller_; }  // this window as others call it

 private:
  void loadSteps();
  bool showExchanges();
  void localise();
  void textsStopped(std::u16string_view table);
  void usePBXName(const std::u16string& name, store::FaultStore::Report report);

  startup::Application& application_;
  window::Form model_;
  std::shared_ptr<startup::FormObject> caller_;
  startup::WindowLife life_;
  startup::HostLink host_;
  startup::WindowPlace place_;
  startup::ActionTimer timer_;
  status::WindowStatus status_;
  startup::ScheduledJob job_;
  startup::StoreWindow faults_;
  store::ResetReceipts receipts_;
  store::FaultStore store_;
  startup::SessionWindow talk_;
  pbx::PbxSession session_;
  startup::WindowParts parts_;
  startup::WindowEnd end_;
  startup::ScheduledRuns runs_;
  startup::WindowActions actions_;
  startup::WindowHelp help_;
  startup::WindowReading reading_;
  startup::WindowInput input_;
};

}  // namespace vordane
