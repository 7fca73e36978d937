#include "../access_reading.h"

#include "platform/access/access_child.h"

namespace vordane::tools {

AccessReading accessReading() {
  return
      [](const std::string& path, access::Visitor& visitor) { access::readAccessFileInChild(path, visitor); };
}

}  // namespace vordane::tools
