#include "places.h"

#include <cstdlib>

namespace vordane::test {

std::filesystem::path sourceFolder() {
  const char* const moved = std::getenv("VORDANE_SOURCES");
  return moved != nullptr && *moved != '\0' ? moved : VORDANE_SOURCE_DIR;
}
std::filesystem::path dataFolder() {
  return sourceFolder() / "tests" / "data";
}

}  // namespace vordane::test
