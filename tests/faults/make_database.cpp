// Makes a database file from statements on standard input, without the system's own engine: the file is what
// any other tool would have made.
#include <sqlite3.h>

#include <iostream>
#include <iterator>
#include <string>

int main(int count, char** values) {
  if (count != 2) return 2;
  const std::string statements{std::istreambuf_iterator<char>(std::cin), {}};
  sqlite3* database = nullptr;
  int result = sqlite3_open(values[1], &database);
  if (result == SQLITE_OK) result = sqlite3_exec(database, statements.c_str(), nullptr, nullptr, nullptr);
  if (result != SQLITE_OK) std::cerr << sqlite3_errmsg(database) << '\n';
  sqlite3_close(database);
  return result == SQLITE_OK ? 0 : 1;
}
