// What a person's hand and eye do to the running fault display, from outside and in its real window:
//
//   click [--wait SECONDS] CONTROL           prints the middle of the control on the screen as "x y" (pixels)
//   click [--wait SECONDS] --press CONTROL   the same, and presses it with the mouse
//   click [--wait SECONDS] --text CONTROL    prints the control's text
//   click [--wait SECONDS] --close           asks the window to close, as its title bar does
//   click [--wait SECONDS] --box [ANSWER]    prints a message box's title and text; answers it with that
//   button
//
// Controls go by their names in the form; ANSWER is 1 (OK), 2 (cancel), 6 (yes), 7 (no). Ends with 1 when
// what was waited for did not come.
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

HWND findFrame() {
  const HWND frame = FindWindowW(vordane::window::win32::windowClassName, nullptr);
  return frame != nullptr && IsWindowVisible(frame) ? frame : nullptr;
}

HWND findControl(const wchar_t* name) {
  const HWND frame = findFrame();
  if (frame == nullptr) return nullptr;
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

struct Wish {
  long wait = 0;
  bool press = false, text = false, box = false, close = false;
  const wchar_t* word = nullptr;  // the control, or the answer to a box
};

Wish parse(int count, wchar_t** values) {
  Wish wish;
  for (int i = 1; i < count; ++i) {
    const std::wstring option = values[i];
    if (option == L"--wait" && i + 1 < count)
      wish.wait = std::wcstol(values[++i], nullptr, 10);
    else if (option == L"--press")
      wish.press = true;
    else if (option == L"--text")
      wish.text = true;
    else if (option == L"--box")
      wish.box = true;
    else if (option == L"--close")
      wish.close = true;
    else
      wish.word = values[i];
  }
  return wish;
}

BOOL CALLBACK matchBox(HWND window, LPARAM parameter) {
  wchar_t type[32];
  if (!IsWindowVisible(window) || GetClassNameW(window, type, 32) == 0 || std::wcscmp(type, L"#32770") != 0)
    return TRUE;
  *reinterpret_cast<HWND*>(parameter) = window;
  return FALSE;
}

HWND findBox() {
  HWND found = nullptr;
  EnumWindows(matchBox, reinterpret_cast<LPARAM>(&found));
  return found;
}

void printText(HWND window) {
  wchar_t text[4096] = L"";
  SendMessageW(window, WM_GETTEXT, 4096, reinterpret_cast<LPARAM>(text));
  char bytes[3 * 4096];
  WideCharToMultiByte(CP_UTF8, 0, text, -1, bytes, sizeof bytes, nullptr, nullptr);
  std::puts(bytes);
}

template <class Find>
HWND waitFor(long seconds, Find find) {
  HWND found = find();
  for (long tries = seconds * 10; found == nullptr && tries > 0; --tries) {
    Sleep(100);
    found = find();
  }
  return found;
}

int box(const Wish& wish) {
  const HWND found = waitFor(wish.wait, findBox);
  if (found == nullptr) return 1;
  constexpr int messageText = 0xFFFF;
  printText(found);
  if (const HWND text = GetDlgItem(found, messageText)) printText(text);
  if (wish.word != nullptr)
    PostMessageW(found, WM_COMMAND, static_cast<WPARAM>(std::wcstol(wish.word, nullptr, 10)), 0);
  return 0;
}

int close(const Wish& wish) {
  const HWND frame = waitFor(wish.wait, findFrame);
  return frame != nullptr && PostMessageW(frame, WM_SYSCOMMAND, SC_CLOSE, 0) ? 0 : 1;
}

int control(const Wish& wish) {
  const HWND found = waitFor(wish.wait, [&] { return findControl(wish.word); });
  if (found == nullptr) return std::fputs("click: no such control\n", stderr), 1;
  if (wish.text) return printText(found), 0;
  RECT area;
  GetWindowRect(found, &area);
  const POINT middle{(area.left + area.right) / 2, (area.top + area.bottom) / 2};
  std::printf("%ld %ld\n", middle.x, middle.y);
  if (wish.press) press(middle);
  return 0;
}

}  // namespace

int wmain(int count, wchar_t** values) {
  const Wish wish = parse(count, values);
  if (!wish.box && !wish.close && wish.word == nullptr) {
    std::fputs("usage: click [--wait SECONDS] [--press | --text] CONTROL | --close | --box [ANSWER]\n",
               stderr);
    return 2;
  }
  SetProcessDPIAware();
  if (wish.close) return close(wish);
  return wish.box ? box(wish) : control(wish);
}
