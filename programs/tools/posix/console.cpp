#include "console.h"

namespace vordane::tools {

Arguments programArguments(int count, char** values) {
  if (count < 1) return {};
  return {values + 1, values + count};
}

// Streams are binary here already.
void useBinaryStandardStreams() {}

File openForReading(const std::string& path) {
  return File(std::fopen(path.c_str(), "rb"));
}

}  // namespace vordane::tools
