// The list that drops down from the box of the exchanges, as elements: each entry with the number of its new
// faults, which the system's own object would not know.
#pragma once

#include <memory>

#include "platform/windows/window/accessible_parts.h"

namespace vordane::window::win32 {

std::unique_ptr<Element> exchangeListElement(const AccessibleParts& parts);

}  // namespace vordane::window::win32
