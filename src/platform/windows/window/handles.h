// Owned handles of windows and drawing: each type is a handle, how it is closed, and nothing else. One
// thread; destructors never throw.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>
#include <utility>

namespace vordane::window::win32 {

// wchar_t is the same UTF-16 unit as char16_t here, only another type.
inline const wchar_t* wide(const std::u16string& text) {
  return reinterpret_cast<const wchar_t*>(text.c_str());
}
inline const wchar_t* wideBegin(std::u16string_view text) {
  return reinterpret_cast<const wchar_t*>(text.data());
}
inline std::u16string fromWide(const wchar_t* text, std::size_t length) {
  return {reinterpret_cast<const char16_t*>(text), length};
}

template <typename Handle, auto close>
class Owned {
 public:
  Owned() = default;
  explicit Owned(Handle handle) : handle_(handle) {}
  Owned(Owned&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  Owned& operator=(Owned&& other) noexcept {
    if (this != &other) reset(std::exchange(other.handle_, nullptr));
    return *this;
  }
  Owned(const Owned&) = delete;
  Owned& operator=(const Owned&) = delete;
  ~Owned() { reset(nullptr); }

  Handle get() const { return handle_; }
  Handle release() { return std::exchange(handle_, nullptr); }
  explicit operator bool() const { return handle_ != nullptr; }
  void reset(Handle handle) {
    if (handle_ != nullptr) close(handle_);
    handle_ = handle;
  }

 private:
  Handle handle_ = nullptr;
};

inline void closeGdi(HGDIOBJ object) {
  DeleteObject(object);
}
using Font = Owned<HFONT, closeGdi>;
using Brush = Owned<HBRUSH, closeGdi>;
using Pen = Owned<HPEN, closeGdi>;
using Bitmap = Owned<HBITMAP, closeGdi>;
using Menu = Owned<HMENU, DestroyMenu>;
using MemoryDc = Owned<HDC, DeleteDC>;
using Library = Owned<HMODULE, FreeLibrary>;

// Puts the former object back, so that nothing owned is deleted while it is selected.
class Selected {
 public:
  Selected(HDC dc, HGDIOBJ object) : dc_(dc), former_(SelectObject(dc, object)) {}
  Selected(const Selected&) = delete;
  Selected& operator=(const Selected&) = delete;
  ~Selected() { SelectObject(dc_, former_); }

 private:
  HDC dc_;
  HGDIOBJ former_;
};

// The drawing surface of a window for measuring.
class WindowDc {
 public:
  explicit WindowDc(HWND window) : window_(window), dc_(GetDC(window)) {}
  WindowDc(const WindowDc&) = delete;
  WindowDc& operator=(const WindowDc&) = delete;
  ~WindowDc() { ReleaseDC(window_, dc_); }
  HDC get() const { return dc_; }

 private:
  HWND window_;
  HDC dc_;
};

std::u16string windowText(HWND window);
// A caption as words: what underlines a letter is gone, with the letter where it stands in brackets behind
// them.
std::u16string withoutAccessKey(std::u16string caption);
// Does nothing when the window has the text already, so that nothing flickers.
void setWindowText(HWND window, const std::u16string& text);

}  // namespace vordane::window::win32
