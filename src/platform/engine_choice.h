// The engine for a database file, chosen by the file's own first bytes: an Access file goes to the Access
// engine, an embedded one to the embedded engine; anything else is refused.
#pragma once

#include <memory>
#include <string_view>

#include "platform/database.h"

namespace vordane::database {

enum class FileKind { missing, access, embedded, unknown };

FileKind fileKind(std::u16string_view path);

// Opens with one of the two, or throws DatabaseError: 3024 without the file, 3343 for a file of neither kind.
std::unique_ptr<Engine> makeEngineChoice(std::unique_ptr<Engine> access, std::unique_ptr<Engine> embedded);

}  // namespace vordane::database
