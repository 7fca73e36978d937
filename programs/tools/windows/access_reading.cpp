#include "../access_reading.h"

#include <memory>

#include "platform/dao/dao_engine.h"
#include "platform/dao/dao_reader.h"
#include "platform/windows/com/apartment.h"
#include "platform/windows/services/services.h"
#include "startup/databases.h"

namespace vordane::tools {
namespace {

struct Workplace {
  com::Apartment apartment;
  windows::ComObjectCreator creator;
};

// The Access engine with the apartment it lives in, both made when the first Access file comes.
class AccessEngine : public database::Engine {
 public:
  std::unique_ptr<database::Database> open(std::u16string_view path, bool readOnly) override {
    if (!workplace_) workplace_ = std::make_unique<Workplace>();
    if (!engine_) engine_ = dao::makeEngine(startup::databases, workplace_->creator);
    return engine_->open(path, readOnly);
  }

 private:
  std::unique_ptr<Workplace> workplace_;
  std::unique_ptr<database::Engine> engine_;
};

}  // namespace

AccessReading accessReading() {
  return [workplace = std::make_shared<Workplace>()](const std::filesystem::path& path,
                                                     access::Visitor& visitor) {
    dao::readAccessFile(workplace->creator, path.u16string(), visitor);
  };
}

std::unique_ptr<database::Engine> accessEngine() {
  return std::make_unique<AccessEngine>();
}

}  // namespace vordane::tools
