// The fault display's window as a person has it before him: looked at and pressed from outside, and never
// pressed before a press counts. Waits end at once when `whose` program ends; it may be null. One thread.
#pragma once

#include <string>
#include <string_view>

#include "click/windows/hand.h"
#include "library/program.h"

namespace vordane::suite {

struct Box {
  std::string title, text;
  std::string whole() const { return title + " " + text; }
};

class Window {
 public:
  explicit Window(const Program* whose = nullptr) : whose_(whose) {}

  // Until the window stands there with its request button, and no box before it.
  void awaitShown() const;
  bool isShown() const;
  std::string textOf(std::wstring_view control) const;
  int rows() const;            // of the grid
  std::string notice() const;  // what stands in the place of the rows, or above them

  // Waits until the button can be pressed and nothing is waited for, since a press before would be dropped.
  void press(std::wstring_view control) const;
  void pressHeading(int column) const;
  void pressKey(WORD key) const;  // VK_...
  void askToClose() const;        // as its title bar does
  void askForGuide() const;       // as its system menu does
  // Until the control with that number (platform/windows/window/children.h) has the focus.
  void awaitFocus(int control) const;
  // Until the window no longer says that it waits for the exchange.
  void awaitIdle() const;

  // The next box that comes, answered with that button (IDOK, IDNO ...) and gone.
  Box answerBox(int button = IDOK) const;
  bool hasBox() const;
  // Until the window is shown or the program ends, whichever comes: true or false. Boxes on the way are
  // answered with OK and told.
  bool shownAfterBoxes(std::vector<Box>& boxes) const;
  // What the pop-up says that explains a control, by the right button and its menu; closed again.
  std::string whatsThis(std::wstring_view control) const;

 private:
  HWND awaited(const std::string& what, const std::function<HWND()>& find) const;
  HWND pressable(std::wstring_view control) const;
  const Program* whose_;
};

}  // namespace vordane::suite
