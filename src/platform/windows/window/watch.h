// Hears a window's messages before the window does. The common controls' own way of doing that asks for
// properties of the window several times with each message, which costs more than drawing a row.
#pragma once

#include <windows.h>

#include <functional>

namespace vordane::window::win32 {

// One thread. Must outlive the window; keeps its place in the window's user data.
class Watch {
 public:
  using Hear = std::function<LRESULT(UINT message, WPARAM wide, LPARAM low)>;

  Watch() = default;
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;

  // From now until the window's end `hear` answers its messages; one it fails in the window answers itself.
  void start(HWND window, Hear hear);
  // The window's own answer.
  LRESULT pass(UINT message, WPARAM wide, LPARAM low) const;

 private:
  static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wide, LPARAM low);
  void stop();

  HWND window_ = nullptr;
  WNDPROC own_ = nullptr;
  Hear hear_;
};

}  // namespace vordane::window::win32
