// A control that is part of a bar: hidden until its bar is shown. Bars are made when they are shown for the
// first time: most starts need none of them.
#pragma once

#include <windows.h>

#include <span>
#include <string>

namespace vordane::window::win32 {

HWND makeChild(HWND parent, int id, const wchar_t* type, const std::u16string& text, DWORD style);

// The child that the tab order ends with so far; null without any.
HWND lastChild(HWND parent);

// Puts windows that were made later to where they belong in the tab order: in their own order, behind one
// of their siblings.
void putBehind(HWND sibling, std::span<const HWND> windows);

}  // namespace vordane::window::win32
