// The order of an exchange's faults by Description. The texts of a million faults are too long to be held at
// once. So some of them, chosen evenly, are sorted first; they part the others into classes that each have a
// long beginning in common, and a fault is then known by its class and the few characters behind that
// beginning. Only faults that are still alike are read once more and compared in full.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/sqlite/blocks.h"
#include "platform/sqlite/fault_orders.h"

namespace vordane::sqlite {

class DescriptionOrder {
 public:
  // `counts` are the exchange's faults by Date, then Count.
  DescriptionOrder(Connection& connection, const Blocks<std::uint32_t>& counts);
  // The same by Description, Fault, Alarm, Date, Count. Throws DatabaseError.
  std::vector<std::uint32_t> run();

 private:
  // A fault's class and what its class orders it by, in 6 bytes.
  struct Key {
    std::array<std::uint16_t, 3> parts;
  };
  struct Texts {
    std::string description, fault, alarm;  // sort keys; empty for Null
    friend auto operator<=>(const Texts&, const Texts&) = default;
  };
  using Position = std::vector<std::uint32_t>::iterator;

  void take(const Statement& row, Texts& out);
  void read(std::uint32_t fault, Texts& out);
  void chooseSamples();
  void makeKeys();
  void makeKeys(std::uint32_t begin, std::uint32_t end);
  void setKey(std::uint32_t fault, const Texts& texts);
  std::uint64_t keyOf(std::string_view description);
  std::uint64_t keyAt(std::uint32_t fault) const;
  void sortClasses();
  void sortClass(std::uint64_t number, Position begin, Position end);
  void sortAlike(Position begin, Position end);
  void sortTexts(Position begin, Position end);
  void partTexts(Position begin, Position end);

  Connection& connection_;
  const Blocks<std::uint32_t>& counts_;
  Statement row_, neighbours_;
  std::u16string copy_;
  std::vector<std::string> samples_;      // sorted, each once
  std::vector<std::size_t> commonBegin_;  // of sample i-1 and sample i
  Blocks<Key> keys_;
  Kinds kinds_;
  std::string kind_;
  std::vector<std::uint32_t> kindPlaces_;
  std::vector<std::uint32_t> order_;  // positions in `counts_`
};

}  // namespace vordane::sqlite
