// Text for a console window: its code page has no letters beyond one country's, wide output has all of them.
#pragma once

#include <cstdio>
#include <string_view>

namespace vordane::windows {

// False for a file, a pipe and the null device: there UTF-8 stands as it is.
bool isConsole(std::FILE* file);

// `utf8` holds whole characters; what was written through `file` before stands before it.
void writeConsole(std::FILE* file, std::string_view utf8);

// The same wherever `file` leads, at once: whoever follows it sees each text as it comes.
void write(std::FILE* file, std::string_view utf8);

}  // namespace vordane::windows
