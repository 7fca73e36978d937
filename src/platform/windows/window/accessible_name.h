// What the system tells screen readers of a window by itself: a name where it has no caption of its own, and
// that its changes are worth telling. Needs COM on the calling thread; where the service is missing, the
// window simply stays without.
#pragma once

#include <string>

#include "platform/windows/window/handles.h"

namespace vordane::window::win32 {

void nameForScreenReaders(HWND window, const std::u16string& name);

// A live region: what its text becomes is read out, at once or when what is being read has ended.
enum class Urgency { politely = 1, atOnce = 2 };
void makeLive(HWND window, Urgency urgency);
// Its text has changed. Nothing while it can't be seen.
void tellLive(HWND window);

}  // namespace vordane::window::win32
