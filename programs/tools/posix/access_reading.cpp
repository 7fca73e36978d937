#include "../access_reading.h"

#include "platform/access/access_child.h"

namespace vordane::tools {

AccessReading accessReading() {
  return [](const std::filesystem::path& path, access::Visitor& visitor) {
    access::readAccessFileInChild(path.string(), visitor);
  };
}

}  // namespace vordane::tools
