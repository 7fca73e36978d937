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

// A word is a file of that name in a folder: whoever makes it gives the word, who takes the word away takes
// it.
bool takeWord(const std::u16string& folder, std::u16string_view word);
void giveWord(const std::u16string& folder, std::u16string_view word);

}  // namespace vordane::files
