#include "platform/windows/window/clipboard.h"

#include <cstring>

#include "platform/windows/window/handles.h"

namespace vordane::window::win32 {
namespace {

constexpr int mostTries = 10;
constexpr DWORD pause = 20;

bool opened(HWND owner, const WaitForClipboard& wait) {
  for (int tries = 1; !OpenClipboard(owner); ++tries)
    if (!wait(tries)) return false;
  return true;
}

using Memory = Owned<HGLOBAL, GlobalFree>;

// Null when there is none left.
HGLOBAL copyOf(const void* bytes, std::size_t size) {
  HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, size);
  if (memory == nullptr) return nullptr;
  std::memcpy(GlobalLock(memory), bytes, size);
  GlobalUnlock(memory);
  return memory;
}

// The memory is the clipboard's when it has taken it.
bool given(UINT format, Memory& memory) {
  const bool taken = SetClipboardData(format, memory.get()) != nullptr;
  if (taken) memory.release();
  return taken;
}

}  // namespace

bool waitForClipboard(int tries) {
  if (tries > mostTries) return false;
  Sleep(pause);
  return true;
}

std::string clipboardHtml(std::string_view fragment) {
  constexpr std::string_view head =
                                 "Version:0.9\r\nStartHTML:0000000000\r\nEndHTML:0000000000\r\n"
                                 "StartFragment:0000000000\r\nEndFragment:0000000000\r\n",
                             open = "<html><body>\r\n<!--StartFragment-->",
                             close = "<!--EndFragment-->\r\n</body></html>";
  std::string whole(head);
  ((whole += open) += fragment) += close;
  const std::size_t begin = head.size() + open.size();
  const auto put = [&](std::string_view name, std::size_t value) {
    const std::string digits = std::to_string(value);
    const std::size_t end = whole.find(name) + name.size() + 10;
    whole.replace(end - digits.size(), digits.size(), digits);
  };
  put("StartHTML:", head.size());
  put("EndHTML:", whole.size());
  put("StartFragment:", begin);
  put("EndFragment:", begin + fragment.size());
  return whole;
}

bool putOnClipboard(HWND owner, const std::u16string& text, std::string_view html,
                    const WaitForClipboard& wait) {
  Memory words(copyOf(text.c_str(), (text.size() + 1) * sizeof(char16_t))), page;
  if (!html.empty()) {
    const std::string whole = clipboardHtml(html);
    page.reset(copyOf(whole.c_str(), whole.size() + 1));
  }
  if (!words || !opened(owner, wait)) return false;
  const bool taken = EmptyClipboard() && given(CF_UNICODETEXT, words);
  if (taken && page) given(RegisterClipboardFormatW(L"HTML Format"), page);
  CloseClipboard();
  return taken;
}

std::u16string clipboardText(HWND owner) {
  if (!opened(owner, waitForClipboard)) return {};
  std::u16string text;
  if (const HANDLE memory = GetClipboardData(CF_UNICODETEXT)) {
    const auto* begin = static_cast<const wchar_t*>(GlobalLock(memory));
    // It need not end where the memory does, and need not have an end.
    if (begin != nullptr) text = fromWide(begin, wcsnlen(begin, GlobalSize(memory) / sizeof(wchar_t)));
    GlobalUnlock(memory);
  }
  CloseClipboard();
  return text;
}

}  // namespace vordane::window::win32
