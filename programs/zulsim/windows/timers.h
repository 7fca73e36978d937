// Steps that run later, from the message loop of this thread.
#pragma once

#include <windows.h>

#include <functional>
#include <map>

namespace vordane::zulsim {

class Timers {
 public:
  Timers();
  ~Timers();
  Timers(const Timers&) = delete;
  Timers& operator=(const Timers&) = delete;

  // Once, after that many milliseconds, never before the caller is back in a message loop.
  void after(int milliseconds, std::function<void()> step);

 private:
  static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  void due(UINT_PTR number);

  HWND window_;
  UINT_PTR last_ = 0;
  // A tick that was queued before its timer was killed finds nothing here.
  std::map<UINT_PTR, std::function<void()>> steps_;
};

}  // namespace vordane::zulsim
