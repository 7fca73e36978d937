// The clipboard, which one program at a time may hold.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <string_view>

namespace vordane::window::win32 {

// Called before each further try with their number from 1; false gives up.
using WaitForClipboard = std::function<bool(int tries)>;

// Ten tries within 200 milliseconds.
bool waitForClipboard(int tries);

// Puts the text there as the copy of `owner`, and the HTML fragment (UTF-8) with it unless it is empty. False
// when it can't be had, and what was there stays.
bool putOnClipboard(HWND owner, const std::u16string& text, std::string_view html = {},
                    const WaitForClipboard& wait = waitForClipboard);

// Its text, by the same tries; empty where it holds none or can't be had.
std::u16string clipboardText(HWND owner);

// The fragment as "HTML Format" wants it: behind a head that says where it stands, in bytes.
std::string clipboardHtml(std::string_view fragment);

}  // namespace vordane::window::win32
