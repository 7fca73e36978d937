// A database's tables with the stored faults that are asked for.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "fault_selection.h"
#include "platform/access/access_file.h"

namespace vordane::tools {

using ReadTables = std::function<void(access::Visitor& visitor)>;

// Hands on what `read` tells, of FaultDisplay the faults that `selection` chooses and, where it names an
// exchange, of PBXList that exchange; with a selection that chooses, `read` is called twice. Throws ToolError
// before `visitor` hears anything when the times can't be followed, the database holds no faults, or no such
// exchange. `file` is its name for messages.
void readSelected(const ReadTables& read, const std::string& file, const FaultSelection& selection,
                  access::Visitor& visitor);

}  // namespace vordane::tools
