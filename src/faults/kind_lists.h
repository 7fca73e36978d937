// The lists that hold the texts of the kinds' codes, and the last message a kind shows, as the table of kinds
// has them: what the window creates, what every language must fill, what the checks count.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

#include "faults/kind_table.h"

namespace vordane {

// A hidden drop-down "cboFKxx". An item's position is its code; `items` is their exact number, `atLeast`
// lists may hold more.
struct KindList {
  std::array<char16_t, 7> letters;
  int kind;
  int items;
  bool atLeast;

  constexpr std::u16string_view name() const { return {letters.data(), letters.size()}; }
};

namespace faults {

constexpr KindList listOf(const FaultKind& row) {
  constexpr std::u16string_view digits = u"0123456789ABCDEF";
  const bool open = row.highestCode == noHighestCode;
  return {{u'c', u'b', u'o', u'F', u'K', digits[row.list / 16U], digits[row.list % 16U]},
          row.list,
          open ? row.leastItems : row.highestCode + 2,  // one more for codes out of range
          open};
}

constexpr bool hasList(const FaultKind& row) {
  return row.list != noList;
}

constexpr auto makeKindLists() {
  std::array<KindList, std::count_if(std::begin(faultKinds), std::end(faultKinds), hasList)> lists{};
  std::size_t next = 0;
  for (const FaultKind& row : faultKinds)
    if (hasList(row)) lists[next++] = listOf(row);
  return lists;
}

constexpr int lastOfTheKinds() {
  int last = lastSharedText;
  for (const FaultKind& row : faultKinds) last = std::max<int>({last, row.title, row.label});
  return last;
}

// The highest message number that a description may need.
inline constexpr int lastFaultText = lastOfTheKinds();

}  // namespace faults

inline constexpr auto kindLists = faults::makeKindLists();

}  // namespace vordane
