// The scalar properties of a request record as data: position in the member table to field.
#pragma once

#include <cstdint>
#include <string>
#include <type_traits>
#include <variant>

#include "platform/automation.h"

namespace vordane::pbx {

// A plain property, or nothing where the member needs code of its own.
template <class Record>
using Field = std::variant<std::monostate, bool Record::*, std::uint8_t Record::*, std::int16_t Record::*,
                           std::int32_t Record::*, std::u16string Record::*>;

template <class Record>
automation::Value readField(const Record& record, const Field<Record>& field) {
  return std::visit(
      [&](auto member) -> automation::Value {
        if constexpr (std::is_same_v<decltype(member), std::monostate>)
          throw automation::AutomationError(automation::error::memberNotFound);
        else
          return record.*member;
      },
      field);
}

// `value` already has the declared type.
template <class Record>
void writeField(Record& record, const Field<Record>& field, const automation::Value& value) {
  std::visit(
      [&](auto member) {
        if constexpr (std::is_same_v<decltype(member), std::monostate>)
          throw automation::AutomationError(automation::error::memberNotFound);
        else
          record.*member = std::get<std::remove_reference_t<decltype(record.*member)>>(value);
      },
      field);
}

// An omitted optional text counts as the empty one.
inline std::u16string textOrEmpty(const automation::Value& value) {
  return automation::isMissing(value) ? std::u16string{} : std::get<std::u16string>(value);
}

// The run-time error a 16-bit count raises when one more entry would not fit.
[[noreturn]] inline void raiseOverflow() {
  throw automation::AutomationError(automation::error::runTime(automation::error::overflowNumber),
                                    u"Overflow");
}

}  // namespace vordane::pbx
