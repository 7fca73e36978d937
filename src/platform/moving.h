// Renaming a file that was written a moment ago.
#pragma once

#include <chrono>
#include <filesystem>
#include <system_error>

namespace vordane::platform {

// As std::filesystem::rename; what stands under `to` is replaced. A virus scanner may hold a new file, or the
// one to be replaced, for a moment: as long as both are there, it is tried again for `patience`.
std::error_code renamePatiently(const std::filesystem::path& from, const std::filesystem::path& to,
                                std::chrono::milliseconds patience = std::chrono::milliseconds(2000));

}  // namespace vordane::platform
