// What a command-line program needs of the system it runs on; one implementation for each.
#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

#include "options/options.h"

namespace vordane::tools {

// The program's arguments as UTF-8, without its own name.
options::Words programWords(int count, char** values);

// Bytes pass standard input and output as they are, line ends included.
void useBinaryStandardStreams();

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

// Whether a person reads what goes there.
bool isTerminal(std::FILE* file);
// Writes whole characters (UTF-8) to a terminal, which shows them in whatever language they are.
void writeTerminal(std::FILE* file, std::string_view utf8);

// Null when it can't be opened. `path` is UTF-8.
File openForReading(const std::string& path);

}  // namespace vordane::tools
