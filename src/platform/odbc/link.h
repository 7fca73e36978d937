// One connection to a database server through the driver manager: statements with bound values, transactions.
// Owns its handles. One thread. Every failure is a DatabaseError; after one that means that the connection is
// gone every further call fails at once, since a later commit may answer success all the same.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/odbc/api.h"
#include "platform/odbc/waiter.h"

namespace vordane::odbc {

using Field = std::optional<std::u16string>;  // every value travels as text; nothing is Null
using Fields = std::vector<Field>;

class Link {
 public:
  // `waiter` makes the calls that may take long; it must live longer.
  Link(const Api& api, std::u16string connection, std::chrono::seconds patience, Waiter& waiter);
  ~Link();
  Link(const Link&) = delete;
  Link& operator=(const Link&) = delete;

  // A statement with `?` for each value. It is prepared once and kept by its text. All rows are read at once.
  std::vector<Fields> query(const std::string& statement, std::span<const Field> values = {});
  // The same for one that gives no rows; how many it changed.
  std::int64_t change(const std::string& statement, std::span<const Field> values = {});

  void begin();
  void commit();
  void rollback() noexcept;
  bool inTransaction() const { return inTransaction_; }
  bool lost() const { return lost_; }

 private:
  class Prepared;
  Prepared& run(const std::string& statement, std::span<const Field> values);
  [[noreturn]] void raise(std::int16_t kind, Handle handle);
  void setAutocommit(bool on);
  void requireLink() const;
  void check(Return result, std::int16_t kind, Handle handle);
  void close() noexcept;

  const Api& api_;
  Waiter& waiter_;
  Handle environment_ = nullptr, connection_ = nullptr;
  bool connected_ = false, inTransaction_ = false, lost_ = false;
  std::unordered_map<std::string, std::unique_ptr<Prepared>> prepared_;
};

// U+0000 would cut a text on its way, and half of a pair swallow its neighbour: neither can be kept by a
// server.
bool canTravel(std::u16string_view text);

}  // namespace vordane::odbc
