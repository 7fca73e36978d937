// Finds a control of the running fault display from outside: `click [--wait SECONDS] [--press] CONTROL`
// prints the middle of the control on the screen as "x y" (pixels), and presses it with the mouse when asked.
// The window says which control a child is by the window property "Vordane.Control" (an atom of its name).
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <string>

namespace {

constexpr wchar_t frameClass[] = L"VordaneFaultDisplay";
constexpr wchar_t controlProperty[] = L"Vordane.Control";

struct Search {
  const wchar_t* name;
  HWND found;
};

BOOL CALLBACK matchChild(HWND child, LPARAM parameter) {
  auto& search = *reinterpret_cast<Search*>(parameter);
  const auto atom = static_cast<ATOM>(reinterpret_cast<ULONG_PTR>(GetPropW(child, controlProperty)));
  wchar_t name[256];
  if (atom == 0 || GlobalGetAtomNameW(atom, name, 256) == 0 || _wcsicmp(name, search.name) != 0) return TRUE;
  search.found = child;
  return FALSE;
}

HWND findControl(const wchar_t* name) {
  const HWND frame = FindWindowW(frameClass, nullptr);
  if (frame == nullptr || !IsWindowVisible(frame)) return nullptr;
  Search search{name, nullptr};
  EnumChildWindows(frame, matchChild, reinterpret_cast<LPARAM>(&search));
  return search.found;
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
