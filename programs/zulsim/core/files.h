// Whole files at once.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vordane::files {

std::optional<std::string> readFile(const std::u16string& path);  // nothing when it can't be read
bool writeFile(const std::u16string& path, std::string_view bytes);
// `name` in `directory`, or in the directory of `file` when that is empty.
std::u16string besideFile(const std::u16string& file, const std::u16string& directory,
                          const std::u16string& name);

}  // namespace vordane::files
