// The formulas that PrintReport gets: which exchange, and in what order its faults.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database.h"

namespace vordane::devhost {

// A stored fault; nothing where the column is Null.
struct Fault {
  std::optional<std::u16string> fault, alarm, date, cpu, description;
  std::int32_t count = 0;
};

struct SortKey {
  enum class Column : std::uint8_t { fault, alarm, date, count, cpu, description };
  Column column;
  bool descending;
  bool operator==(const SortKey&) const = default;
};

// "+{FaultDisplay.Date}" or "-{FaultDisplay.Date}"; nothing for any other text.
std::optional<SortKey> parseSortFormula(std::u16string_view formula);

// The name in "{PbxList.PBXName} = 'NAME'", '' inside it standing for one quote; nothing for any other text.
std::optional<std::u16string> parseSelectionFormula(std::u16string_view formula);

std::u16string_view columnName(SortKey::Column column);

// Texts by their small letters and code points, trailing blanks not counted, Null first; a stable sort.
void sortFaults(std::vector<Fault>& faults, std::span<const SortKey> keys);

}  // namespace vordane::devhost
