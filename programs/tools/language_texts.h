// What a program takes from a language database to compose descriptions.
#pragma once

#include <string>

#include "faults/fault_texts.h"
#include "platform/database.h"

namespace vordane::tools {

// The messages and the window's lists of a language database, as the program itself loads them. Throws
// ToolError, also when the file can't be opened.
void readLanguageDatabase(database::Engine& engine, const std::string& path, FaultTextTable& texts);

// The language that a program with this language database stores faults in. Throws ToolError.
database::Agreement storingLanguageOf(database::Engine& engine, const std::string& path);

}  // namespace vordane::tools
