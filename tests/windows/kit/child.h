// What the tests and the programs that they start know of one another.
#pragma once

namespace vordane::kit {

inline constexpr const wchar_t* childHangs = L"VordaneKitChildHangs";    // an event
inline constexpr const wchar_t* heldByChild = L"VordaneKitHeldByChild";  // a mutex

}  // namespace vordane::kit
