// Automation values as VARIANTs and back. Failures are AutomationErrors.
#pragma once

#include "platform/automation.h"
#include "platform/member_table.h"
#include "platform/windows/com/owned.h"

namespace vordane::com {

// The value a VARIANT holds, references followed. Types we have none of become the nearest: wider
// integers, currency and decimals a Double.
automation::Value toValue(const VARIANT& variant);

Variant toVariant(const automation::Value& value);

// An incoming argument as the type its parameter declares, by the system's own rules of conversion: those
// a script's author knows. Missing for an omitted one.
automation::Value toParameter(const VARIANT& variant, const automation::Parameter& parameter, LCID locale,
                              int position);

// Assigns `value` to what a by-reference VARIANT refers to, in its type; does nothing for any other.
void writeBack(VARIANT& reference, const automation::Value& value);

std::u16string toText(BSTR text);  // a null BSTR is the empty text
Bstr toBstr(std::u16string_view text);
GUID toGuid(std::string_view text);  // "{...}"; GUID_NULL when it is none

}  // namespace vordane::com
