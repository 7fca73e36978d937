// Whole files at once, as their bytes stand.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace vordane::tools {

// Throws ToolError when it can't be read.
std::string readFile(const std::filesystem::path& path);

// In place of what was there; its folder must exist. Throws ToolError when it can't be written, and then a
// part of it may stand there.
void writeFile(const std::filesystem::path& path, std::string_view bytes);

}  // namespace vordane::tools
