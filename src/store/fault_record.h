// The columns that are cut out of a fault record, and the year of a fault date.
#pragma once

#include <string>
#include <string_view>

namespace vordane::store {

std::u16string_view faultKind(std::u16string_view record);   // characters 1-2
std::u16string_view alarmClass(std::u16string_view record);  // characters 4-5
// "MP" and three blanks, or characters 7-9 and the decimal value of the hexadecimal characters 10-11, whole.
std::u16string processor(std::u16string_view record);

// A two-digit year before "/" becomes a four-digit one: below 80 it is 20xx, else 19xx. Any other text is
// returned unchanged. What is no digit reads as the leading digits before it, else 0.
std::u16string WidenYear(std::u16string_view text);

}  // namespace vordane::store
