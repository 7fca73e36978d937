// The form's timer: each start yields exactly one tick. A tick that was already under way when the timer was
// stopped or started anew carries an old number and counts for nothing. One thread.
#pragma once

#include <windows.h>

#include <functional>

namespace vordane::window::win32 {

class TickTimer {
 public:
  TickTimer(std::function<void()> tick) : tick_(std::move(tick)) {}

  void start(HWND window, int milliseconds);
  void stop(HWND window);
  // For WM_TIMER; false when the identifier is none of this timer's.
  bool expired(HWND window, WPARAM identifier);
  // A client that calls all the time starves WM_TIMER: ticks when the time has come. Called from the loop.
  void serveIfDue(HWND window);
  bool pending() const { return pending_; }

 private:
  static constexpr WPARAM first = 0x1000;  // other timers of the window stay below
  void fire(HWND window);

  std::function<void()> tick_;
  WPARAM generation_ = first;
  bool pending_ = false;
  ULONGLONG due_ = 0;
};

}  // namespace vordane::window::win32
