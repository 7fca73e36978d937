#include "language/comDatabase.h"

namespace vordane::comDatabase {

bool OpenLanguageDatabase(database::Engine& engine, std::u16string_view path,
                          std::unique_ptr<database::Database>& database, bool readOnly) try {
  database.reset();
  database = engine.open(path, readOnly);
  return database != nullptr;
} catch (const database::DatabaseError&) {
  return false;
}

}  // namespace vordane::comDatabase
