// What the engine keeps beside a table of events so that looking for an identical one, listing an owner's
// events by time and finding the newest stay quick with a million rows: one row for each event, in tables of
// its own, so that the documented tables hold nothing that another SQLite tool can't handle.
//
//   VordaneFaultIndex  ID (the owner), Moment (the moment's sort key), Hash (of the five texts), Count (the
//                      key), Kind (sort keys of the kind's texts)
//   VordaneIndexState  Stale is set by triggers when somebody else changes the table; the index is then made
//                      anew before it is used again. This engine switches triggers off for itself.
//                      LastCount is the last key that was given when the index was last good: whoever adds
//                      with triggers off is found by it.
//   VordaneFaultCounts how many events each owner has (event_counts.h)
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
#include "platform/sqlite/event_counts.h"
#include "platform/sqlite/event_keys.h"
#include "platform/sqlite/event_orders.h"
#include "platform/sqlite/expected_events.h"
#include "platform/sqlite/time_order.h"

namespace vordane::sqlite {

class EventIndex {
 public:
  explicit EventIndex(Connection& connection);

  // True when the index answers for the table as it is now; makes it anew where that is needed and allowed.
  // Without it every statement is answered from the table alone.
  bool usable();

  // Keys of the rows that agree in the owner and all texts, oldest first; no text is Null.
  std::vector<std::int64_t> findSame(std::int64_t owner, const EventTexts& texts);

  // The events that `findSame` will be asked for next, in this order, inside a transaction: it may answer
  // from what one look at all of them has found. Throws DatabaseError when that has ended the transaction.
  void expect(std::int64_t owner, const EventTexts& texts) { expected_.add(owner, texts); }
  void lookForExpected() { expected_.look(*table_); }
  void forgetExpected() noexcept { expected_.forget(); }

  // Key of the first row by moment descending, nothing when the table is empty.
  std::optional<std::int64_t> newest();
  // Key of every row in that order, `newest` first.
  std::vector<std::int64_t> allNewestFirst();
  // Keys of an owner's rows, ascending in this order; null when one of them is below 0 or has more than 32
  // bits, and only the table itself can tell.
  SharedKeys ordered(std::int64_t owner, const EventOrder& order);
  // Whether the owner's order of time is known without reading it.
  bool isOrderKept(std::int64_t owner);
  // It was read: kept from now on, as TimeOrder::keep.
  SharedKeys keepOrder(std::int64_t owner, std::int64_t version, std::vector<std::uint32_t> keys,
                       std::string lastMoment);

  // How many events an owner has; nothing where the file does not tell. Not while something is being changed.
  // The index must be usable.
  std::optional<std::int64_t> count(std::int64_t owner);
  // A count was not what it said: what is kept of them does not hold until they are counted again.
  void countsAreWrong() noexcept { countsWrong_ = true; }

  // Inside the transaction that changes the table.
  void added(std::int64_t key, std::optional<std::int64_t> owner, const EventTexts& texts);
  void changing(std::int64_t key);       // before and
  void changed(std::int64_t key);        // after an update of one row
  void removeOwner(std::int64_t owner);  // rows of both the table and the index

  void transactionBegan() noexcept;
  void beforeCommit();
  // Something that was changed was taken back, or may have been: a step, or the whole transaction.
  void undone() noexcept;

 private:
  struct Newest {
    bool known = false;
    std::string moment;
    std::optional<std::int64_t> key;  // nothing: the table is empty
  };
  void follow();
  void findTable();
  // Which of the index's own tables and triggers are there; an earlier version has no counts.
  enum class Present { no, withoutCounts, whole };
  enum class State { bad, uncounted, good };
  State readState();
  Present lookForOwn();
  void repair();
  void create();
  void createCounts();
  void countAnew();
  void rebuild();
  void findNewest();
  void removeRows(std::int64_t owner, std::size_t of);
  void forgetRead() noexcept;
  SharedKeys orderedByTime(std::int64_t owner);
  Statement& prepared(Statement& statement, std::string_view sql);

  Connection& connection_;
  const Table* table_ = nullptr;     // null: the file holds no such table
  std::uint64_t tablesChanged_ = 0;  // when `table_` was found
  std::int64_t seenChanges_ = 0;     // when `present_` was
  std::optional<Present> present_;   // unknown where something was taken back or others have written
  // What holds for as long as this transaction lasts.
  bool checked_ = false;   // the index is known to be good
  bool madeAnew_ = false;  // it was made anew
  bool touched_ = false;   // it was changed
  bool newestChanged_ = false;
  Newest newest_;
  Statement state_, same_, insert_, remove_, read_;
  EventCounts counts_;
  bool counted_ = false, countsWrong_ = false;
  std::string momentKey_, kindKey_;  // keep their memory between rows
  Collecting collecting_;
  TimeOrder byTime_;
  ExpectedEvents expected_;
  DescriptionOrder byDescription_;
};

}  // namespace vordane::sqlite
