// The one apartment of a program: COM on the user-interface thread, the message filter, the message loop.
#pragma once

#include <functional>

#include "platform/process.h"
#include "platform/windows/com/owned.h"

namespace vordane::com {

class Apartment {
 public:
  // Initialises COM for this thread (single-threaded apartment). Throws AutomationError.
  Apartment();
  ~Apartment();
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;

  // Puts the rules of waiting calls in force; `questions` must outlive the apartment. Without it COM's own
  // rules hold.
  void filterCalls(platform::CallQuestions& questions);
  void setCallTimes(const platform::CallTimes& times);

 private:
  class Filter;
  ComPtr<IMessageFilter> filter_;
  Filter* rules_ = nullptr;  // lives in filter_
};

// Serves messages until WM_QUIT and returns its exit code. `translate` (may be empty) sees each message
// first and returns true for one it has dealt with (accelerators, dialog keys); what it throws goes no
// further.
int runMessageLoop(const std::function<bool(MSG&)>& translate = {});

// Serves the messages that are there now; false when WM_QUIT came (it is posted again).
bool serveMessages();

// Serves messages until `done` says so or the time is over; false when it is over or WM_QUIT came.
bool serveMessagesUntil(const std::function<bool()>& done, int milliseconds);

}  // namespace vordane::com
