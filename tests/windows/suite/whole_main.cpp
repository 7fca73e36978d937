// whole FILE: whether a database of the embedded engine is undamaged, asked with nothing but SQLite itself.
// Prints what is wrong; ends with 0 when nothing is.
#include <sqlite3.h>

#include <cstdio>
#include <cstring>

int main(int count, char** values) {
  if (count != 2) return std::fputs("usage: whole FILE\n", stderr), 2;
  sqlite3* database = nullptr;
  sqlite3_stmt* statement = nullptr;
  bool whole = sqlite3_open_v2(values[1], &database, SQLITE_OPEN_READWRITE, nullptr) == SQLITE_OK &&
               sqlite3_prepare_v2(database, "PRAGMA integrity_check", -1, &statement, nullptr) == SQLITE_OK;
  int lines = 0;
  while (whole && sqlite3_step(statement) == SQLITE_ROW) {
    const char* line = reinterpret_cast<const char*>(sqlite3_column_text(statement, 0));
    std::puts(line);
    ++lines;
    whole = std::strcmp(line, "ok") == 0;
  }
  if (lines == 0) std::printf("%s\n", sqlite3_errmsg(database));
  sqlite3_finalize(statement);
  sqlite3_close(database);
  return whole && lines == 1 ? 0 : 1;
}
