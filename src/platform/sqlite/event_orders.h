// The orders of an owner's events that the index holds; by description: description_order.h. A million
// events cost at most 16 bytes each on the way and 4 in the end.
//
// What this buys: SQLite's own sort of a million rows takes about 2 s, one pass over the index and a counting
// sort take 0.2 s (docs/performance.md).
#pragma once

#include <cstdint>
#include <deque>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/sqlite/connection.h"

namespace vordane::sqlite {

// By the description, where it leads; by these texts of the kind, counted from 0; by moment; by key. All of
// them ascend.
struct EventOrder {
  bool byDescription = false;
  std::vector<std::size_t> kinds;

  bool isOfTime() const { return !byDescription && kinds.empty(); }
};

// Numbers the kinds of an owner's events as they are met; there are few.
class Kinds {
 public:
  std::uint32_t numberOf(std::string_view kind);
  // The place of each kind in an order by these of its texts; kinds that do not differ there share one.
  // `placeCount` is the number of places.
  std::vector<std::uint32_t> places(const std::vector<std::size_t>& texts, std::size_t& placeCount) const;

 private:
  std::unordered_map<std::string, std::uint32_t> numbers_;
  std::string_view last_ = "\xFF\xFF\xFF";  // no kind
  std::uint32_t lastNumber_ = 0;
};

// An owner's events by moment, then key, taken in while the engine goes through the index.
class CollectedEvents {
 public:
  // `kind` is given for all or for none. Throws DatabaseError when moments do not ascend or a kind is no
  // kind: the index is damaged then.
  void add(std::string_view moment, std::int64_t key, std::optional<std::string_view> kind);
  void finish() { closeGroup(); }

  // A key was met that has no place in a short one; none of the orders below holds then.
  bool beyondKeys() const { return beyondKeys_; }
  const std::string& lastMoment() const { return moment_; }
  std::vector<std::uint32_t> byTime() const;
  std::vector<std::uint32_t> byKind(const std::vector<std::size_t>& texts) const;

 private:
  struct Event {
    std::uint32_t key, kind;
  };
  void closeGroup();

  std::deque<Event> events_;  // a vector would need three times its size at the moment it grows
  Kinds kinds_;
  std::string moment_;
  bool beyondKeys_ = false;
  std::size_t group_ = 0;  // where the events of `moment_` begin
};

// What SQLite's aggregate `vordane_collect` fills: set for the time of one statement.
struct Collecting {
  CollectedEvents* events = nullptr;
  std::exception_ptr failure;
};
void registerCollect(Connection& connection, Collecting& collecting);

// Goes through an owner's part of the index; `collecting` is the one that was registered.
CollectedEvents collectEvents(Connection& connection, Collecting& collecting, std::int64_t owner,
                              bool withKinds);

}  // namespace vordane::sqlite
