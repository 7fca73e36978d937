// A line above the rows that says something about them and is pressed to go there: a button as tall as a row,
// so that the rows below stay where they are on the screen when it comes and goes. One thread; the window
// dies with its parent.
#pragma once

#include <windows.h>

#include <string>

#include "platform/windows/window/theme.h"

namespace vordane::window::win32 {

class Strip {
 public:
  enum class Sign { above, flood };
  void create(HWND parent, int id, Sign sign);
  HWND window() const { return window_; }
  const std::u16string& words() const { return words_; }  // also those that there is no room for

  bool shown() const { return !words_.empty(); }
  // One line, or two with a line end between; none takes it away. `action`, at the right, says what a press
  // does.
  void tell(const std::u16string& words, const std::u16string& action = {});
  void draw(const DRAWITEMSTRUCT& item, HFONT font, int dpi, const Palette& palette) const;

 private:
  int drawAction(HDC dc, const RECT& place, HFONT font, int dpi) const;

  HWND window_ = nullptr;
  Sign sign_ = Sign::above;
  std::u16string words_, action_;
};

}  // namespace vordane::window::win32
