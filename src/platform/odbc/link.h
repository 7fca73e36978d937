// One connection to a database server through the driver manager: statements with bound values, transactions.
// One thread. Every failure is a DatabaseError; after one that means that the connection is gone every
// further call fails at once, since a later commit may answer success all the same. So does a call that was
// given up: its handles go when the driver lets go of them.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
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
  // `waiter` makes the calls that may take long; it must live longer. Connecting is given up after
  // `patience`.
  Link(const Api& api, std::u16string connection, std::chrono::milliseconds patience, Waiter& waiter);
  ~Link();
  Link(const Link&) = delete;
  Link& operator=(const Link&) = delete;

  // How long an answer is waited for from here on; for ever, as long as nobody says.
  void setPatience(Waiter::Patience patience) { patience_ = std::move(patience); }

  // A statement with `?` for each value. It is prepared once and kept by its text. All rows are read at once.
  std::vector<Fields> query(const std::string& statement, std::span<const Field> values = {});
  // The same for one that gives no rows; how many it changed.
  std::int64_t change(const std::string& statement, std::span<const Field> values = {});

  void begin();
  void commit();
  void rollback() noexcept;
  bool inTransaction() const { return inTransaction_; }
  bool lost() const { return lost_; }
  // The last call was given up: whoever tries at once waits as long once more.
  bool hung() const { return hung_; }

 private:
  class Prepared;
  struct Connection;
  using Step = std::function<Return(Connection&)>;
  Return wait(const Step& step, const Waiter::Patience& patience);
  std::optional<Return> tryStep(const Step& step, const Waiter::Patience& patience);
  Waiter::Patience brief() const;
  void connect(std::u16string connection, std::chrono::milliseconds patience);
  Prepared& find(const std::string& statement);
  Prepared& run(const std::string& statement, std::span<const Field> values);
  [[noreturn]] void raise(std::int16_t kind, Handle handle);
  void requireLink() const;
  void check(Return result, std::int16_t kind, Handle handle);
  void close() noexcept;

  Waiter& waiter_;
  Waiter::Patience patience_;
  std::shared_ptr<Connection> connection_;  // null when a call was given up
  bool inTransaction_ = false, lost_ = false, hung_ = false;
};

// U+0000 would cut a text on its way, and half of a pair swallow its neighbour: neither can be kept by a
// server.
bool canTravel(std::u16string_view text);

}  // namespace vordane::odbc
