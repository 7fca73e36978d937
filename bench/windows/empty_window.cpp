// An empty Windows program with one list view: what the add-in's start is compared with.
#include <windows.h>

#include <commctrl.h>

namespace {

LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM word, LPARAM value) {
  if (message == WM_DESTROY) PostQuitMessage(0);
  return DefWindowProcW(window, message, word, value);
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int) {
  InitCommonControls();
  WNDCLASSW type{};
  type.lpfnWndProc = &procedure;
  type.hInstance = instance;
  type.lpszClassName = L"VordaneBenchEmpty";
  RegisterClassW(&type);
  const HWND window = CreateWindowW(type.lpszClassName, L"", WS_OVERLAPPEDWINDOW, 100, 100, 900, 600, nullptr,
                                    nullptr, instance, nullptr);
  CreateWindowW(WC_LISTVIEWW, L"", WS_CHILD | WS_VISIBLE | LVS_REPORT, 0, 0, 880, 560, window, nullptr,
                instance, nullptr);
  ShowWindow(window, SW_SHOW);
  UpdateWindow(window);
  MSG message;
  while (GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
  return 0;
}
