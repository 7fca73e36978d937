// What goes wrong in SQLite, as the numbers of the interface.
#pragma once

#include "platform/database_errors.h"

namespace vordane::sqlite {

namespace number = database::number;
using database::fail;

// The number for a result code of SQLite (extended or not).
int numberOf(int resultCode);
[[noreturn]] void failWith(int resultCode);

}  // namespace vordane::sqlite
