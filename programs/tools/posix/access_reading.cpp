#include "../access_reading.h"

#include "platform/access/access_child.h"

namespace vordane::tools {
namespace {

class NoAccessEngine : public database::Engine {
 public:
  std::unique_ptr<database::Database> open(std::u16string_view, bool) override {
    throw access::AccessError(
        "Access files are opened on Windows only; here 'vordane-tools export' and 'import' read them");
  }
};

}  // namespace

AccessReading accessReading() {
  return [](const std::filesystem::path& path, access::Visitor& visitor) {
    access::readAccessFileInChild(path.string(), visitor);
  };
}

std::unique_ptr<database::Engine> accessEngine() {
  return std::make_unique<NoAccessEngine>();
}

}  // namespace vordane::tools
