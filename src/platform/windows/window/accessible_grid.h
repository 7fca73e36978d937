// The grid as elements: its rows with their cells, and behind the rows the headings. A row's element speaks
// of the fault that stood there when it was made; after other rows came there is nothing behind it.
#pragma once

#include <memory>
#include <optional>

#include "platform/windows/window/accessible_parts.h"

namespace vordane::window::win32 {

// `number` is its place among the children of the frame.
std::unique_ptr<Element> gridElement(const AccessibleParts& parts, std::size_t number);

}  // namespace vordane::window::win32
