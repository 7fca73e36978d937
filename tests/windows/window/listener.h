#pragma once

#include <windows.h>

#include <commctrl.h>

#include <functional>
#include <utility>

namespace vordane::window::win32 {

// Hears a window's messages for as long as it lives.
class Listener {
 public:
  using Hear = std::function<void(UINT message, WPARAM wide, LPARAM low)>;
  Listener(HWND window, Hear hear) : window_(window), hear_(std::move(hear)) {
    SetWindowSubclass(window_, procedure, 1, reinterpret_cast<DWORD_PTR>(this));
  }
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;
  ~Listener() { RemoveWindowSubclass(window_, procedure, 1); }

 private:
  static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wide, LPARAM low, UINT_PTR,
                                    DWORD_PTR self) {
    const LRESULT answer = DefSubclassProc(window, message, wide, low);
    reinterpret_cast<Listener*>(self)->hear_(message, wide, low);
    return answer;
  }
  HWND window_;
  Hear hear_;
};

}  // namespace vordane::window::win32
