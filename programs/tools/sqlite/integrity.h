// Whether a file of the embedded engine is whole. Opening one does not tell: that would read every page.
#pragma once

#include <string>
#include <string_view>

namespace vordane::tools {

// Reads the whole file, changing nothing, and tells the first thing that is wrong with it in the engine's
// words; empty for a sound one. A file that can't be opened is told like damage.
std::string damageIn(std::u16string_view path);

// Whether the file holds faults and its index of them is missing or not that of these: whoever opens it for
// writing makes it anew. A table that is declared otherwise than this system's own has none. Throws
// DatabaseError.
bool hasStaleIndex(std::u16string_view path);

}  // namespace vordane::tools
