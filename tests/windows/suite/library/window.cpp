#include "library/window.h"

#include <commctrl.h>

#include "click/windows/eye.h"
#include "language/message_numbers.h"
#include "library/text_files.h"
#include "library/texts.h"
#include "library/waiting.h"
#include "platform/windows/window/children.h"

namespace vordane::suite {
namespace {

const click::Eye& eye() {
  static const click::Eye ours(isSuiteProgram);
  return ours;
}

constexpr std::wstring_view requestButton = L"cmdRequest";

std::string noticeOf(HWND frame) {
  const HWND notice = frame == nullptr ? nullptr : GetDlgItem(frame, window::win32::idNotice);
  return notice == nullptr ? std::string{} : utf8(click::textOf(notice));
}

// Whether the window says that it waits for the exchange.
bool waits() {
  const std::string shown = noticeOf(eye().frame());
  return isMessage(shown, message::noticeWaitingList) || isMessage(shown, message::noticeWaitingAlarms) ||
         isMessage(shown, message::noticeWaitingReset);
}

// Another program's window may lie before ours on a workstation.
void bringForward(HWND window, POINT place) {
  const HWND frame = GetAncestor(window, GA_ROOT);
  if (GetAncestor(WindowFromPoint(place), GA_ROOT) != frame)
    SetWindowPos(frame, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
}

void pressLeft(HWND window, POINT place) {
  bringForward(window, place);
  if (!click::pressOn(window, place)) throw Failure("no press reached the window");
}

void answer(HWND box, int button) {
  click::answerBox(box, button);
  await("the end of an answered box", [&] { return !IsWindow(box) || !IsWindowVisible(box); });
}

Box read(HWND box) {
  return {utf8(click::titleOf(box)), utf8(click::messageOf(box))};
}

}  // namespace

HWND Window::awaited(const std::string& what, const std::function<HWND()>& find) const {
  HWND found = nullptr;
  await(
      what, [&] { return (found = find()) != nullptr; },
      [&] {
        if (whose_ != nullptr && !whose_->runs()) throw Failure(whose_->name() + " ended without " + what);
      });
  return found;
}

bool Window::isShown() const {
  const HWND button = eye().control(requestButton);
  return button != nullptr && IsWindowEnabled(GetAncestor(button, GA_ROOT)) && eye().box() == nullptr;
}

void Window::awaitShown() const {
  awaited("the window", [&] { return isShown() ? eye().frame() : nullptr; });
}

std::string Window::textOf(std::wstring_view control) const {
  return utf8(click::textOf(awaited("the control " + utf8(control), [&] { return eye().control(control); })));
}

int Window::rows() const {
  const HWND frame = awaited("the window", [] { return eye().frame(); });
  return static_cast<int>(SendMessageW(GetDlgItem(frame, window::win32::idGrid), LVM_GETITEMCOUNT, 0, 0));
}

std::string Window::notice() const {
  return noticeOf(awaited("the window", [] { return eye().frame(); }));
}

void Window::awaitIdle() const {
  await("the end of a conversation with the exchange", [] { return !waits(); });
}

HWND Window::pressable(std::wstring_view control) const {
  const HWND found = awaited("a control " + utf8(control) + " that can be pressed", [&] {
    const HWND child = eye().control(control);
    return child != nullptr && click::takesInput(child) && eye().box() == nullptr ? child : nullptr;
  });
  click::awaitRest(found);
  return found;
}

void Window::press(std::wstring_view control) const {
  awaitIdle();
  const HWND found = pressable(control);
  pressLeft(found, click::middleOf(found));
}

void Window::pressHeading(int column) const {
  awaitIdle();
  const HWND headings = awaited("the grid's headings", [] { return eye().heading(); });
  click::awaitRest(headings);
  const RECT place = click::placeOfHeading(headings, column);
  if (place.right <= place.left) throw Failure("no heading " + std::to_string(column));
  pressLeft(headings, {(place.left + place.right) / 2, (place.top + place.bottom) / 2});
}

void Window::pressKey(WORD key) const {
  click::pressKey(awaited("the window", [] { return eye().frame(); }), key);
}

void Window::askToClose() const {
  click::askToClose(awaited("the window", [] { return eye().frame(); }));
}

void Window::askForGuide() const {
  const HWND frame = awaited("the window", [] { return eye().frame(); });
  PostMessageW(frame, WM_SYSCOMMAND, window::win32::guideCommand, 0);
}

void Window::awaitFocus(int control) const {
  awaited("the focus on control " + std::to_string(control), [&]() -> HWND {
    GUITHREADINFO input{};
    input.cbSize = sizeof input;
    const HWND frame = eye().frame();
    if (frame == nullptr || !GetGUIThreadInfo(GetWindowThreadProcessId(frame, nullptr), &input))
      return nullptr;
    return input.hwndFocus != nullptr && GetDlgCtrlID(input.hwndFocus) == control ? frame : nullptr;
  });
}

bool Window::hasBox() const {
  return eye().box() != nullptr;
}

// A box that has just come has its text when it is shown.
Box Window::answerBox(int button) const {
  const HWND box = awaited("a box", [] { return eye().box(); });
  const Box said = read(box);
  answer(box, button);
  return said;
}

bool Window::shownAfterBoxes(std::vector<Box>& boxes) const {
  bool shown = false;
  await("the window or the end of the program", [&] {
    if (const HWND box = eye().box()) {
      boxes.push_back(read(box));
      answer(box, IDOK);
    }
    shown = isShown();
    return shown || (whose_ != nullptr && !whose_->runs());
  });
  return shown;
}

// A menu that has come takes the keys.
std::string Window::whatsThis(std::wstring_view control) const {
  const HWND found = pressable(control);
  bringForward(found, click::middleOf(found));
  click::pressAt(click::middleOf(found), click::MouseButton::right);
  const HWND menu = awaited("the menu", [] { return eye().menu(); });
  const HWND frame = GetAncestor(found, GA_ROOT);
  click::pressKey(frame, VK_DOWN);
  click::pressKey(frame, VK_RETURN);
  const HWND help =
      awaited("the pop-up", [&] { return IsWindow(menu) && IsWindowVisible(menu) ? nullptr : eye().help(); });
  const std::string said = utf8(click::textOf(help));
  click::pressKey(frame, VK_ESCAPE);
  await("the end of the pop-up", [] { return eye().help() == nullptr; });
  return said;
}

}  // namespace vordane::suite
