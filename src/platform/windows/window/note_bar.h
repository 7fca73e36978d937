// The line below the selected fault with what a person has written to it: to be read while there is a note,
// and to be written in when that is asked for. Without either it takes no room. It knows no fault. One
// thread; its windows die with their parent.
#pragma once

#include <windows.h>

#include <array>
#include <functional>
#include <string>

#include "platform/windows/window/watch.h"

namespace vordane::window::win32 {

class NoteBar {
 public:
  // `blanked` is called when something was pasted in which line ends or control characters became blanks;
  // `tip` gives a window its tool tip, for words that there is no room for.
  using Tip = std::function<void(HWND window, const std::u16string& words)>;
  // Its place in the tab order is behind the last of the parent's children. `made` is called when its windows
  // are there, which is when it is shown for the first time.
  void create(HWND parent, std::function<void()> blanked, Tip tip, std::function<void()> made);
  void setFont(HFONT font, int dpi);  // `font` must live until the next one is set

  void show(const std::u16string& label, const std::u16string& text);
  void edit(const std::u16string& label, const std::u16string& text);  // with the focus in it
  void hide();
  bool shown() const { return state_ != State::hidden; }
  bool editing() const { return state_ == State::edited; }
  void enable(bool enabled);

  std::u16string text() const;
  // Below the box while it is written in, and read out.
  void tell(const std::u16string& message);

  int height() const;  // in pixels; 0 while it is hidden
  void place(const RECT& bar);

  bool has(HWND part) const {
    return part != nullptr && (part == label_ || part == box_ || part == message_);
  }
  HWND box() const { return box_; }  // null before it was shown, as is the other one
  HWND message() const { return message_; }

 private:
  enum class State { hidden, read, edited };
  void make();
  void turn(State state, const std::u16string& label, const std::u16string& text);
  LRESULT heard(UINT message, WPARAM wide, LPARAM low);
  void paste();
  int boxTall() const;
  int messageTall() const;

  std::array<HWND, 3> windows() const { return {label_, box_, message_}; }

  HWND parent_ = nullptr, behind_ = nullptr;
  HWND label_ = nullptr, box_ = nullptr, message_ = nullptr;
  Watch watch_;
  std::function<void()> blanked_, made_;
  Tip tip_;
  State state_ = State::hidden;
  RECT at_{};             // where it was placed last
  HFONT font_ = nullptr;  // not owned
  int dpi_ = 96;
  bool enabled_ = true;
};

}  // namespace vordane::window::win32
