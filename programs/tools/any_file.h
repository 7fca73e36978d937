// Reads a database whole, whatever keeps it.
#pragma once

#include <string>

#include "platform/access/access_file.h"
#include "store_import.h"

namespace vordane::tools {

// A file of the embedded engine, of Access, or the data source of a store. Throws ToolError.
void readAnyFile(const std::string& name, access::Visitor& visitor);

// How its faults come.
FaultOrder orderOf(const std::string& name);

}  // namespace vordane::tools
