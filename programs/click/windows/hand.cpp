#include "click/windows/hand.h"

#include "click/windows/eye.h"

namespace vordane::click {
namespace {

constexpr DWORD betweenLooks = 10;  // milliseconds

void sendMouse(DWORD flags) {
  INPUT input{};
  input.type = INPUT_MOUSE;
  input.mi.dwFlags = flags;
  SendInput(1, &input, sizeof input);
}

bool holdsMouse(HWND window) {
  GUITHREADINFO thread{};
  thread.cbSize = sizeof thread;
  return GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &thread) && thread.hwndCapture == window;
}

// Whether it comes to that within this time.
bool comes(HWND window, bool holding, ULONGLONG milliseconds) {
  const ULONGLONG end = GetTickCount64() + milliseconds;
  while (IsWindow(window) && holdsMouse(window) != holding) {
    if (GetTickCount64() > end) return false;
    Sleep(betweenLooks);
  }
  return true;
}

}  // namespace

void awaitRest(HWND window) {
  constexpr int looks = 100, pause = 30, answersWithin = 2000;
  DWORD processId = 0;
  GetWindowThreadProcessId(window, &processId);
  // What it still has to do of its start comes before any input.
  const HANDLE process = OpenProcess(PROCESS_QUERY_INFORMATION | SYNCHRONIZE, FALSE, processId);
  WaitForInputIdle(process, answersWithin);
  CloseHandle(process);
  RECT before = placeOf(window);
  for (int i = 0; i < looks; ++i) {
    DWORD_PTR ignored = 0;
    SendMessageTimeoutW(window, WM_NULL, 0, 0, SMTO_NORMAL, answersWithin, &ignored);
    Sleep(pause);
    const RECT now = placeOf(window);
    if (EqualRect(&now, &before)) return;
    before = now;
  }
}

void pressAt(POINT place, MouseButton button) {
  const bool right = button == MouseButton::right;
  SetCursorPos(place.x, place.y);
  INPUT inputs[2]{};
  inputs[0].type = inputs[1].type = INPUT_MOUSE;
  inputs[0].mi.dwFlags = right ? MOUSEEVENTF_RIGHTDOWN : MOUSEEVENTF_LEFTDOWN;
  inputs[1].mi.dwFlags = right ? MOUSEEVENTF_RIGHTUP : MOUSEEVENTF_LEFTUP;
  SendInput(2, inputs, sizeof(INPUT));
}

bool pressOn(HWND target, POINT place) {
  constexpr int tries = 6;
  constexpr ULONGLONG arrives = 10000, released = 60000;
  for (int i = 0; i < tries; ++i) {
    SetCursorPos(place.x, place.y);
    sendMouse(MOUSEEVENTF_LEFTDOWN);
    const bool arrived = comes(target, true, arrives);
    sendMouse(MOUSEEVENTF_LEFTUP);
    if (arrived) return comes(target, false, released);
  }
  return false;
}

void pressKey(HWND frame, WORD key) {
  SetForegroundWindow(frame);
  INPUT inputs[2]{};
  inputs[0].type = inputs[1].type = INPUT_KEYBOARD;
  inputs[0].ki.wVk = inputs[1].ki.wVk = key;
  inputs[1].ki.dwFlags = KEYEVENTF_KEYUP;
  SendInput(2, inputs, sizeof(INPUT));
}

bool askToClose(HWND frame) {
  return PostMessageW(frame, WM_SYSCOMMAND, SC_CLOSE, 0) != FALSE;
}

bool answerBox(HWND box, int button) {
  return PostMessageW(box, WM_COMMAND, static_cast<WPARAM>(button), 0) != FALSE;
}

}  // namespace vordane::click
