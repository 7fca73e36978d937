#include "../access_reading.h"

#include <filesystem>
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
  return [reader = std::make_shared<Reader>()](const std::string& path, access::Visitor& visitor) {
    dao::readAccessFile(reader->creator, std::filesystem::path(path).u16string(), visitor);
  };
}

}  // namespace vordane::tools
