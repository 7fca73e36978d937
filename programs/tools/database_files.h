// What went wrong with a database, as the tools say it: the file, the reason, and what to do.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/database.h"

namespace vordane::tools {

std::string failureText(std::string_view file, const database::DatabaseError& failure);

// Opens `file` (UTF-8) for reading. Throws ToolError.
std::unique_ptr<database::Database> openDatabase(database::Engine& engine, const std::string& file);

}  // namespace vordane::tools
