#include "desk.h"

#include <commctrl.h>

#include <map>

#include "platform/windows/window/children.h"

namespace vordane::hostile {

using namespace window::win32;

namespace {

// Looked for once a window. The newer Wine lists a window's children in two steps, and its server never comes
// back from the second where the first child is destroyed in between.
HWND controlOf(HWND window, int id) {
  static HWND known = nullptr;
  static std::map<int, HWND> controls;
  if (window == nullptr) return nullptr;
  if (window != known) controls.clear();
  known = window;
  HWND& control = controls[id];
  if (control == nullptr) control = GetDlgItem(window, id);
  return control;
}

}  // namespace

HWND addInWindow() {
  return FindWindowW(windowClassName, nullptr);
}

void pressButton(HWND window, Action action) {
  for (const ButtonAction& button : buttonActions)
    if (button.action == action)
      PostMessageW(window, WM_COMMAND, MAKEWPARAM(button.id, BN_CLICKED),
                   reinterpret_cast<LPARAM>(controlOf(window, button.id)));
}

void pressKey(HWND window, int code) {
  PostMessageW(window, WM_KEYDOWN, static_cast<WPARAM>(code), 0);
  PostMessageW(window, WM_KEYUP, static_cast<WPARAM>(code), 0);
}

// About in the middle of the columns, which are about as wide as they were made.
void clickHeading(HWND window, int column) {
  constexpr int firstMiddle = 40, wide = 120, row = 8;
  const auto header = reinterpret_cast<HWND>(SendMessageW(controlOf(window, idGrid), LVM_GETHEADER, 0, 0));
  const LPARAM point = MAKELPARAM(firstMiddle + wide * column, row);
  PostMessageW(header, WM_LBUTTONDOWN, MK_LBUTTON, point);
  PostMessageW(header, WM_LBUTTONUP, 0, point);
}

void chooseExchange(HWND window, std::uint64_t any) {
  const HWND list = controlOf(window, idExchange);
  const auto count = static_cast<std::uint64_t>(SendMessageW(list, CB_GETCOUNT, 0, 0));
  if (count == 0 || count > 1000) return;
  PostMessageW(list, CB_SETCURSEL, static_cast<WPARAM>(any % count), 0);
  PostMessageW(window, WM_COMMAND, MAKEWPARAM(idExchange, CBN_SELCHANGE), reinterpret_cast<LPARAM>(list));
}

void askToClose(HWND window) {
  PostMessageW(window, WM_SYSCOMMAND, SC_CLOSE, 0);
}

}  // namespace vordane::hostile
