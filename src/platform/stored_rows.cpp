#include "platform/stored_rows.h"

#include <algorithm>
#include <cmath>

#include "platform/stored_values.h"

namespace vordane::database {
namespace {

enum Field : std::size_t { fault, alarm, date, cpu, description, count };

// An integer of the automation types, or a Double beyond their range.
std::int64_t rowNumber(const Value& value) {
  constexpr double end = 9223372036854775807.0;
  return static_cast<std::int64_t>(std::clamp(automation::toDouble(value), -end, std::nextafter(end, 0.0)));
}

}  // namespace

window::GridRow gridRowOf(std::span<const Value> columns) {
  return {textOf(columns[fault]), textOf(columns[alarm]),       textOf(columns[date]),
          textOf(columns[cpu]),   textOf(columns[description]), rowNumber(columns[count])};
}

}  // namespace vordane::database
