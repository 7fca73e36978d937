// The ten orders of the grid, and the same orders as the report's formulas: one table each.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vordane::store {

inline constexpr int headingColumns = 6;
inline constexpr int sortableColumns = 5;  // the sixth, Count, has no clause
inline constexpr std::size_t sortKeys = 2 * std::size_t{sortableColumns};

// 0-4 ascending by the grid column, 5-9 descending by column key - 5.
using SortKey = std::int16_t;
inline constexpr SortKey newestFirst = 7;

// The clauses are sent as they stand, the blank before the comma of the CPU clauses included.
inline constexpr std::array<std::u16string_view, sortKeys> sortClauses = {
    u" Order by [Fault] Asc, [Alarm] Asc, [Date] Asc, [Count] Asc, [CPU] Asc, [Description] Asc",
    u" Order by [Alarm] Asc, [Fault] Asc, [Date] Asc, [Count] Asc, [CPU] Asc, [Description] Asc",
    u" Order by [Date] Asc, [Count] Asc, [Fault] Asc, [Alarm] Asc, [CPU] Asc, [Description] Asc",
    u" Order by [CPU] Asc ,[Fault] Asc, [Alarm] Asc, [Date] Asc, [Count] Asc, [Description] Asc",
    u" Order by [Description] Asc, [Fault] Asc, [Alarm] Asc, [Date] Asc, [Count] Asc, [CPU] Asc",
    u" Order by [Fault] Desc, [Alarm] Desc, [Date] Desc, [Count] Desc, [CPU] Desc, [Description] Desc",
    u" Order by [Alarm] Desc, [Fault] Desc, [Date] Desc, [Count] Desc, [CPU] Desc, [Description] Desc",
    u" Order by [Date] Desc, [Count] Desc, [Fault] Desc, [Alarm] Desc, [CPU] Desc, [Description] Desc",
    u" Order by [CPU] Desc ,[Fault] Desc, [Alarm] Desc, [Date] Desc, [Count] Desc, [Description] Desc",
    u" Order by [Description] Desc, [Fault] Desc, [Alarm] Desc, [Date] Desc, [Count] Desc, [CPU] Desc",
};

// The report's six columns for a grid column; "+" or "-" by the direction stands before each.
inline constexpr std::array<std::array<std::u16string_view, headingColumns>, sortableColumns> reportColumns =
    {{
        {u"{FaultDisplay.Fault}", u"{FaultDisplay.Alarm}", u"{FaultDisplay.Date}", u"{FaultDisplay.Count}",
         u"{FaultDisplay.CPU}", u"{FaultDisplay.Description}"},
        {u"{FaultDisplay.Alarm}", u"{FaultDisplay.Fault}", u"{FaultDisplay.Date}", u"{FaultDisplay.Count}",
         u"{FaultDisplay.CPU}", u"{FaultDisplay.Description}"},
        {u"{FaultDisplay.Date}", u"{FaultDisplay.Count}", u"{FaultDisplay.Fault}", u"{FaultDisplay.Alarm}",
         u"{FaultDisplay.CPU}", u"{FaultDisplay.Description}"},
        {u"{FaultDisplay.CPU}", u"{FaultDisplay.Fault}", u"{FaultDisplay.Alarm}", u"{FaultDisplay.Date}",
         u"{FaultDisplay.Count}", u"{FaultDisplay.Description}"},
        {u"{FaultDisplay.Description}", u"{FaultDisplay.Fault}", u"{FaultDisplay.Alarm}",
         u"{FaultDisplay.Date}", u"{FaultDisplay.Count}", u"{FaultDisplay.CPU}"},
    }};

inline constexpr bool isDescending(SortKey key) {
  return key >= sortableColumns;
}
inline constexpr int sortColumn(SortKey key) {
  return key % sortableColumns;
}

}  // namespace vordane::store
