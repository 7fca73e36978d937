#include "any_file.h"

#include "access_reading.h"
#include "database_files.h"
#include "language_source.h"
#include "lines.h"
#include "platform/database_numbers.h"
#include "platform/engine_choice.h"
#include "platform/odbc/engine.h"
#include "platform/odbc/library.h"
#include "startup/databases.h"
#include "store_tables.h"
#include "tools/sqlite/table_reader.h"

namespace vordane::tools {

void readAnyFile(const std::string& name, access::Visitor& visitor) {
  const std::u16string path = toPath(name).u16string();
  try {
    switch (database::fileKind(path)) {
      case database::FileKind::access:
        return accessReading()(toPath(name), visitor);
      case database::FileKind::embedded:
        return readTables(path, visitor);
      case database::FileKind::dataSource:
        return readStoreTables(*odbc::makeEngine(startup::databases, odbc::systemLibrary())->open(path, true),
                               visitor);
      case database::FileKind::missing:
        throw database::DatabaseError(database::number::fileNotFound, path);
      case database::FileKind::unknown:
        throw database::DatabaseError(database::number::notADatabase, path);
    }
  } catch (const database::DatabaseError& failure) {
    throw ToolError(failureText(name, failure));
  }
}

FaultOrder orderOf(const std::string& name) {
  return database::fileKind(toPath(name).u16string()) == database::FileKind::access ? FaultOrder::anyOrder
                                                                                    : FaultOrder::byNumber;
}

}  // namespace vordane::tools
