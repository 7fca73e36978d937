#include "../access_reading.h"

#include <memory>

#include "platform/dao/dao_reader.h"
#include "platform/windows/com/apartment.h"
#include "platform/windows/services/services.h"

namespace vordane::tools {
namespace {

struct Reader {
  com::Apartment apartment;
  windows::ComObjectCreator creator;
};

}  // namespace

AccessReading accessReading() {
  return [reader = std::make_shared<Reader>()](const std::filesystem::path& path, access::Visitor& visitor) {
    dao::readAccessFile(reader->creator, path.u16string(), visitor);
  };
}

}  // namespace vordane::tools
