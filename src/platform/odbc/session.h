// One opened store: its connection, which it makes again by itself after a loss, and the transactions of its
// steps and batches.
//
// A batch's transaction begins with the first statement that needs one and ends with the next saving. What it
// holds meanwhile: the rows of the owners whose events it adds, so that two stations never look for the same
// event at once and no owner is deleted under it; the numbers are locked only from the giving of the first to
// the commit, which follows at once.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/arrivals.h"
#include "platform/database.h"
#include "platform/odbc/engine.h"
#include "platform/odbc/expected_events.h"
#include "platform/odbc/link.h"
#include "platform/odbc/tables.h"
#include "platform/odbc/values.h"
#include "platform/odbc/waiting_events.h"

namespace vordane::odbc {

class Session {
 public:
  Session(const Api& api, const Dialect& dialect, std::u16string connection, bool readOnly,
          const Options& options, std::shared_ptr<const jet::Documented> documented);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  Plans& plans() { return *plans_; }
  const Dialect& dialect() const { return dialect_; }
  bool readOnly() const { return readOnly_; }

  // Rows of one of the plan's statements; none when a value can't have been stored.
  std::vector<Fields> rows(const Plan& plan, const std::string& statement,
                           const std::vector<jet::Literal>& values);
  // The keys of a plan's rows, in their order.
  std::vector<std::int64_t> keys(const Plan& plan, const std::vector<jet::Literal>& values);
  // Each of them behind its key, in any order; those that have gone are missing.
  std::vector<Fields> rowsByKey(const Plan& plan, std::span<const std::int64_t> keys);

  // Whether an event is stored already. One that only waits to travel with others is not among `found` yet;
  // of one that was expected only the keys are there.
  struct Found {
    bool waiting = false;
    std::vector<Fields> rows;
    std::vector<std::int64_t> keys;
  };
  Found findSame(const Plan& plan, const std::vector<jet::Literal>& values);
  // These are about to be looked for in this batch, and none that was before.
  void expect(std::span<const database::Statement> statements);

  std::int64_t takeNumber(const Table& table);
  // An event without a number of its own that is added in a batch travels with others later.
  void add(const Table& table, const NewRow& row);
  // Throws DatabaseError (recordGone) when there is no such row.
  void change(const Table& table, std::int64_t key, const NewRow& fields);
  void remove(const Plan& plan, const std::vector<jet::Literal>& values);

  database::Agreement agree(std::u16string_view subject, const database::Agreement& own);

  // The table of events that the store has, if any; the highest number in it, 0 without one; and the next
  // events above a number, by their numbers, at most `most`.
  const Table* eventTable() const { return tables_->events(); }
  std::int64_t highestEvent(const Table& table);
  std::vector<database::Arrival> eventsAfter(const Table& table, std::int64_t number, std::size_t most);
  // As Arrivals tells it.
  std::optional<database::Latest> latest(const Table& table, std::int64_t owner, std::int64_t mark);
  // What tells which lamps are lit, where the store keeps receipts; null where it was made without.
  const database::LampTable* lampTable() const;
  bool keepsNotes() const { return keepsNotes_; }  // not where the store was made without
  // A step on what stands beside the documented tables, outside batches: a transaction of its own.
  void beside(const std::function<void(Link&)>& step);
  // One question about that.
  std::vector<Fields> askBeside(const std::string& statement, std::span<const Field> values);

  void beginBatch();
  void checkpoint();
  void endBatch();

  // Grows with whatever may have changed rows that somebody remembers.
  std::uint64_t changes() const { return changes_; }

  // Called while the server is waited for, with nothing known of how far it is.
  void setProgress(const database::Database::Progress& progress);
  jet::Lifted lifted;  // of the statement at hand; keeps its memory for the next

 private:
  Link& link();
  void connect();
  bool isAtWork() const noexcept;
  template <typename Step>
  auto guarded(Step step);
  void needTransaction();
  void holdOwner(const Table& table, std::int64_t owner);
  bool ownerExists(const Table& table, std::int64_t owner);
  void beforeReading(const Plan& plan);
  void flush();
  void flushOneByOne(const WaitingEvents& events);
  std::int64_t insert(const Table& table, const NewRow& row);
  void addToWaiting(const Table& table, const NewRow& row);
  void addNow(const Table& table, const NewRow& row);
  std::vector<Fields> ask(const Plan& plan, const std::string& statement,
                          const std::vector<jet::Literal>& values);
  std::vector<Fields> ownersByName(const Plan& plan, const std::vector<jet::Literal>& values);
  void save();
  void saveIfDue();
  bool isAnswered(const Plan& plan, const std::string& statement, const Fields& values) const;
  const std::vector<std::int64_t>* findExpected(const Plan& plan, const std::u16string& identity);
  void lose() noexcept;

  const Api& api_;
  const Dialect& dialect_;
  std::u16string connection_;
  bool readOnly_;
  Options options_;
  std::shared_ptr<const jet::Documented> documented_;
  Waiter waiter_;
  std::unique_ptr<Link> link_;
  Field name_;  // the server's, of this connection
  std::chrono::steady_clock::time_point noConnectionBefore_;
  std::unique_ptr<Tables> tables_;
  std::unique_ptr<Plans> plans_;
  bool keepsReceipts_ = false, keepsNotes_ = false;

  bool inBatch_ = false;
  std::set<std::int64_t> held_;             // owners, by this transaction
  std::optional<std::int64_t> batchOwner_;  // whose row this batch has written: it must not go meanwhile
  WaitingEvents waiting_;
  ExpectedEvents expected_;
  // The last question about owners outside a batch, as long as nothing else was asked.
  struct Answered {
    const std::string* statement = nullptr;
    Fields values;
    std::vector<Fields> rows;
    std::chrono::steady_clock::time_point when;
  };
  Answered answered_;
  bool dirty_ = false;                           // the transaction holds changes that were made already
  std::chrono::steady_clock::time_point begun_;  // when the transaction did
  std::uint64_t changes_ = 0;
};

}  // namespace vordane::odbc
