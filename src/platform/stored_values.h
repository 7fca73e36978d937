// Stored values, of which any may be Null.
#pragma once

#include <string>

#include "platform/database.h"

namespace vordane::database {

// Null is the empty text. Throws AutomationError for what has no text (an object).
inline std::u16string textOf(const Value& value) {
  return automation::isNull(value) ? std::u16string{} : automation::toText(value);
}

// Null is no. Throws AutomationError for what is neither a number nor a word for yes or no.
inline bool flagOf(const Value& value) {
  return !automation::isNull(value) && automation::toBoolean(value);
}

}  // namespace vordane::database
