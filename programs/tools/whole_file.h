// Small files, read and written whole.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "lines.h"

namespace vordane::tools {

// A file that can't be written; where its folder was made a moment before, its disk is full.
class UnwritableFile : public ToolError {
 public:
  using ToolError::ToolError;
};

// Throws ToolError when it can't be read.
std::string readFile(const std::filesystem::path& path);
// Over what stands there. Throws UnwritableFile.
void writeFile(const std::filesystem::path& path, std::string_view bytes);

}  // namespace vordane::tools
