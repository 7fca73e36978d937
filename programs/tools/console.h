// What a command-line program needs of the system it runs on; one implementation for each.
#pragma once

#include <cstdio>
#include <memory>
#include <string>

#include "command.h"

namespace vordane::tools {

// The program's arguments as UTF-8, without its own name.
Arguments programArguments(int count, char** values);

// Bytes pass standard input and output as they are, line ends included.
void useBinaryStandardStreams();

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

// Null when it can't be opened. `path` is UTF-8.
File openForReading(const std::string& path);

}  // namespace vordane::tools
