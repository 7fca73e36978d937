// Runs the steps that a procedure guards and turns an error into the text for its box.
#pragma once

#include <optional>
#include <string>

#include "platform/automation.h"
#include "platform/database.h"

namespace vordane::store {

// What a call of another server said, or its code when it said nothing.
std::u16string errorText(const automation::AutomationError& error);

// Nothing when all steps ran, else the engine's text. Only what the database and automation raise is
// expected here.
template <class Steps>
std::optional<std::u16string> trap(const Steps& steps) {
  try {
    steps();
    return {};
  } catch (const database::DatabaseError& error) {
    return error.description();
  } catch (const automation::AutomationError& error) {
    return errorText(error);
  }
}

}  // namespace vordane::store
