// The classes of an automation library for hosts in C++, written from the member tables like the library
// itself: a class for each, with its identifiers and a function for each member that calls it by its number.
// Pure.
#pragma once

#include <string>

#include "platform/idl.h"

namespace vordane::automation {

// The whole header (UTF-8, lines end in LF). It needs the "early_bound.h" of examples/hosts/cpp and nothing
// else.
std::string cppHeaderText(const LibraryTable& library);

}  // namespace vordane::automation
