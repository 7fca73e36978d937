// The clipboard, which one program at a time may hold.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

namespace vordane::window::win32 {

// Called before each further try with their number from 1; false gives up.
using WaitForClipboard = std::function<bool(int tries)>;

// Ten tries within 200 milliseconds.
bool waitForClipboard(int tries);

// Puts the text there as the copy of `owner`. False when it can't be had, and what was there stays.
bool putOnClipboard(HWND owner, const std::u16string& text, const WaitForClipboard& wait = waitForClipboard);

}  // namespace vordane::window::win32
