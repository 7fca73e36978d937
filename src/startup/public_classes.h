// The public classes as data: the member table of `cOLELayer` and the type library of all three. Needs
// nothing of the program behind them, so that the type library can be made from it while building.
#pragma once

#include "platform/idl.h"

namespace vordane::startup {

const automation::ClassTable& layerTable();

// "Vordane10013": cOLELayer, cListRequest and cSLVRequest.
const automation::LibraryTable& libraryTable();

}  // namespace vordane::startup
