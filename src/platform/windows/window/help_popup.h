// A small pop-up with a control's own help text. It goes with the next click, key or change of window. One
// thread; owns nothing but its text while it is shown.
#pragma once

#include <string>

#include "platform/windows/window/handles.h"

namespace vordane::window::win32 {

class HelpPopup {
 public:
  ~HelpPopup() { close(); }
  void show(HWND owner, HWND beside, const std::u16string& help, HFONT font, int dpi);
  void close();
  bool shown() const { return window_ != nullptr; }
  HWND window() const { return window_; }

 private:
  static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wide, LPARAM low);
  void paint();

  HWND window_ = nullptr;
  std::u16string help_;
  HFONT font_ = nullptr;  // not owned
  int dpi_ = 96;
};

}  // namespace vordane::window::win32
