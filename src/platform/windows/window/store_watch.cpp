#include "platform/windows/window/store_watch.h"

#include <algorithm>
#include <utility>

namespace vordane::window::win32 {
namespace {

constexpr UINT_PTR watchTimer = 4;
// While it rests, and while nobody sees the window, it looks this often whether that has changed.
constexpr std::chrono::milliseconds rest{500}, soon{USER_TIMER_MINIMUM};

}  // namespace

void StoreWatch::create(HWND frame, Around around) {
  frame_ = frame;
  around_ = std::move(around);
}

void StoreWatch::forget() {
  if (frame_ != nullptr) KillTimer(frame_, watchTimer);
  frame_ = nullptr;
}

void StoreWatch::rowsSet() {
  if (frame_ != nullptr) wakeIn(soon);
}

bool StoreWatch::timer(WPARAM id) {
  if (id != watchTimer) return false;
  const ListUse use = around_.use();
  const bool seen = IsWindowVisible(frame_) && !IsIconic(frame_);
  if (use == ListUse::never)
    KillTimer(frame_, watchTimer);
  else if (use == ListUse::later || !seen)
    wakeIn(rest);
  else
    wakeIn(around_.look());
  return true;
}

void StoreWatch::wakeIn(std::chrono::milliseconds pause) {
  // The window may have gone during the question.
  if (frame_ == nullptr) return;
  SetTimer(frame_, watchTimer, static_cast<UINT>(std::max(pause, soon).count()), nullptr);
}

}  // namespace vordane::window::win32
