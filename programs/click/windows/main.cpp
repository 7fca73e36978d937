// What a person's hand and eye do to the running fault display, from outside and in its real window:
//
//   click [--wait SECONDS] CONTROL           prints the middle of the control on the screen as "x y" (pixels)
//   click [--wait SECONDS] --press CONTROL   the same, and presses it with the mouse
//   click [--wait SECONDS] --right CONTROL   the same with the right button
//   click [--wait SECONDS] --text CONTROL    prints the control's text
//   click [--wait SECONDS] --close           asks the window to close, as its title bar does
//   click [--wait SECONDS] --heading COLUMN  presses that heading of the grid (0 is the first)
//   click [--wait SECONDS] --key NUMBER      brings the window to the front and presses that key (112 is F1)
//   click [--wait SECONDS] --help            prints the text of the pop-up that explains a control
//   click [--wait SECONDS] --box [ANSWER]    prints a message box's title and text; answers it with that
//   button
//
// Controls go by their names in the form, the text at the left of the status line by "account"; ANSWER is 1 (OK), 2 (cancel), 6 (yes), 7 (no). Ends with 1 when
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
  if (_wcsicmp(name, L"account") == 0) return GetDlgItem(frame, vordane::window::win32::idAccount);
  const auto* child = std::find_if(std::begin(children), std::end(children),
                                   [&](const Child& entry) { return isNamed(entry, name); });
  return child == std::end(children) ? nullptr : GetDlgItem(frame, child->id);
}

void press(POINT point, bool right) {
  SetCursorPos(point.x, point.y);
  INPUT inputs[2]{};
  inputs[0].type = inputs[1].type = INPUT_MOUSE;
  inputs[0].mi.dwFlags = right ? MOUSEEVENTF_RIGHTDOWN : MOUSEEVENTF_LEFTDOWN;
  inputs[1].mi.dwFlags = right ? MOUSEEVENTF_RIGHTUP : MOUSEEVENTF_LEFTUP;
  SendInput(2, inputs, sizeof(INPUT));
}

enum class Deed { find, press, rightPress, text, close, heading, key, help, box };
constexpr struct {
  const wchar_t* option;
  Deed deed;
} deeds[] = {{L"--press", Deed::press},     {L"--right", Deed::rightPress}, {L"--text", Deed::text},
             {L"--heading", Deed::heading}, {L"--key", Deed::key},          {L"--help", Deed::help},
             {L"--close", Deed::close},     {L"--box", Deed::box}};

struct Wish {
  long wait = 0;
  Deed deed = Deed::find;
  const wchar_t* word = nullptr;  // the control, the number, or the answer to a box
};

long number(const Wish& wish) {
  return std::wcstol(wish.word, nullptr, 10);
}

Wish parse(int count, wchar_t** values) {
  Wish wish;
  for (int i = 1; i < count; ++i) {
    const auto* known = std::find_if(std::begin(deeds), std::end(deeds), [&](const auto& entry) {
      return std::wcscmp(entry.option, values[i]) == 0;
    });
    if (std::wcscmp(values[i], L"--wait") == 0 && i + 1 < count)
      wish.wait = std::wcstol(values[++i], nullptr, 10);
    else if (known != std::end(deeds))
      wish.deed = known->deed;
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
  if (wish.word != nullptr) PostMessageW(found, WM_COMMAND, static_cast<WPARAM>(number(wish)), 0);
  return 0;
}

// The place of a heading lies in the other process's memory while it is asked for.
RECT headingPlace(HWND header, WPARAM column) {
  RECT place{};
  DWORD processId = 0;
  GetWindowThreadProcessId(header, &processId);
  const HANDLE process =
      OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_READ | PROCESS_VM_WRITE, FALSE, processId);
  void* const there = VirtualAllocEx(process, nullptr, sizeof place, MEM_COMMIT, PAGE_READWRITE);
  if (there != nullptr && SendMessageW(header, HDM_GETITEMRECT, column, reinterpret_cast<LPARAM>(there)) != 0)
    ReadProcessMemory(process, there, &place, sizeof place, nullptr);
  if (there != nullptr) VirtualFreeEx(process, there, 0, MEM_RELEASE);
  CloseHandle(process);
  MapWindowPoints(header, nullptr, reinterpret_cast<POINT*>(&place), 2);
  return place;
}

int heading(const Wish& wish) {
  const HWND frame = waitFor(wish.wait, findFrame);
  const HWND grid = GetDlgItem(frame, vordane::window::win32::idGrid);
  const auto header = reinterpret_cast<HWND>(SendMessageW(grid, LVM_GETHEADER, 0, 0));
  if (header == nullptr || !IsWindowVisible(header)) return 1;
  const RECT place = headingPlace(header, static_cast<WPARAM>(number(wish)));
  if (place.right <= place.left) return 1;
  press({(place.left + place.right) / 2, (place.top + place.bottom) / 2}, false);
  return 0;
}

int key(const Wish& wish) {
  const HWND frame = waitFor(wish.wait, findFrame);
  if (frame == nullptr) return 1;
  SetForegroundWindow(frame);
  INPUT inputs[2]{};
  inputs[0].type = inputs[1].type = INPUT_KEYBOARD;
  inputs[0].ki.wVk = inputs[1].ki.wVk = static_cast<WORD>(number(wish));
  inputs[1].ki.dwFlags = KEYEVENTF_KEYUP;
  SendInput(2, inputs, sizeof(INPUT));
  return 0;
}

int help(const Wish& wish) {
  const HWND found =
      waitFor(wish.wait, [] { return FindWindowW(vordane::window::win32::helpClassName, nullptr); });
  if (found == nullptr) return 1;
  printText(found);
  return 0;
}

int close(const Wish& wish) {
  const HWND frame = waitFor(wish.wait, findFrame);
  return frame != nullptr && PostMessageW(frame, WM_SYSCOMMAND, SC_CLOSE, 0) ? 0 : 1;
}

RECT placeOf(HWND window) {
  RECT area{};
  GetWindowRect(window, &area);
  return area;
}

// A window that has just appeared may still be arranging itself: waits until it answers and stands still.
void awaitRest(HWND window) {
  constexpr int looks = 50, pause = 100;
  RECT before = placeOf(window);
  for (int i = 0; i < looks; ++i) {
    DWORD_PTR ignored = 0;
    SendMessageTimeoutW(window, WM_NULL, 0, 0, SMTO_NORMAL, 20 * pause, &ignored);
    Sleep(pause);
    const RECT now = placeOf(window);
    if (EqualRect(&now, &before)) return;
    before = now;
  }
}

int control(const Wish& wish) {
  // What can't be pressed yet, since a box is still about to go, is waited for.
  const bool presses = wish.deed == Deed::press || wish.deed == Deed::rightPress;
  const HWND found = waitFor(wish.wait, [&] {
    const HWND child = findControl(wish.word);
    return !presses || (IsWindowEnabled(findFrame()) && IsWindowEnabled(child)) ? child : nullptr;
  });
  if (found == nullptr) return std::fputs("click: no such control\n", stderr), 1;
  if (wish.deed == Deed::text) return printText(found), 0;
  if (presses) awaitRest(found);
  const RECT area = placeOf(found);
  const POINT middle{(area.left + area.right) / 2, (area.top + area.bottom) / 2};
  std::printf("%ld %ld\n", middle.x, middle.y);
  if (presses) press(middle, wish.deed == Deed::rightPress);
  return 0;
}

int run(const Wish& wish) {
  switch (wish.deed) {
    case Deed::box:
      return box(wish);
    case Deed::close:
      return close(wish);
    case Deed::help:
      return help(wish);
    case Deed::heading:
      return heading(wish);
    case Deed::key:
      return key(wish);
    default:
      return control(wish);
  }
}

}  // namespace

int wmain(int count, wchar_t** values) {
  const Wish wish = parse(count, values);
  const bool wordless = wish.deed == Deed::box || wish.deed == Deed::close || wish.deed == Deed::help;
  if (!wordless && wish.word == nullptr)
    return std::fputs(
               "usage: click [--wait SECONDS] [--press | --right | --text] CONTROL\n"
               "                             | --heading COLUMN | --key NUMBER | --close | --help | --box "
               "[ANSWER]\n",
               stderr),
           2;
  SetProcessDPIAware();
  return run(wish);
}
