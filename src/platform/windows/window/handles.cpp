#include "platform/windows/window/handles.h"

namespace vordane::window::win32 {

std::u16string windowText(HWND window) {
  std::wstring buffer(static_cast<std::size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
  const int length = GetWindowTextW(window, buffer.data(), static_cast<int>(buffer.size()));
  return fromWide(buffer.data(), static_cast<std::size_t>(length));
}

void setWindowText(HWND window, const std::u16string& text) {
  if (window != nullptr && windowText(window) != text) SetWindowTextW(window, wide(text));
}

std::u16string withoutAccessKey(std::u16string caption) {
  const auto mark = caption.find(u'&');
  if (mark == caption.npos) return caption;
  const bool behind =
      mark > 0 && caption[mark - 1] == u'(' && mark + 2 < caption.size() && caption[mark + 2] == u')';
  return behind ? caption.erase(mark - 1, 4) : caption.erase(mark, 1);
}

}  // namespace vordane::window::win32
