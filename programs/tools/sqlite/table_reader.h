// Reads an embedded file whole, whatever tables it has: for the tools that export and compare.
#pragma once

#include <string_view>
#include <vector>

#include "platform/access/access_file.h"

namespace vordane::tools {

// The file's own tables by name, with columns, rows counted and the highest auto-number given; not those the
// engine keeps for itself. Throws DatabaseError.
std::vector<access::Table> describeTables(std::u16string_view path);

// The same tables with their rows, in the order of their keys. Dates come as "YYYY-MM-DD HH:MM:SS".
void readTables(std::u16string_view path, access::Visitor& visitor);

}  // namespace vordane::tools
