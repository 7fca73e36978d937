// Where vordane-tools takes the decoders' texts from.
#pragma once

#include <string>

#include "faults/fault_texts.h"

namespace vordane::tools {

// Lines "number TAB text" and "list TAB index TAB text" (UTF-8; a text runs to the end of its line and is
// taken as it stands). Empty lines and lines that begin with # are passed over; a line that can't be
// understood, or that says something twice, throws ToolError with its place.
void readMessages(const std::string& path, FaultTextTable& texts);
// Lists of other names are mentioned on the error stream and passed over.
void readLists(const std::string& path, FaultTextTable& texts);

}  // namespace vordane::tools
