// The grid's columns in the order of GridRow's members, which is also that of a row list behind the grid.
#pragma once

namespace vordane::window {

enum GridColumn : int { faultColumn, alarmColumn, dateColumn, cpuColumn, descriptionColumn, countColumn };
inline constexpr int columnCount = 6;

}  // namespace vordane::window
