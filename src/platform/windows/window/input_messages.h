// A control that takes no input for a while, and yet looks as ever: a disabled list view ignores its colours.
#pragma once

#include <windows.h>

namespace vordane::window::win32 {

// Keys, mouse and scroll bars. The keys of the frame (Alt with another) are not among them.
constexpr bool isInput(UINT message) {
  return (message >= WM_KEYDOWN && message <= WM_DEADCHAR) ||
         (message >= WM_MOUSEFIRST && message <= WM_MOUSELAST) ||
         (message >= WM_NCLBUTTONDOWN && message <= WM_NCXBUTTONDBLCLK) || message == WM_CONTEXTMENU ||
         message == WM_HSCROLL || message == WM_VSCROLL;
}

}  // namespace vordane::window::win32
