// Another program beside the test: the test program itself, started with a word that names what it does.
#pragma once

#include <windows.h>

#include <string>

namespace vordane::window::testing {

// Does it until it is let go. Ends with the test at the latest.
class SecondProcess {
 public:
  // Returns when it does it: "--clipboard" holds the clipboard, "--foreground" has the foreground window.
  explicit SecondProcess(const wchar_t* what) {
    const DWORD own = GetCurrentProcessId();
    ready_ = CreateEventW(nullptr, TRUE, FALSE, readyName(own).c_str());
    leave_ = CreateEventW(nullptr, TRUE, FALSE, leaveName(own).c_str());
    wchar_t program[MAX_PATH];
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    std::wstring line = L"\"" + std::wstring(program) + L"\" " + what + L" " + std::to_wstring(own);
    STARTUPINFOW start{};
    start.cb = sizeof start;
    if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start,
                        &process_))
      return;
    const HANDLE either[] = {ready_, process_.hProcess};
    ready = WaitForMultipleObjects(2, either, FALSE, INFINITE) == WAIT_OBJECT_0;
  }
  SecondProcess(const SecondProcess&) = delete;
  SecondProcess& operator=(const SecondProcess&) = delete;
  ~SecondProcess() {
    letGo();
    for (HANDLE handle : {process_.hThread, process_.hProcess, ready_, leave_}) CloseHandle(handle);
  }
  // Returns when it has ended.
  void letGo() {
    SetEvent(leave_);
    WaitForSingleObject(process_.hProcess, INFINITE);
  }
  bool ready = false;

  // For the program's main: true when it was started as the second process and has done its work.
  static bool served(int count, char** words) {
    if (count != 3) return false;
    const std::string what = words[1];
    const auto test = static_cast<DWORD>(std::stoul(words[2]));
    const HANDLE ready = OpenEventW(EVENT_MODIFY_STATE, FALSE, readyName(test).c_str());
    const HANDLE leave = OpenEventW(SYNCHRONIZE, FALSE, leaveName(test).c_str());
    if (what == "--clipboard" && OpenClipboard(nullptr)) {
      SetEvent(ready);
      WaitForSingleObject(leave, INFINITE);
      CloseClipboard();
    }
    if (what == "--foreground") {
      const HWND window = CreateWindowW(L"STATIC", L"Host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 20, 20, 900,
                                        700, nullptr, nullptr, nullptr, nullptr);
      SetForegroundWindow(window);
      bool told = false;
      while (MsgWaitForMultipleObjects(1, &leave, FALSE, INFINITE, QS_ALLINPUT) != WAIT_OBJECT_0 || !told) {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
        if (!told && GetForegroundWindow() == window) told = SetEvent(ready) != FALSE;
      }
    }
    return true;
  }

 private:
  static std::wstring readyName(DWORD test) { return L"vordane-ready-" + std::to_wstring(test); }
  static std::wstring leaveName(DWORD test) { return L"vordane-leave-" + std::to_wstring(test); }

  HANDLE ready_ = nullptr, leave_ = nullptr;
  PROCESS_INFORMATION process_{};
};

}  // namespace vordane::window::testing
