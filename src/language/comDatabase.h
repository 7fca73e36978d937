// The shared database-open routine.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/database.h"

namespace vordane::comDatabase {

// True and `database` set on success; false and null on any error, whose text is put into `reason`.
bool OpenLanguageDatabase(database::Engine& engine, std::u16string_view path,
                          std::unique_ptr<database::Database>& database, bool readOnly,
                          std::u16string* reason = nullptr);

}  // namespace vordane::comDatabase
