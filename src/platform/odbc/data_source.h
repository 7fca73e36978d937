// A file data source: the driver manager's own format, read here since managers disagree on where such a file
// lies and on what it may be called.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vordane::odbc {

class DataSource {
 public:
  // Throws DatabaseError: fileNotFound, notADatabase for a file that does not begin with [ODBC],
  // connectionFailed for one that holds a password, since whoever can read the file would have it.
  static DataSource read(std::u16string_view path);
  static DataSource parse(std::string_view utf8);

  // Case of `key` does not matter; empty when there is none.
  std::u16string_view value(std::u16string_view key) const;
  // As SQLDriverConnect takes it, with the driver for programs of `wordSize` bits: a file may name one for
  // each, as DRIVER32 and DRIVER64, since the two may have different names. `defaults` are keys and values
  // for what the file leaves open.
  using Entry = std::pair<std::u16string, std::u16string>;
  std::u16string connection(int wordSize, const std::vector<Entry>& defaults = {}) const;

 private:
  std::vector<Entry> entries_;  // in their order
};

}  // namespace vordane::odbc
