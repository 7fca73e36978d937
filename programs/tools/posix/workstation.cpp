#include "doctor_checks.h"
#include "platform/engine_choice.h"
#include "platform/odbc/engine.h"
#include "platform/odbc/library.h"
#include "platform/sqlite/engine.h"
#include "startup/databases.h"

namespace vordane::tools {

namespace {

class NoAccessEngine : public database::Engine {
 public:
  std::unique_ptr<database::Database> open(std::u16string_view, bool) override {
    throw database::DatabaseError(429, u"an Access file can be opened on Windows only");
  }
};

}  // namespace

std::unique_ptr<database::Engine> examiningEngine() {
  return database::makeEngineChoice(std::make_unique<NoAccessEngine>(),
                                    sqlite::makeEngine(startup::databases), {},
                                    odbc::makeEngine(startup::databases, odbc::systemLibrary()));
}

std::optional<Workstation> thisWorkstation() {
  return std::nullopt;
}

}  // namespace vordane::tools
