#include "platform/windows/window/tick_timer.h"

namespace vordane::window::win32 {

void TickTimer::start(HWND window, int milliseconds) {
  stop(window);
  pending_ = true;
  due_ = GetTickCount64() + static_cast<ULONGLONG>(milliseconds);
  SetTimer(window, ++generation_, static_cast<UINT>(milliseconds), nullptr);
}

void TickTimer::stop(HWND window) {
  if (pending_) KillTimer(window, generation_);
  pending_ = false;
}

bool TickTimer::expired(HWND window, WPARAM identifier) {
  if (identifier < first) return false;
  if (pending_ && identifier == generation_) fire(window);
  return true;
}

void TickTimer::serveIfDue(HWND window) {
  if (pending_ && GetTickCount64() >= due_) fire(window);
}

void TickTimer::fire(HWND window) {
  stop(window);
  tick_();
}

}  // namespace vordane::window::win32
