// How the columns of a language table reach properties.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/automation.h"
#include "platform/database.h"
#include "platform/stored_values.h"
#include "platform/window.h"

namespace vordane::language {

// The stored text that leaves a property as it was designed.
inline constexpr std::u16string_view keepDesigned = u"-1";

using database::textOf;

// What to set, or nothing when the designed value stays.
inline std::optional<std::u16string> newText(const database::Value& value) {
  std::u16string text = textOf(value);
  if (text == keepDesigned) return std::nullopt;
  return text;
}

// The control that a row names by ObjectName and Index.
inline window::Control& controlOf(window::Form& form, database::Recordset& row) {
  return form.control(textOf(row.get(u"ObjectName")), automation::toInteger(row.get(u"Index")));
}

// Runs a procedure under its own error trap: false on the first failing database, property or conversion.
template <typename Procedure>
bool trapped(Procedure&& procedure) {
  try {
    procedure();
    return true;
  } catch (const database::DatabaseError&) {
  } catch (const window::PropertyError&) {
  } catch (const automation::AutomationError&) {
  }
  return false;
}

}  // namespace vordane::language
