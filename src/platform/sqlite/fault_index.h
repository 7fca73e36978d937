// What the engine keeps beside FaultDisplay so that looking for an identical fault, listing an exchange's
// faults by time and finding the newest fault stay quick with a million rows: one row for each fault, in
// tables of its own, so that the documented tables hold nothing that another SQLite tool can't handle.
//
//   VordaneFaultIndex  ID, Moment (sort key of Date), Hash (of the five compared columns), Count,
//                      Kind (sort keys of Fault, Alarm, CPU)
//   VordaneIndexState  Stale is set by triggers when somebody else changes FaultDisplay; the index is then
//                      made anew before it is used again. This engine switches triggers off for itself.
//                      LastCount is the last number that was given when the index was last good: whoever
//                      adds with triggers off is found by it.
//
// A table that is not declared as this system's own files declare it is answered from the table alone.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/sqlite/connection.h"
#include "platform/sqlite/description_order.h"
#include "platform/sqlite/fault_orders.h"
#include "platform/sqlite/time_order.h"

namespace vordane::sqlite {

// The columns of a fault that the index knows; nothing stands for Null.
struct FaultFields {
  std::optional<std::u16string_view> fault, alarm, cpu, date, description;
};

class FaultIndex {
 public:
  explicit FaultIndex(Connection& connection);

  // True when the index answers for the table as it is now; makes it anew where that is needed and allowed.
  // Without it every statement is answered from the table alone.
  bool usable();

  // `Count` of the rows that agree in all compared columns, oldest first; all `fields` are texts.
  std::vector<std::int64_t> findSame(std::int64_t id, const FaultFields& fields);
  static std::string momentKey(std::optional<std::u16string_view> date);
  static std::int64_t hashOf(const FaultFields& fields);
  static std::string kindKey(const FaultFields& fields);

  // `Count` of the first row by Date descending, nothing when the table is empty.
  std::optional<std::int64_t> newest();
  // `Count` of every row in that order, `newest` first.
  std::vector<std::int64_t> allNewestFirst();
  // `Count` of an exchange's rows, ascending in one of the five orders; null when one of them is below 0 or
  // has more than 32 bits, and only the table itself can tell.
  SharedCounts ordered(std::int64_t id, FaultOrder order);

  // Inside the transaction that changes the table.
  void added(std::int64_t count, std::optional<std::int64_t> id, const FaultFields& fields);
  void changing(std::int64_t count);     // before and
  void changed(std::int64_t count);      // after an update of one row
  void removeExchange(std::int64_t id);  // rows of both the table and the index

  void transactionBegan() noexcept;
  void beforeCommit();
  // Something that was changed was taken back, or may have been: a step, or the whole transaction.
  void undone() noexcept;

 private:
  struct Newest {
    bool known = false;
    std::string moment;
    std::optional<std::int64_t> count;  // nothing: the table is empty
  };
  void follow();
  void findTable();
  bool readState();
  bool isPresent();
  void repair();
  void create();
  void removeOwn();
  void rebuild();
  void findNewest();
  void removeRows(std::int64_t id, std::size_t of);
  SharedCounts orderedByTime(std::int64_t id);
  Statement& prepared(Statement& statement, const char* sql);

  Connection& connection_;
  const Table* table_ = nullptr;     // null: the file holds no such table
  std::uint64_t tablesChanged_ = 0;  // when `table_` was found
  std::int64_t seenChanges_ = 0;     // when `present_` was
  std::optional<bool> present_;      // unknown where something was taken back or others have written
  // What holds for as long as this transaction lasts.
  bool checked_ = false;   // the index is known to be good
  bool madeAnew_ = false;  // it was made anew
  bool touched_ = false;   // it was changed
  bool newestChanged_ = false;
  Newest newest_;
  Statement state_, same_, insert_, remove_, read_;
  std::string key_;  // keeps its memory between rows
  Collecting collecting_;
  TimeOrder byTime_;
  DescriptionOrder byDescription_;
};

}  // namespace vordane::sqlite
