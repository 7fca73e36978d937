// What a tick of the window's timer does: the one dispatcher from which all work runs. One thread.
#pragma once

#include <cstddef>

#include "platform/action.h"

namespace vordane::startup {

struct WindowParts;

class WindowActions {
 public:
  explicit WindowActions(const WindowParts& parts) : parts_(parts) {}

  void tick();
  // A number that stands for no action does nothing.
  void dispatch(Action action);
  // Hides the window, or ends it when it was started by hand.
  void close();

 private:
  void noteReset(Action action);
  template <class Request>
  void converse(Request request);  // an action that lasts until its answer, when one is to come
  template <class Work>
  void work(Work work);
  void ingest();
  void endLampAction(bool good, std::size_t reason);
  void runStep();
  void followUp();
  // The action is over: in a scheduled run comes the run's next step, else the busy flag goes off.
  void endAction();
  void endBroken(Action action);

  const WindowParts& parts_;
};

}  // namespace vordane::startup
