// The parts of the window, for those whose work is to bring several of them together. Every part says in its
// own header what it owns. All of them live as long as the window.
#pragma once

#include "language/message_numbers.h"
#include "pbx/pbx_session.h"
#include "platform/window.h"
#include "startup/action_timer.h"
#include "startup/application.h"
#include "startup/host_link.h"
#include "startup/scheduled_job.h"
#include "startup/session_window.h"
#include "startup/store_window.h"
#include "startup/window_life.h"
#include "startup/window_place.h"
#include "status/window_status.h"
#include "store/fault_store.h"
#include "store/reset_receipts.h"

namespace vordane::startup {

class WindowEnd;
class ScheduledRuns;
class WindowActions;

struct WindowParts {
  Application& application;
  window::Form& form;
  WindowLife& life;
  HostLink& host;
  WindowPlace& place;
  ActionTimer& timer;
  status::WindowStatus& status;
  ScheduledJob& job;
  StoreWindow& faults;
  store::ResetReceipts& receipts;
  store::FaultStore& store;
  SessionWindow& talk;
  pbx::PbxSession& session;
  WindowEnd& end;
  ScheduledRuns& runs;
  WindowActions& actions;

  SharedState& state() const { return application.state(); }
  window::View& view() const { return application.station().view; }
  bool alive() const { return life.alive(); }
  std::u16string text(std::size_t number) const { return messageText(application.state(), number); }
  static status::Sentence sentence(std::size_t number) {
    return [number](const SharedState& words) { return messageText(words, number); };
  }
  void showProcessorTexts() const {
    view().setStatus(
        window::processorPart,
        shownText(state(), state().WideFaultFields ? message::statusWide : message::statusNarrow));
  }
  // What stands above the rows or in the place of an empty grid.
  void showNotice() const {
    if (faults.faultDatabase() != nullptr) store.showNotice();
  }
};

}  // namespace vordane::startup
