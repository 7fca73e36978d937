// How many events each owner has: a table beside the index, kept in the transactions that change the index.
//
//   VordaneFaultCounts  ID (the owner), Faults (how many rows of the index are its own)
//
// What this buys: a list knows how long it is before its rows are read.
#pragma once

#include <cstdint>
#include <map>
#include <optional>

#include "platform/sqlite/connection.h"

namespace vordane::sqlite {

class EventCounts {
 public:
  explicit EventCounts(Connection& connection) : connection_(connection) {}

  // As of the last commit; nothing for an owner that has no row there. Throws DatabaseError, as all below.
  std::optional<std::int64_t> of(std::int64_t owner);

  // Inside the transaction that changes the index: so many events more, or fewer. Told before the index is
  // changed, so that nothing is forgotten when that fails.
  void changed(std::int64_t owner, std::int64_t by) { pending_[owner].by += by; }
  // The owner's events are counted when the transaction ends.
  void countAnew(std::int64_t owner) { pending_[owner].anew = true; }
  // Every owner's, now.
  void countAll();
  void beforeCommit();

  void transactionBegan() noexcept { pending_.clear(); }
  // Something was taken back: what was changed so far in this transaction is counted at its end.
  void undone() noexcept;

 private:
  struct Change {
    std::int64_t by = 0;
    bool anew = false;
  };
  void write(std::int64_t owner, const Change& change);

  Connection& connection_;
  std::map<std::int64_t, Change> pending_;  // by owner; a list is mostly of one
  Statement add_;
};

}  // namespace vordane::sqlite
