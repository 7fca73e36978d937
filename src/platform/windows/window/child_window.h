// A control that is part of a bar: hidden until its bar is shown.
#pragma once

#include <windows.h>

#include <string>

namespace vordane::window::win32 {

HWND makeChild(HWND parent, int id, const wchar_t* type, const std::u16string& text, DWORD style);

}  // namespace vordane::window::win32
