#include "store/time_stamp.h"

#include <optional>

#include "text/dates.h"
#include "text/numbers.h"
#include "text/text.h"

namespace vordane::store {
namespace {

constexpr std::u16string_view column = u"TimeStamp";

std::optional<platform::LocalTime> parseDate(std::u16string_view text) {
  if (!text::isIsoText(text)) return {};
  const auto field = [&](std::size_t start, std::size_t length) {
    return static_cast<int>(text::decimalField(text::middle(text, start, length)));
  };
  return platform::LocalTime{field(1, 4), field(6, 2), field(9, 2), field(12, 2), field(15, 2), field(18, 2)};
}

}  // namespace

std::u16string isoText(const platform::LocalTime& time) {
  return text::isoText(time.year, time.month, time.day, time.hour, time.minute, time.second);
}

void stampNow(database::Recordset& row, platform::Clock& clock) {
  const auto now = clock.now();
  row.set(column, row.isDate(column) ? isoText(now) : clock.regional(now));
}

std::u16string shownTimeStamp(std::u16string_view stored, bool dated, platform::Clock& clock) {
  const auto time = dated ? parseDate(stored) : std::nullopt;
  return time ? clock.regional(*time) : std::u16string(stored);
}

}  // namespace vordane::store
