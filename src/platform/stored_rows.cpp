#include "platform/stored_rows.h"

#include <algorithm>
#include <cmath>

#include "platform/grid_columns.h"
#include "platform/stored_values.h"

namespace vordane::database {
namespace {

// An integer of the automation types, or a Double beyond their range.
std::int64_t rowNumber(const Value& value) {
  constexpr double end = 9223372036854775807.0;
  return static_cast<std::int64_t>(std::clamp(automation::toDouble(value), -end, std::nextafter(end, 0.0)));
}

}  // namespace

window::GridRow gridRowOf(std::span<const Value> columns) {
  using namespace window;
  return {textOf(columns[faultColumn]), textOf(columns[alarmColumn]),       textOf(columns[dateColumn]),
          textOf(columns[cpuColumn]),   textOf(columns[descriptionColumn]), rowNumber(columns[countColumn])};
}

}  // namespace vordane::database
