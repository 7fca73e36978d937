// A stored fault's columns as the grid shows them.
#pragma once

#include <span>

#include "platform/database.h"
#include "platform/view.h"

namespace vordane::database {

// `columns` in the order of GridRow's members; Null is the empty text. Throws AutomationError when the number
// is none, or a text no text.
window::GridRow gridRowOf(std::span<const Value> columns);

}  // namespace vordane::database
