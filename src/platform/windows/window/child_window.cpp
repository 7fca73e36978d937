#include "platform/windows/window/child_window.h"

#include "platform/windows/window/handles.h"

namespace vordane::window::win32 {

HWND makeChild(HWND parent, int id, const wchar_t* type, const std::u16string& text, DWORD style) {
  return CreateWindowExW(0, type, wide(text), WS_CHILD | WS_CLIPSIBLINGS | style, 0, 0, 0, 0, parent,
                         reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleW(nullptr),
                         nullptr);
}

HWND lastChild(HWND parent) {
  const HWND first = GetWindow(parent, GW_CHILD);
  return first != nullptr ? GetWindow(first, GW_HWNDLAST) : nullptr;
}

void putBehind(HWND sibling, std::span<const HWND> windows) {
  for (const HWND window : windows) {
    SetWindowPos(window, sibling, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    sibling = window;
  }
}

}  // namespace vordane::window::win32
