#include "desk.h"

#include <commctrl.h>

#include "platform/windows/window/children.h"

namespace vordane::hostile {

using namespace window::win32;

HWND addInWindow() {
  return FindWindowW(windowClassName, nullptr);
}

void pressButton(HWND window, Action action) {
  for (const ButtonAction& button : buttonActions)
    if (button.action == action)
      PostMessageW(window, WM_COMMAND, MAKEWPARAM(button.id, BN_CLICKED),
                   reinterpret_cast<LPARAM>(GetDlgItem(window, button.id)));
}

void pressKey(HWND window, int code) {
  PostMessageW(window, WM_KEYDOWN, static_cast<WPARAM>(code), 0);
  PostMessageW(window, WM_KEYUP, static_cast<WPARAM>(code), 0);
}

// About in the middle of the columns, which are about as wide as they were made.
void clickHeading(HWND window, int column) {
  constexpr int firstMiddle = 40, wide = 120, row = 8;
  const auto header = reinterpret_cast<HWND>(SendMessageW(GetDlgItem(window, idGrid), LVM_GETHEADER, 0, 0));
  const LPARAM point = MAKELPARAM(firstMiddle + wide * column, row);
  PostMessageW(header, WM_LBUTTONDOWN, MK_LBUTTON, point);
  PostMessageW(header, WM_LBUTTONUP, 0, point);
}

void chooseExchange(HWND window, std::uint64_t any) {
  const HWND list = GetDlgItem(window, idExchange);
  const auto count = static_cast<std::uint64_t>(SendMessageW(list, CB_GETCOUNT, 0, 0));
  if (count == 0 || count > 1000) return;
  PostMessageW(list, CB_SETCURSEL, static_cast<WPARAM>(any % count), 0);
  PostMessageW(window, WM_COMMAND, MAKEWPARAM(idExchange, CBN_SELCHANGE), reinterpret_cast<LPARAM>(list));
}

void askToClose(HWND window) {
  PostMessageW(window, WM_SYSCOMMAND, SC_CLOSE, 0);
}

}  // namespace vordane::hostile
