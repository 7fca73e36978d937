// A stored value as text.
#pragma once

#include <string>

#include "platform/database.h"

namespace vordane::database {

// Null is the empty text. Throws AutomationError for what has no text (an object).
inline std::u16string textOf(const Value& value) {
  return automation::isNull(value) ? std::u16string{} : automation::toText(value);
}

}  // namespace vordane::database
