// Prepared statements and their lending.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database.h"
#include "platform/jet.h"

namespace vordane::sqlite {

using database::Value;

class Connection;

// SQLite may hand over characters at an odd address; those are copied.
std::u16string_view unitsOf(const void* bytes, int size, std::u16string& copy);

// One prepared statement. Parameters and columns count as SQLite counts them: from 1 and from 0. What is
// bound must live until the statement is reset.
class Statement {
 public:
  Statement() = default;
  Statement(Connection& connection, std::string_view sql);
  explicit operator bool() const { return handle_ != nullptr; }

  void bind(int parameter, std::int64_t number);
  void bindText(int parameter, std::u16string_view text);
  void bindBlob(int parameter, std::string_view bytes);
  void bindNull(int parameter);
  void bind(int parameter, const jet::Literal& literal);
  void bind(int parameter, const Value& value);

  bool step();                             // true on a row; throws DatabaseError
  std::optional<bool> tryStep() noexcept;  // the same, nothing for a failure
  void run();                              // to its end, and reset
  void reset() noexcept;

  std::int64_t integer(int column) const;
  std::u16string text(int column) const;
  std::string_view blob(int column) const;  // until the next step
  bool isNull(int column) const;
  bool isText(int column) const;
  bool isInteger(int column) const;
  // A text as it lies there: until the next step, or until `copy` changes, which is used where it has to be.
  std::u16string_view view(int column, std::u16string& copy) const;
  // The same; nothing for Null.
  std::optional<std::u16string_view> textIfAny(int column, std::u16string& copy) const;
  Value value(int column, bool yesNo) const;
  // The same for a row that is shown: of a very long text only its beginning is taken, with the mark.
  Value limitedValue(int column, bool yesNo) const;

 private:
  struct Finalizer {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
  };
  void check(int resultCode);
  std::u16string beginning(int column) const;
  Connection* connection_ = nullptr;
  std::unique_ptr<sqlite3_stmt, Finalizer> handle_;
};

// A statement that is kept for the next time: however its use ends, it is reset, since one that was left in
// the middle takes no new values.
class Running {
 public:
  explicit Running(Statement& statement) : statement_(statement) {}
  ~Running() { statement_.reset(); }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;

 private:
  Statement& statement_;
};

// Statements of one text, prepared once and lent out.
class StatementPool {
 public:
  StatementPool() = default;
  explicit StatementPool(std::string sql) : sql_(std::move(sql)) {}
  const std::string& sql() const { return sql_; }
  Statement take(Connection& connection);
  void giveBack(Statement statement) noexcept;

 private:
  std::string sql_;
  std::vector<Statement> idle_;
};

}  // namespace vordane::sqlite
