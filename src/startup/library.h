// The type library "Vordane10013": the tables of the three public classes. Needs nothing but the tables, so
// that the program which writes the library's definition stays small.
#pragma once

#include <cstddef>

#include "platform/idl.h"

namespace vordane::startup {

const automation::LibraryTable& libraryTable();
const automation::ClassTable& layerTable();

// The layer's members, by their positions in its table.
enum class LayerMember : std::size_t { registering, visibility, creating, running, cancelling, background };

}  // namespace vordane::startup
