// Asks, from a timer of its own, whether others have stored something newer than is shown: soon after rows
// were shown, then whenever the form says, and only while the window can be seen. While an answer is waited
// for or a box stands it rests; where nobody looks there is nothing of it. One thread.
#pragma once

#include <windows.h>

#include <chrono>
#include <functional>

#include "platform/view.h"

namespace vordane::window::win32 {

class StoreWatch {
 public:
  struct Around {
    std::function<ListUse()> use;                     // what the form allows now
    std::function<std::chrono::milliseconds()> look;  // the form's question; when it is to come again
  };
  void create(HWND frame, Around around);
  void forget();  // the window goes
  void rowsSet();
  bool timer(WPARAM id);  // whether it is this one's

 private:
  void wakeIn(std::chrono::milliseconds pause);

  Around around_;
  HWND frame_ = nullptr;
};

}  // namespace vordane::window::win32
