// The bar that finds text in the shown faults: a box, a button for the next hit, a message when there is
// none. It only asks; what holds the text is the form's business. One thread.
#pragma once

#include <array>
#include <functional>
#include <string>

#include "platform/view.h"
#include "platform/windows/window/handles.h"

namespace vordane::window::win32 {

class LookUpBar {
 public:
  struct Ids {
    int label, text, next, close, message;
  };
  // Its place in the tab order is behind the last of the parent's children. `made` is called when its windows
  // are there, which is when it is shown for the first time. `texts` must live longer.
  void create(HWND parent, const Ids& ids, ViewTexts& texts, std::function<void()> made);
  void reword();  // the texts say something else now
  void setFont(HFONT font);
  void place(const RECT& bar, int dpi);

  bool open() const { return open_; }
  void show();  // with the focus in the box, its text selected
  void hide();
  void enable(bool enabled);
  std::u16string wanted() const;
  // Beside the buttons; empty takes it away. What only says how far a count has come is not read out.
  void tell(const std::u16string& message, bool onTheWay = false);
  HWND box() const { return text_; }
  HWND message() const { return message_; }  // null before it was shown, as are the other two
  HWND closeButton() const { return close_; }

 private:
  void make();
  std::array<HWND, 5> windows() const { return {label_, text_, next_, close_, message_}; }

  HWND parent_ = nullptr, behind_ = nullptr;
  HWND label_ = nullptr, text_ = nullptr, next_ = nullptr, close_ = nullptr, message_ = nullptr;
  Ids ids_{};
  ViewTexts* texts_ = nullptr;
  std::function<void()> made_;
  bool open_ = false, enabled_ = true;
  HFONT font_ = nullptr;  // not owned
};

}  // namespace vordane::window::win32
