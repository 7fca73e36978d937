// What fails inside a window stops before it would leave the window's own code: the system can't carry it
// through its calls, and the message loop would end with it. The window stays as it is. One thread.
#pragma once

#include <exception>

namespace vordane::window::win32 {

// False when the work failed.
template <typename Work>
bool guarded(Work&& work) {
  try {
    work();
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

}  // namespace vordane::window::win32
