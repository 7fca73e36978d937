// The life of this process as automation sees it, and how long its outgoing calls are waited for. The
// Windows half implements Process; the application implements CallQuestions. One thread.
#pragma once

#include "platform/automation.h"

namespace vordane::platform {

// The two time-outs of outgoing automation calls.
struct CallTimes {
  int pendingMilliseconds = 10000;  // input during a call older than this brings the pending question
  int busyMilliseconds = 20000;     // a call turned down for this long brings the busy question
};

// What a call that takes long asks of the person.
class CallQuestions {
 public:
  virtual ~CallQuestions() = default;
  // True while nobody is there to answer: both questions are then only noted (and the busy one answered
  // with giving up), and the pending one does not wait for input.
  virtual bool unattended() = 0;
  // The other program has turned the call down all the time. True: go on trying; false: the call fails.
  virtual bool askWhileBusy() = 0;
  // The other program has not answered yet; the call goes on whatever is pressed.
  virtual void tellPending() = 0;
};

class Process {
 public:
  virtual ~Process() = default;

  virtual void setCallTimes(const CallTimes& times) = 0;

  // From here on every creation gets a process of its own. To be called at the start of an ending or
  // unload, before its first outgoing call; calling it again does nothing.
  virtual void stopServing() = 0;

  // The process ends as soon as control is back in the message loop, after two seconds in any case (an
  // outgoing call may be waiting below us). No member of a public class is served any more.
  virtual void end() = 0;

  // Ends at once: a start or a registration that failed. Withdraws the classes and cleans up nothing else.
  [[noreturn]] virtual void endAtOnce() = 0;

  // `layer` (a public object that another process created) lives for the sake of `host`. When the host's
  // process has died, its hold on `layer` is given up in its place, once. Watching another host, or null,
  // ends the former watch.
  virtual void watchHost(automation::Object& layer, const automation::ObjectRef& host) = 0;
};

}  // namespace vordane::platform
