#include "zulsim/windows/timers.h"

#include <utility>

namespace vordane::zulsim {
namespace {

constexpr const wchar_t* windowClass = L"VordaneTimers";
constexpr UINT messageDue = WM_APP + 1;

}  // namespace

Timers::Timers() {
  WNDCLASSW entry{};
  entry.lpfnWndProc = procedure;
  entry.hInstance = GetModuleHandleW(nullptr);
  entry.lpszClassName = windowClass;
  RegisterClassW(&entry);
  window_ =
      CreateWindowExW(0, windowClass, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, entry.hInstance, nullptr);
  SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
}

Timers::~Timers() {
  DestroyWindow(window_);
}

void Timers::after(int milliseconds, std::function<void()> step) {
  const UINT_PTR number = ++last_;
  steps_[number] = std::move(step);
  // The shortest timer takes several milliseconds; a posted message none.
  if (milliseconds <= 0)
    PostMessageW(window_, messageDue, number, 0);
  else
    SetTimer(window_, number, static_cast<UINT>(milliseconds), nullptr);
}

LRESULT CALLBACK Timers::procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  auto* self = reinterpret_cast<Timers*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  if (self == nullptr || (message != messageDue && message != WM_TIMER))
    return DefWindowProcW(window, message, wParam, lParam);
  if (message == WM_TIMER) KillTimer(window, wParam);
  self->due(wParam);
  return 0;
}

void Timers::due(UINT_PTR number) {
  const auto found = steps_.find(number);
  if (found == steps_.end()) return;
  const auto step = std::move(found->second);
  steps_.erase(found);
  step();
}

}  // namespace vordane::zulsim
