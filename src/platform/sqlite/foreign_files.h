// What is refused in a file that is opened, whoever made it: nothing but this system's own steps may happen
// when a row is stored, and no row may cost whatever it likes.
#pragma once

#include <sqlite3.h>

#include <string_view>

namespace vordane::sqlite {

// A journal that was left beside a database is played back at its opening. One that belongs to several
// databases names a further file, which would be read, sent for over the network and deleted: this system
// never leaves one. Throws DatabaseError (3049).
void refuseSharedJournal(std::u16string_view path);

// The largest value or row that `handle` takes, and the most columns of a table where it writes; before its
// first statement.
void limitValues(sqlite3* handle);
void limitColumns(sqlite3* handle);

// CHECK, generated columns, indexes on expressions or on a part of the rows, and defaults that call functions
// would run at every stored row, at whatever cost. Throws DatabaseError (3343).
void refuseExpressions(sqlite3* handle);

}  // namespace vordane::sqlite
