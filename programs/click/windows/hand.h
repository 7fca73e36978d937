// What a person does to the running fault display, from outside: with the mouse, the keys and the title bar.
#pragma once

#include <windows.h>

namespace vordane::click {

enum class MouseButton { left, right };

// Waits until a window that may still be arranging itself, since it has just appeared, answers and stands
// still.
void awaitRest(HWND window);
// Brings the pointer there and presses.
void pressAt(POINT place, MouseButton button = MouseButton::left);
// The same with the left button on a button or a heading, which hold the mouse while they are pressed:
// presses once more when the press never arrived, as one does that meets a window still on its way to the
// screen. False when none arrives.
bool pressOn(HWND target, POINT place);
// Brings the window to the front, as far as the system lets it, and presses that key.
void pressKey(HWND frame, WORD key);
// False when the window is gone.
bool askToClose(HWND frame);
// Chooses a button of a message box: 1 (OK), 2 (cancel), 6 (yes), 7 (no).
bool answerBox(HWND box, int button);

}  // namespace vordane::click
