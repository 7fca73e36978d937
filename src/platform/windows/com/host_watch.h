// Notices that a host's process has died. A helper thread makes a small call to each watched host every few
// seconds; everything else happens on the user-interface thread.
#pragma once

#include <windows.h>

#include <memory>

#include "platform/automation.h"

namespace vordane::com {

class HostWatch {
 public:
  // A dead host is posted to `window` as `message` with the watch's number as wParam.
  HostWatch(HWND window, UINT message);
  ~HostWatch();
  HostWatch(const HostWatch&) = delete;
  HostWatch& operator=(const HostWatch&) = delete;

  // `layer` is only a name here; the host must be another program's object, else nothing is watched.
  void watch(const automation::Object* layer, const automation::ObjectRef& host);
  void forget(const automation::Object* layer);

  // The layer behind a posted number; null when the watch has ended meanwhile. Ends the watch.
  const automation::Object* takeDead(WPARAM number);

 private:
  struct State;
  std::shared_ptr<State> state_;  // shared with the thread, which may outlive this by one slow call
};

}  // namespace vordane::com
