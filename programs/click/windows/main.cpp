// What a person's hand and eye do to the running fault display, from outside and in its real window; click
// --help tells what.
#include <windows.h>

#include <objbase.h>

#include <cstdio>
#include <optional>
#include <string>

#include "click/windows/ear.h"
#include "click/windows/eye.h"
#include "click/windows/hand.h"
#include "options/options.h"

namespace vordane::click {
namespace {

constexpr int notFound = 1, wrongUsage = 2;

// What is wanted of the window; controls go by their names in the form.
struct Wish {
  std::optional<long> wait;  // seconds
  std::optional<std::string> find, press, rightPress, text;
  std::optional<long> heading, key, answer, listen;
  bool close = false, popUp = false, box = false;
};

const Eye& eye() {
  static const Eye everywhere;
  return everywhere;
}

void print(HWND window) {
  std::puts(utf8(textOf(window)).c_str());
}

// The first thing that is found; null when the time that the wish gives it is over.
template <class Find>
HWND waitFor(const Wish& wish, Find find) {
  HWND found = find();
  for (long tries = wish.wait.value_or(0) * 10; found == nullptr && tries > 0; --tries) {
    Sleep(100);
    found = find();
  }
  return found;
}

int box(const Wish& wish) {
  const HWND found = waitFor(wish, [] { return eye().box(); });
  if (found == nullptr) return notFound;
  print(found);
  std::puts(utf8(messageOf(found)).c_str());
  if (wish.answer) answerBox(found, static_cast<int>(*wish.answer));
  return 0;
}

int heading(const Wish& wish) {
  const HWND found = waitFor(wish, [] { return eye().heading(); });
  if (found == nullptr) return notFound;
  const RECT place = placeOfHeading(found, static_cast<int>(*wish.heading));
  if (place.right <= place.left) return notFound;
  return pressOn(found, {(place.left + place.right) / 2, (place.top + place.bottom) / 2}) ? 0 : notFound;
}

int key(const Wish& wish) {
  const HWND frame = waitFor(wish, [] { return eye().frame(); });
  if (frame == nullptr) return notFound;
  pressKey(frame, static_cast<WORD>(*wish.key));
  return 0;
}

int popUp(const Wish& wish) {
  const HWND found = waitFor(wish, [] { return eye().help(); });
  if (found == nullptr) return notFound;
  print(found);
  return 0;
}

int close(const Wish& wish) {
  const HWND frame = waitFor(wish, [] { return eye().frame(); });
  return frame != nullptr && askToClose(frame) ? 0 : notFound;
}

// A control by its name, which has no letters but English ones. What is to be pressed and can't be yet, since
// a box is still about to go, is waited for.
HWND control(const Wish& wish, const std::string& name, bool toPress) {
  const HWND found = waitFor(wish, [&] {
    const HWND child = eye().control(std::wstring(name.begin(), name.end()));
    return !toPress || takesInput(child) ? child : nullptr;
  });
  if (found == nullptr) std::fputs("click: no such control\n", stderr);
  return found;
}

int text(const Wish& wish) {
  const HWND found = control(wish, *wish.text, false);
  if (found == nullptr) return notFound;
  print(found);
  return 0;
}

int listen(const Wish& wish) {
  const HWND frame = waitFor(wish, [] { return eye().frame(); });
  if (frame == nullptr || FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return notFound;
  const std::wstring told = Ear::at(frame).told(*wish.listen);
  std::fputs(utf8(told).c_str(), stdout);
  CoUninitialize();
  return told.empty() ? notFound : 0;
}

// Prints the control's middle, and presses it there when it is to be pressed.
int point(const Wish& wish) {
  const bool toPress = !wish.find;
  const std::string& name = wish.find ? *wish.find : wish.press ? *wish.press : *wish.rightPress;
  const HWND found = control(wish, name, toPress);
  if (found == nullptr) return notFound;
  if (toPress) awaitRest(found);
  const POINT middle = middleOf(found);
  std::printf("%ld %ld\n", middle.x, middle.y);
  if (wish.press) return pressOn(found, middle) ? 0 : notFound;
  if (wish.rightPress) pressAt(middle, MouseButton::right);
  return 0;
}

int fulfil(const Wish& wish) {
  SetProcessDPIAware();
  if (wish.box) return box(wish);
  if (wish.close) return close(wish);
  if (wish.popUp) return popUp(wish);
  if (wish.listen) return listen(wish);
  if (wish.heading) return heading(wish);
  if (wish.key) return key(wish);
  return wish.text ? text(wish) : point(wish);
}

int run(const options::Words& words) {
  options::Program program(
      "click", "Does to the window of the fault display what a person's hand and eye do.", wrongUsage);
  Wish wish;
  program.option("--wait", "SECONDS", wish.wait, "how long to wait for the thing, else not at all");
  program.option("--find", "CONTROL", wish.find,
                 "prints the control's middle on the screen as \"x y\" (pixels)");
  program.option("--press", "CONTROL", wish.press, "the same, and presses it with the mouse");
  program.option("--right", "CONTROL", wish.rightPress, "the same with the right button");
  program.option("--text", "CONTROL", wish.text, "prints the control's text");
  program.option("--heading", "COLUMN", wish.heading, "presses that heading of the grid (0 is the first)");
  program.option("--key", "NUMBER", wish.key,
                 "brings the window to the front and presses that key (112 is F1)");
  program.flag("--close", wish.close, "asks the window to close, as its title bar does");
  program.option("--listen", "NUMBER", wish.listen,
                 "prints what a screen reader is told of the window: of each part at most so many children");
  program.flag("--pop-up", wish.popUp, "prints the text of the pop-up that explains a control");
  program.flag("--box", wish.box, "prints a message box's title and text");
  program.option("--answer", "NUMBER", wish.answer, "answers the box: 1 (OK), 2 (cancel), 6 (yes), 7 (no)");
  program.exactlyOne({"--find", "--press", "--right", "--text", "--heading", "--key", "--listen", "--close",
                      "--pop-up", "--box"});
  program.needs("--answer", "--box");
  program.notes(
      "Controls go by their names in the form.\n"
      "Exit code: 0 done, 1 what was waited for did not come, 2 wrong usage.");
  program.runs([&] { return fulfil(wish); });
  const auto ending = program.read(words);
  if (!ending) return program.perform();
  std::fputs(ending->output.c_str(), stdout);
  std::fputs(ending->errors.c_str(), stderr);
  return ending->code;
}

}  // namespace
}  // namespace vordane::click

int wmain(int count, wchar_t** values) {
  vordane::options::Words words;
  for (int i = 1; i < count; ++i) words.push_back(vordane::click::utf8(values[i]));
  return vordane::click::run(words);
}
