#include "platform/windows/window/watch.h"

#include <utility>

#include "platform/windows/window/guard.h"

namespace vordane::window::win32 {

void Watch::start(HWND window, Hear hear) {
  window_ = window;
  hear_ = std::move(hear);
  SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  own_ = reinterpret_cast<WNDPROC>(
      SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&procedure)));
}

LRESULT Watch::pass(UINT message, WPARAM wide, LPARAM low) const {
  return CallWindowProcW(own_, window_, message, wide, low);
}

void Watch::stop() {
  SetWindowLongPtrW(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(own_));
  SetWindowLongPtrW(window_, GWLP_USERDATA, 0);
}

LRESULT CALLBACK Watch::procedure(HWND window, UINT message, WPARAM wide, LPARAM low) {
  auto& watch = *reinterpret_cast<Watch*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  if (message == WM_NCDESTROY) {
    watch.stop();
    return watch.pass(message, wide, low);
  }
  LRESULT answer = 0;
  if (guarded([&] { answer = watch.hear_(message, wide, low); })) return answer;
  return watch.pass(message, wide, low);
}

}  // namespace vordane::window::win32
