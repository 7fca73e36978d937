// Everything that the tests write in the registry.
#pragma once

#include <string>
#include <vector>

#include "kit/core/saved_state.h"

namespace vordane::kit {

// The versions under which the suites of the tests stand in the settings; no suite that is installed has
// them.
inline constexpr const wchar_t* ownSection = L"39000";
inline constexpr const wchar_t* otherSection = L"39001";

// The classes, program names, rights, interfaces and libraries that the programs register, for everybody and
// for this user, in both views; and their settings.
std::vector<RegistryPlace> writtenPlaces();

}  // namespace vordane::kit
