#include "language/comDatabase.h"

namespace vordane::comDatabase {

bool OpenLanguageDatabase(database::Engine& engine, std::u16string_view path,
                          std::unique_ptr<database::Database>& database, bool readOnly,
                          std::u16string* reason) try {
  database.reset();
  database = engine.open(path, readOnly);
  return database != nullptr;
} catch (const database::DatabaseError& error) {
  if (reason != nullptr) *reason = error.description();
  return false;
}

}  // namespace vordane::comDatabase
