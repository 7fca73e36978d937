#include "platform/windows/window/clipboard.h"

#include <cstring>

namespace vordane::window::win32 {
namespace {

constexpr int mostTries = 10;
constexpr DWORD pause = 20;

bool opened(HWND owner, const WaitForClipboard& wait) {
  for (int tries = 1; !OpenClipboard(owner); ++tries)
    if (!wait(tries)) return false;
  return true;
}

}  // namespace

bool waitForClipboard(int tries) {
  if (tries > mostTries) return false;
  Sleep(pause);
  return true;
}

bool putOnClipboard(HWND owner, const std::u16string& text, const WaitForClipboard& wait) {
  const std::size_t bytes = (text.size() + 1) * sizeof(char16_t);
  HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, bytes);
  if (memory == nullptr) return false;
  std::memcpy(GlobalLock(memory), text.c_str(), bytes);
  GlobalUnlock(memory);
  bool taken = false;
  if (opened(owner, wait)) {
    taken = EmptyClipboard() && SetClipboardData(CF_UNICODETEXT, memory) != nullptr;
    CloseClipboard();
  }
  if (!taken) GlobalFree(memory);
  return taken;
}

}  // namespace vordane::window::win32
