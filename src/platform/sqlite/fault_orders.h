// The orders of an exchange's faults that the fault index holds; by Description: description_order.h. A
// million faults cost at most 16 bytes each on the way and 4 in the end.
#pragma once

#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/sqlite/blocks.h"
#include "platform/sqlite/connection.h"

namespace vordane::sqlite {

enum class FaultOrder { fault, alarm, date, cpu, description };

// Numbers the kinds (the sort keys of Fault, Alarm and CPU) of an exchange as they are met; there are few.
class Kinds {
 public:
  std::uint32_t numberOf(std::string_view kind);
  // The place of each kind in an order that begins with `first` (fault, alarm or cpu); kinds that do not
  // differ there share one. `placeCount` is the number of places.
  std::vector<std::uint32_t> places(FaultOrder first, std::size_t& placeCount) const;

 private:
  std::unordered_map<std::string, std::uint32_t> numbers_;
  std::string_view last_ = "\xFF\xFF\xFF";  // no kind
  std::uint32_t lastNumber_ = 0;
};

// An exchange's faults by Date, then Count, taken in while the engine goes through the index.
class CollectedFaults {
 public:
  // `kind` is given for all or for none. Throws DatabaseError when moments do not ascend or a kind is no
  // kind: the index is damaged then.
  void add(std::string_view moment, std::int64_t count, std::optional<std::string_view> kind);
  void finish() { closeGroup(); }

  std::size_t size() const { return counts_.size(); }
  // A `Count` was met that has no place in a short key; none of the orders below holds then.
  bool beyondKeys() const { return beyondKeys_; }
  const std::string& lastMoment() const { return moment_; }
  std::vector<std::uint32_t> byDate() const;
  std::vector<std::uint32_t> byKind(FaultOrder first) const;

 private:
  void closeGroup();
  void sortGroup(std::size_t begin, std::size_t end, bool withKinds);

  Blocks<std::uint32_t> counts_, kinds_;
  Kinds numbers_;
  std::string moment_;
  bool beyondKeys_ = false;
  std::size_t group_ = 0;  // where the faults of `moment_` begin
};

// What SQLite's aggregate `vordane_collect` fills: set for the time of one statement.
struct Collecting {
  CollectedFaults* faults = nullptr;
  std::exception_ptr failure;
};
void registerCollect(Connection& connection, Collecting& collecting);

// Goes through an exchange's part of the index; `collecting` is the one that was registered.
CollectedFaults collectFaults(Connection& connection, Collecting& collecting, std::int64_t id,
                              bool withKinds);

}  // namespace vordane::sqlite
