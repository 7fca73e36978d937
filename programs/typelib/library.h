// The automation library of VORDANE.EXE: its public classes in type-library order.
#pragma once

#include "platform/idl.h"

namespace vordane {

const automation::LibraryTable& vordaneLibrary();

}  // namespace vordane
