// Notices that a host's process has died. Each watched host has a helper thread that makes a small call to it
// every few seconds: a host that hangs holds up neither the watch of another one nor the user-interface
// thread, which everything else here belongs to.
#pragma once

#include <windows.h>

#include <memory>
#include <vector>

#include "platform/automation.h"

namespace vordane::com {

class HostWatch {
 public:
  // A dead host is posted to `window` as `message` with the watch's number as wParam.
  HostWatch(HWND window, UINT message);
  // Waits until the threads have let go of the hosts, but for one slow call no longer than a moment.
  ~HostWatch();
  HostWatch(const HostWatch&) = delete;
  HostWatch& operator=(const HostWatch&) = delete;

  // Ends the layer's former watch. `layer` is only a name here; the host must be another program's object,
  // else nothing is watched. A host that can't be watched is put up with.
  void watch(const automation::Object* layer, const automation::ObjectRef& host);
  void forget(const automation::Object* layer);

  // The layer behind a posted number; null when the watch has ended meanwhile. Ends the watch.
  const automation::Object* takeDead(WPARAM number);

 private:
  struct Threads;
  struct Probe;
  struct Entry {
    WPARAM number;
    const automation::Object* layer;
    std::shared_ptr<Probe> probe;
  };

  static void run(const std::shared_ptr<Probe>& probe);
  void remove(std::vector<Entry>::iterator entry);

  HWND window_;
  UINT message_;
  WPARAM lastNumber_ = 0;
  std::vector<Entry> entries_;
  std::shared_ptr<Threads> threads_;
};

}  // namespace vordane::com
