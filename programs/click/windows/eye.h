// What a person sees of the running fault display, from outside: its window, the controls in it, its boxes.
// One thread; holds nothing of what it finds, which may be gone at the next look.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <string_view>

namespace vordane::click {

class Eye {
 public:
  // Whether windows of that process are looked at; empty: everybody's.
  using Own = std::function<bool(DWORD processId)>;
  explicit Eye(Own own = {}) : own_(std::move(own)) {}

  // Each null when there is none that can be seen.
  HWND frame() const;  // the fault display's window
  // Of that window, by its name in the form; "account" is the text at the left of the status line.
  HWND control(std::wstring_view name) const;
  HWND heading() const;  // the grid's headings
  HWND box() const;      // a message box
  HWND menu() const;     // a pop-up menu
  HWND help() const;     // the pop-up that explains a control

 private:
  HWND find(const wchar_t* type) const;
  Own own_;
};

// Empty for a window that is gone or does not answer.
std::wstring textOf(HWND window);
// Title and text of a message box.
std::wstring titleOf(HWND box);
std::wstring messageOf(HWND box);
// Whether a press would reach it: it and its window take input, and no box stands before them.
bool takesInput(HWND control);
RECT placeOf(HWND window);
POINT middleOf(HWND window);
// Where a heading stands on the screen; empty when there is no such column.
RECT placeOfHeading(HWND headings, int column);
std::string utf8(std::wstring_view text);

}  // namespace vordane::click
