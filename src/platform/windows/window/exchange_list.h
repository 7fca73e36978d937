// How the drop-down of the exchanges looks: the name, as the control holds it, and at the right the number of
// faults that are new to the person.
#pragma once

#include <windows.h>

#include <string>

#include "platform/windows/window/theme.h"

namespace vordane::window::win32 {

// `newFaults` is empty without any.
void drawExchange(const DRAWITEMSTRUCT& item, const std::u16string& name, const std::u16string& newFaults,
                  const Palette& palette, int dpi);
void drawNoExchange(const DRAWITEMSTRUCT& item);

// The list that drops down from the box; null before there is one.
HWND listOf(HWND box);
// The box and, where it is open, its list.
void redrawExchanges(HWND box);

}  // namespace vordane::window::win32
