// Finds a control of the running fault display from outside: `click [--wait SECONDS] [--press] CONTROL`
// prints the middle of the control on the screen as "x y" (pixels), and presses it with the mouse when asked.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <string>

#include "platform/windows/window/children.h"

namespace {

using vordane::window::win32::Child;
using vordane::window::win32::children;

bool isNamed(const Child& child, const wchar_t* name) {
  const std::wstring own(child.control.begin(), child.control.end());
  return _wcsicmp(own.c_str(), name) == 0;
}

HWND findControl(const wchar_t* name) {
  const HWND frame = FindWindowW(vordane::window::win32::windowClassName, nullptr);
  if (frame == nullptr || !IsWindowVisible(frame)) return nullptr;
  const auto* child = std::find_if(std::begin(children), std::end(children),
                                   [&](const Child& entry) { return isNamed(entry, name); });
  return child == std::end(children) ? nullptr : GetDlgItem(frame, child->id);
}

void press(POINT point) {
  SetCursorPos(point.x, point.y);
  INPUT inputs[2]{};
  inputs[0].type = inputs[1].type = INPUT_MOUSE;
  inputs[0].mi.dwFlags = MOUSEEVENTF_LEFTDOWN;
  inputs[1].mi.dwFlags = MOUSEEVENTF_LEFTUP;
  SendInput(2, inputs, sizeof(INPUT));
}

}  // namespace

int wmain(int count, wchar_t** values) {
  long wait = 0;
  bool pressed = false;
  const wchar_t* name = nullptr;
  for (int i = 1; i < count; ++i) {
    if (std::wcscmp(values[i], L"--wait") == 0 && i + 1 < count) {
      wait = std::wcstol(values[++i], nullptr, 10);
    } else if (std::wcscmp(values[i], L"--press") == 0) {
      pressed = true;
    } else {
      name = values[i];
    }
  }
  if (name == nullptr) return std::fputs("usage: click [--wait SECONDS] [--press] CONTROL\n", stderr), 2;

  SetProcessDPIAware();
  HWND control = findControl(name);
  for (long tries = wait * 10; control == nullptr && tries > 0; --tries) {
    Sleep(100);
    control = findControl(name);
  }
  if (control == nullptr) return std::fputs("click: no such control\n", stderr), 1;

  RECT area;
  GetWindowRect(control, &area);
  const POINT middle{(area.left + area.right) / 2, (area.top + area.bottom) / 2};
  std::printf("%ld %ld\n", middle.x, middle.y);
  if (pressed) press(middle);
  return 0;
}
