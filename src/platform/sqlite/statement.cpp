#include "platform/sqlite/statement.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "platform/sqlite/connection.h"
#include "platform/stored_values.h"
#include "text/utf8.h"

namespace vordane::sqlite {
namespace {

// SQLite takes a null pointer for Null, whatever the length.
const void* dataOf(std::u16string_view text) {
  return text.data() ? text.data() : u"";
}

}  // namespace

std::u16string_view unitsOf(const void* bytes, int size, std::u16string& copy) {
  const auto length = static_cast<std::size_t>(size) / 2;
  if (reinterpret_cast<std::uintptr_t>(bytes) % alignof(char16_t) == 0)
    return {static_cast<const char16_t*>(bytes), length};
  copy.resize(length);
  if (length != 0) std::memcpy(copy.data(), bytes, length * 2);
  return copy;
}

Statement::Statement(Connection& connection, std::string_view sql) : connection_(&connection) {
  sqlite3_stmt* statement = nullptr;
  const int result = sqlite3_prepare_v3(connection.handle(), sql.data(), static_cast<int>(sql.size()),
                                        SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
  handle_.reset(statement);
  check(result);
}

void Statement::check(int resultCode) {
  if (resultCode != SQLITE_OK && resultCode != SQLITE_ROW && resultCode != SQLITE_DONE)
    connection_->raise(sqlite3_extended_errcode(connection_->handle()));
}

void Statement::bind(int parameter, std::int64_t number) {
  check(sqlite3_bind_int64(handle_.get(), parameter, number));
}

void Statement::bindText(int parameter, std::u16string_view text) {
  check(sqlite3_bind_text64(handle_.get(), parameter, static_cast<const char*>(dataOf(text)),
                            text.size() * sizeof(char16_t), SQLITE_STATIC, SQLITE_UTF16LE));
}

void Statement::bindBlob(int parameter, std::string_view bytes) {
  check(sqlite3_bind_blob64(handle_.get(), parameter, bytes.data() ? bytes.data() : "", bytes.size(),
                            SQLITE_STATIC));
}

void Statement::bindNull(int parameter) {
  check(sqlite3_bind_null(handle_.get(), parameter));
}

void Statement::bind(int parameter, const jet::Literal& literal) {
  literal.isText ? bindText(parameter, literal.text) : bind(parameter, literal.number);
}

void Statement::bind(int parameter, const Value& value) {
  if (const auto* text = std::get_if<std::u16string>(&value)) return bindText(parameter, *text);
  if (const auto* flag = std::get_if<bool>(&value)) return bind(parameter, std::int64_t{*flag ? -1 : 0});
  if (const auto* small = std::get_if<std::int16_t>(&value)) return bind(parameter, std::int64_t{*small});
  if (const auto* whole = std::get_if<std::int32_t>(&value)) return bind(parameter, std::int64_t{*whole});
  if (const auto* number = std::get_if<double>(&value))
    return check(sqlite3_bind_double(handle_.get(), parameter, *number));
  bindNull(parameter);
}

std::optional<bool> Statement::tryStep() noexcept {
  const int result = sqlite3_step(handle_.get());
  if (result != SQLITE_ROW && result != SQLITE_DONE) return std::nullopt;
  return result == SQLITE_ROW;
}

bool Statement::step() {
  if (const auto row = tryStep()) return *row;
  const int reason = sqlite3_extended_errcode(connection_->handle());
  reset();
  connection_->raise(reason);
}

void Statement::run() {
  while (step()) {
  }
  reset();
}

void Statement::reset() noexcept {
  sqlite3_reset(handle_.get());
}

std::int64_t Statement::integer(int column) const {
  return sqlite3_column_int64(handle_.get(), column);
}

std::u16string Statement::text(int column) const {
  const void* characters = sqlite3_column_text16(handle_.get(), column);
  std::u16string text(static_cast<std::size_t>(sqlite3_column_bytes16(handle_.get(), column)) / 2, u'\0');
  // SQLite may point into a page, at an odd address.
  if (!text.empty()) std::memcpy(text.data(), characters, text.size() * 2);
  return text;
}

std::string_view Statement::blob(int column) const {
  const void* bytes = sqlite3_column_blob(handle_.get(), column);
  return {static_cast<const char*>(bytes),
          static_cast<std::size_t>(sqlite3_column_bytes(handle_.get(), column))};
}

bool Statement::isNull(int column) const {
  return sqlite3_column_type(handle_.get(), column) == SQLITE_NULL;
}

bool Statement::isText(int column) const {
  return sqlite3_column_type(handle_.get(), column) == SQLITE_TEXT;
}

bool Statement::isInteger(int column) const {
  return sqlite3_column_type(handle_.get(), column) == SQLITE_INTEGER;
}

std::optional<std::u16string_view> Statement::textIfAny(int column, std::u16string& copy) const {
  return isNull(column) ? std::nullopt : std::optional(view(column, copy));
}

std::u16string_view Statement::view(int column, std::u16string& copy) const {
  const void* const characters = sqlite3_column_text16(handle_.get(), column);
  return unitsOf(characters, sqlite3_column_bytes16(handle_.get(), column), copy);
}

Value Statement::value(int column, bool yesNo) const {
  if (yesNo) return sqlite3_column_double(handle_.get(), column) != 0;
  switch (sqlite3_column_type(handle_.get(), column)) {
    case SQLITE_NULL:
      return automation::Null{};
    case SQLITE_FLOAT:
      return sqlite3_column_double(handle_.get(), column);
    case SQLITE_INTEGER: {
      const std::int64_t number = integer(column);
      if (number == static_cast<std::int32_t>(number)) return static_cast<std::int32_t>(number);
      return static_cast<double>(number);
    }
    default:
      return text(column);
  }
}

Value Statement::limitedValue(int column, bool yesNo) const {
  const bool isText = !yesNo && this->isText(column);
  return isText ? Value(database::limitedText(beginning(column)))
                : database::limitedValue(value(column, yesNo));
}

// One character more than is given of it, or all: what is longer is neither converted nor copied.
std::u16string Statement::beginning(int column) const {
  constexpr std::size_t enough = database::longestText + 1, bytesEach = 4;
  if (!connection_->utf8()) {
    std::u16string copy;
    const void* const characters = sqlite3_column_text16(handle_.get(), column);
    const auto size = static_cast<std::size_t>(sqlite3_column_bytes16(handle_.get(), column));
    return std::u16string(
        unitsOf(characters, static_cast<int>(std::min(size, enough * sizeof(char16_t))), copy));
  }
  const auto size = static_cast<std::size_t>(sqlite3_column_bytes(handle_.get(), column));
  if (size <= enough * bytesEach) return text(column);
  const auto* characters = reinterpret_cast<const char*>(sqlite3_column_text(handle_.get(), column));
  return text::fromUtf8({characters, enough * bytesEach});
}

Statement StatementPool::take(Connection& connection) {
  if (idle_.empty()) return Statement(connection, sql_);
  Statement statement = std::move(idle_.back());
  idle_.pop_back();
  return statement;
}

void StatementPool::giveBack(Statement statement) noexcept {
  if (!statement) return;
  statement.reset();
  try {
    idle_.push_back(std::move(statement));
  } catch (const std::bad_alloc&) {
    // It is prepared anew the next time.
  }
}

}  // namespace vordane::sqlite
