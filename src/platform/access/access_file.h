// Reads Access files (Jet 4) without an Access engine, table by table and row by row. Damaged files can crash
// the library underneath, so programs run it in a child process (see access_child.h).
#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <vector>

#include "platform/automation.h"

namespace vordane::access {

using Value = automation::Value;  // Null, bool, byte, Integer, Long, Single, Double, Date or text

enum class ColumnType : std::uint8_t {
  boolean,
  byte,
  integer,
  longInteger,
  single,
  doubleFloat,
  text,
  memo,
  dateTime
};

struct Column {
  std::u16string name;
  ColumnType type = ColumnType::text;
  std::int32_t size = 0;  // characters of a text column, 0 elsewhere
  bool autoNumber = false;
};

struct Table {
  std::u16string name;
  std::vector<Column> columns;
  std::uint32_t rowCount = 0;       // as the file itself counts them
  std::int32_t lastAutoNumber = 0;  // the highest number ever given
};

class AccessError : public std::exception {
 public:
  explicit AccessError(std::string what) : what_(std::move(what)) {}
  const char* what() const noexcept override { return what_.c_str(); }

 private:
  std::string what_;
};

// Hears a file as it is read. Rows come in no particular order.
class Visitor {
 public:
  virtual ~Visitor() = default;
  virtual void beginTable(const Table& table) = 0;
  virtual void row(const std::vector<Value>& values) = 0;  // in the order of the table's columns
  virtual void endTable() = 0;
};

// True when the file's first bytes are those of an Access file.
bool isAccessFile(const std::string& path);

// An open file. Nothing but its own reads and memory is asked of the system once it is open.
class AccessFile {
 public:
  explicit AccessFile(const std::string& path);  // throws AccessError
  ~AccessFile();
  AccessFile(const AccessFile&) = delete;
  AccessFile& operator=(const AccessFile&) = delete;

  // Reads every user table. Throws AccessError when the file can't be read, a column's type is unknown or the
  // rows read are not as many as the table says.
  void read(Visitor& visitor);

 private:
  struct Open;
  std::unique_ptr<Open> open_;
};

// Both at once.
void readAccessFile(const std::string& path, Visitor& visitor);

}  // namespace vordane::access
