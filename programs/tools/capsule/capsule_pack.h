// Packs what a suite knows of what happened with an exchange into a capsule.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/access/access_file.h"
#include "platform/database.h"
#include "suite_files.h"

namespace vordane::tools {

struct PackRequest {
  SuiteLayout layout;
  std::u16string exchange;  // whose stored faults
  std::string since;  // "YYYY-MM-DDTHH:MM" (UTC), or empty: processes whose trace ended before are left out
  std::filesystem::path trace;  // the folder of the trace
  bool anonymous = false;
  std::vector<std::u16string> people,
      workstations;  // names that are known besides those that stand in the files
  std::string made;  // the moment now, as the trace writes it
  std::vector<std::pair<std::u16string, std::u16string>> settings;  // of the suite: name and value
  std::vector<std::string> report;                                  // the doctor's lines
  // Reads a database whole, whatever keeps it; throws ToolError.
  std::function<void(const std::string& file, access::Visitor& visitor)> read;
};

struct Packed {
  std::size_t traceLines = 0, traceFiles = 0, halfLines = 0, faults = 0;
  std::vector<std::string> leftOut;  // a sentence each: what could not be read
};

// `out` must not be there. Throws NoSuchExchange, ToolError or DatabaseError; then nothing stands under
// `out`.
Packed packCapsule(const PackRequest& request, database::Engine& engine, const std::filesystem::path& out);

}  // namespace vordane::tools
