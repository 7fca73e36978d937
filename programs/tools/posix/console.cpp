#include "console.h"

#include <unistd.h>

namespace vordane::tools {

options::Words programWords(int count, char** values) {
  if (count < 1) return {};
  return {values + 1, values + count};
}

// Streams are binary here already.
void useBinaryStandardStreams() {}

bool isTerminal(std::FILE* file) {
  return isatty(fileno(file)) != 0;
}

void writeTerminal(std::FILE* file, std::string_view utf8) {
  std::fwrite(utf8.data(), 1, utf8.size(), file);
  std::fflush(file);
}

File openForReading(const std::string& path) {
  return File(std::fopen(path.c_str(), "rb"));
}

}  // namespace vordane::tools
