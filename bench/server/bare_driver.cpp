#include "bench/server/bare_driver.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "platform/odbc/library.h"
#include "text/utf8.h"

namespace vordane::bench {

namespace sql = odbc::sql;

BareDriver::BareDriver(std::u16string connection)
    : api_(odbc::loadApi(odbc::systemLibrary())),
      bindColumn_(reinterpret_cast<decltype(bindColumn_)>(odbc::systemLibrary()("SQLBindCol"))) {
  api_.allocHandle(sql::handleEnvironment, nullptr, &environment_);
  api_.setEnvAttr(environment_, sql::attributeVersion, reinterpret_cast<void*>(sql::versionOdbc3), 0);
  api_.allocHandle(sql::handleConnection, environment_, &connection_);
  std::int16_t answered = 0;
  check(api_.driverConnect(connection_, nullptr, connection.data(),
                           static_cast<std::int16_t>(connection.size()), nullptr, 0, &answered,
                           sql::noCompletion),
        sql::handleConnection, connection_);
}

BareDriver::~BareDriver() {
  for (const auto& [statement, handle] : prepared_) api_.freeHandle(sql::handleStatement, handle);
  api_.disconnect(connection_);
  api_.freeHandle(sql::handleConnection, connection_);
  api_.freeHandle(sql::handleEnvironment, environment_);
}

void BareDriver::check(odbc::Return result, std::int16_t kind, odbc::Handle handle) const {
  if (sql::ok(result) || result == sql::noData) return;
  std::array<char16_t, 6> state{};
  std::array<char16_t, 1024> said{};
  std::int32_t native = 0;
  std::int16_t length = 0;
  api_.getDiagRec(kind, handle, 1, state.data(), &native, said.data(), static_cast<std::int16_t>(said.size()),
                  &length);
  throw std::runtime_error(text::toUtf8(said.data()));
}

odbc::Handle BareDriver::execute(const std::string& statement, const std::vector<std::u16string>& values) {
  odbc::Handle& handle = prepared_[statement];
  if (handle == nullptr) {
    api_.allocHandle(sql::handleStatement, connection_, &handle);
    std::u16string text = text::fromUtf8(statement);
    check(api_.prepare(handle, text.data(), static_cast<std::int32_t>(text.size())), sql::handleStatement,
          handle);
  }
  std::vector<odbc::Length> lengths(values.size());
  for (std::size_t i = 0; i < values.size(); ++i) {
    lengths[i] = static_cast<odbc::Length>(values[i].size() * sizeof(char16_t));
    check(api_.bindParameter(handle, static_cast<std::uint16_t>(i + 1), sql::input, sql::valueWide,
                             sql::typeLongText, std::max<std::size_t>(1, values[i].size()), 0,
                             const_cast<char16_t*>(values[i].data()), lengths[i], &lengths[i]),
          sql::handleStatement, handle);
  }
  check(api_.execute(handle), sql::handleStatement, handle);
  return handle;
}

void BareDriver::run(const std::string& statement, const std::vector<std::u16string>& values) {
  api_.freeStmt(execute(statement, values), sql::closeCursor);
}

std::vector<std::int64_t> BareDriver::numbers(const std::string& statement,
                                              const std::vector<std::u16string>& values) {
  odbc::Handle handle = execute(statement, values);
  std::int64_t number = 0;
  odbc::Length length = 0;
  check(bindColumn_(handle, 1, sql::valueBigInteger, &number, sizeof number, &length), sql::handleStatement,
        handle);
  std::vector<std::int64_t> all;
  while (sql::ok(api_.fetch(handle))) all.push_back(number);
  api_.freeStmt(handle, sql::closeCursor);
  return all;
}

}  // namespace vordane::bench
