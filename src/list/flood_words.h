// A flood in words, as the line above the rows says it.
#pragma once

#include <string>

#include "list/flood.h"
#include "platform/view.h"

namespace vordane::list {

// Two lines with a line end between: when and how many, the first and the last; then the commonest kinds.
std::u16string floodWords(const Flood& flood, window::ViewTexts& texts);

}  // namespace vordane::list
