#include "places.h"

namespace vordane::test {

std::filesystem::path sourceFolder() {
  return VORDANE_SOURCE_DIR;
}
std::filesystem::path dataFolder() {
  return sourceFolder() / "tests" / "data";
}

}  // namespace vordane::test
