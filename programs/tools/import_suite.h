// Brings the suite's Access files over to the embedded engine, once and whole.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "platform/access/access_file.h"
#include "platform/file_moves.h"

namespace vordane::tools {

// Reads one Access file; throws access::AccessError or database::DatabaseError when it can't be read whole.
using AccessReading = std::function<void(const std::filesystem::path& path, access::Visitor& visitor)>;

struct ImportedTable {
  std::string name;
  std::uint32_t rows;
};
struct ImportedFile {
  std::filesystem::path path, kept;  // where it stands, and where its Access file is kept
  std::vector<ImportedTable> tables;
};

// The Access files among FAULT.MDB, VORDANE.LNG, Common.LNG, Register.mdb and Schedule.mdb below `directory`,
// each brought over with every table, column and row it has. All are read and written beside their places
// first; only when that has worked for every one of them does each take its place, its Access file kept under
// the name with ".access" behind it. Throws ToolError with nothing changed when any of them can't be brought
// over, also when Access has one open (its lock file, ".ldb", stands beside it). A file that another program
// holds for a moment (a scanner that looks into the new one) is waited for with `pause`, as
// platform::moveFile does.
std::vector<ImportedFile> importSuite(const std::filesystem::path& directory, const AccessReading& read,
                                      const platform::Pause& pause = platform::sleepFor);

}  // namespace vordane::tools
