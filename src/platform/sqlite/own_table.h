// Tables of the program's own, beside those that are described: plain SQL, made when there is first something
// to keep. What stands under such a name and is not what is made here stays as it is, and nothing is kept
// then.
#pragma once

#include <string_view>

#include "platform/sqlite/plan.h"

namespace vordane::sqlite {

struct OwnTable {
  std::u16string_view name, sql;  // as the file's schema keeps it
};

// False where it is not made yet. Throws DatabaseError, 3204 where another's table stands under its name.
bool isThere(Opened& opened, const OwnTable& own);
// Inside a WriteScope; nothing happens where it is there.
void makeWhereMissing(Connection& connection, const OwnTable& own);

}  // namespace vordane::sqlite
