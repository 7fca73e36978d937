// The names of files in a folder, as the workstation's file systems take them.
#pragma once

#include <string>
#include <string_view>

namespace vordane::text {

// Whether it names a file of its folder and nothing else: no path, drive, stream beside a file, device,
// folder or pattern.
bool isPlainFileName(std::u16string_view name);

// A plain name for any text, another one for each: what may not stand in a name, and "%" itself, becomes "%"
// and its code. An empty text stays empty.
std::u16string asFileName(std::u16string_view text);

}  // namespace vordane::text
