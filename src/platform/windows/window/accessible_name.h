// What screen readers call a window that has no caption of its own. Needs COM on the calling thread; where
// the service is missing, the window simply stays without a name.
#pragma once

#include <string>

#include "platform/windows/window/handles.h"

namespace vordane::window::win32 {

void nameForScreenReaders(HWND window, const std::u16string& name);

}  // namespace vordane::window::win32
