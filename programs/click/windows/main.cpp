// What a person's hand and eye do to the running fault display, from outside and in its real window:
//
//   click [--wait SECONDS] CONTROL           prints the middle of the control on the screen as "x y" (pixels)
//   click [--wait SECONDS] --press CONTROL   the same, and presses it with the mouse
//   click [--wait SECONDS] --right CONTROL   the same with the right button
//   click [--wait SECONDS] --text CONTROL    prints the control's text
//   click [--wait SECONDS] --close           asks the window to close, as its title bar does
//   click [--wait SECONDS] --heading COLUMN  presses that heading of the grid (0 is the first)
//   click [--wait SECONDS] --key NUMBER      brings the window to the front and presses that key (112 is F1)
//   click [--wait SECONDS] --help            prints the text of the pop-up that explains a control
//   click [--wait SECONDS] --box [ANSWER]    prints a message box's title and text; answers it with that
//   button
//
// Controls go by their names in the form; ANSWER is 1 (OK), 2 (cancel), 6 (yes), 7 (no). Ends with 1 when
// what was waited for did not come.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <string>

#include "click/windows/eye.h"
#include "click/windows/hand.h"

namespace vordane::click {
namespace {

enum class Deed { find, press, rightPress, text, close, heading, key, help, box };
constexpr struct {
  const wchar_t* option;
  Deed deed;
} deeds[] = {{L"--press", Deed::press},     {L"--right", Deed::rightPress}, {L"--text", Deed::text},
             {L"--heading", Deed::heading}, {L"--key", Deed::key},          {L"--help", Deed::help},
             {L"--close", Deed::close},     {L"--box", Deed::box}};

struct Wish {
  long wait = 0;
  Deed deed = Deed::find;
  const wchar_t* word = nullptr;  // the control, the number, or the answer to a box
};

long number(const Wish& wish) {
  return std::wcstol(wish.word, nullptr, 10);
}

Wish parse(int count, wchar_t** values) {
  Wish wish;
  for (int i = 1; i < count; ++i) {
    const auto* known = std::find_if(std::begin(deeds), std::end(deeds), [&](const auto& entry) {
      return std::wcscmp(entry.option, values[i]) == 0;
    });
    if (std::wcscmp(values[i], L"--wait") == 0 && i + 1 < count)
      wish.wait = std::wcstol(values[++i], nullptr, 10);
    else if (known != std::end(deeds))
      wish.deed = known->deed;
    else
      wish.word = values[i];
  }
  return wish;
}

const Eye& eye() {
  static const Eye everywhere;
  return everywhere;
}

void print(HWND window) {
  std::puts(utf8(textOf(window)).c_str());
}

template <class Find>
HWND waitFor(long seconds, Find find) {
  HWND found = find();
  for (long tries = seconds * 10; found == nullptr && tries > 0; --tries) {
    Sleep(100);
    found = find();
  }
  return found;
}

HWND waitForFrame(const Wish& wish) {
  return waitFor(wish.wait, [] { return eye().frame(); });
}

int box(const Wish& wish) {
  const HWND found = waitFor(wish.wait, [] { return eye().box(); });
  if (found == nullptr) return 1;
  print(found);
  std::puts(utf8(messageOf(found)).c_str());
  if (wish.word != nullptr) answerBox(found, static_cast<int>(number(wish)));
  return 0;
}

int heading(const Wish& wish) {
  const HWND found = waitFor(wish.wait, [] { return eye().heading(); });
  if (found == nullptr) return 1;
  const RECT place = placeOfHeading(found, static_cast<int>(number(wish)));
  if (place.right <= place.left) return 1;
  return pressOn(found, {(place.left + place.right) / 2, (place.top + place.bottom) / 2}) ? 0 : 1;
}

int key(const Wish& wish) {
  const HWND frame = waitForFrame(wish);
  if (frame == nullptr) return 1;
  pressKey(frame, static_cast<WORD>(number(wish)));
  return 0;
}

int help(const Wish& wish) {
  const HWND found = waitFor(wish.wait, [] { return eye().help(); });
  if (found == nullptr) return 1;
  print(found);
  return 0;
}

int close(const Wish& wish) {
  const HWND frame = waitForFrame(wish);
  return frame != nullptr && askToClose(frame) ? 0 : 1;
}

int control(const Wish& wish) {
  // What can't be pressed yet, since a box is still about to go, is waited for.
  const bool presses = wish.deed == Deed::press || wish.deed == Deed::rightPress;
  const HWND found = waitFor(wish.wait, [&] {
    const HWND child = eye().control(wish.word);
    return !presses || takesInput(child) ? child : nullptr;
  });
  if (found == nullptr) return std::fputs("click: no such control\n", stderr), 1;
  if (wish.deed == Deed::text) return print(found), 0;
  if (presses) awaitRest(found);
  const POINT middle = middleOf(found);
  std::printf("%ld %ld\n", middle.x, middle.y);
  if (wish.deed == Deed::press) return pressOn(found, middle) ? 0 : 1;
  if (presses) pressAt(middle, MouseButton::right);
  return 0;
}

int run(const Wish& wish) {
  switch (wish.deed) {
    case Deed::box:
      return box(wish);
    case Deed::close:
      return close(wish);
    case Deed::help:
      return help(wish);
    case Deed::heading:
      return heading(wish);
    case Deed::key:
      return key(wish);
    default:
      return control(wish);
  }
}

}  // namespace
}  // namespace vordane::click

int wmain(int count, wchar_t** values) {
  using namespace vordane::click;
  const Wish wish = parse(count, values);
  const bool wordless = wish.deed == Deed::box || wish.deed == Deed::close || wish.deed == Deed::help;
  if (!wordless && wish.word == nullptr)
    return std::fputs(
               "usage: click [--wait SECONDS] [--press | --right | --text] CONTROL\n"
               "                             | --heading COLUMN | --key NUMBER | --close | --help | --box "
               "[ANSWER]\n",
               stderr),
           2;
  SetProcessDPIAware();
  return run(wish);
}
