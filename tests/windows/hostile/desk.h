// The add-in's window as a person reaches it from another process: everything is posted, nothing waits.
#pragma once

#include <windows.h>

#include <cstdint>

#include "platform/action.h"

namespace vordane::hostile {

// Of the add-in that runs; null when none has a window.
HWND addInWindow();

void pressButton(HWND window, Action action);
void pressKey(HWND window, int code);
void clickHeading(HWND window, int column);
void chooseExchange(HWND window, std::uint64_t any);
void askToClose(HWND window);

}  // namespace vordane::hostile
