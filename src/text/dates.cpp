#include "text/dates.h"

#include <cmath>
#include <cstdint>

#include "text/numbers.h"

namespace vordane::text {
namespace {

struct Day {
  std::int64_t year, month, day;
};

// The civil date of a day counted from 0000-03-01, by the proleptic Gregorian calendar: eras of 400 years,
// years that begin in March so that the leap day comes last.
Day civil(std::int64_t count) {
  constexpr std::int64_t daysOfEra = 146097;
  const std::int64_t era = (count >= 0 ? count : count - (daysOfEra - 1)) / daysOfEra;
  const std::int64_t inEra = count - era * daysOfEra;
  const std::int64_t yearOfEra = (inEra - inEra / 1460 + inEra / 36524 - inEra / 146096) / 365;
  const std::int64_t inYear = inEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const std::int64_t fromMarch = (5 * inYear + 2) / 153;
  const std::int64_t month = fromMarch < 10 ? fromMarch + 3 : fromMarch - 9;
  return {yearOfEra + era * 400 + (month <= 2 ? 1 : 0), month, inYear - (153 * fromMarch + 2) / 5 + 1};
}

}  // namespace

std::u16string isoMoment(double days) {
  constexpr double first = -657434, last = 2958466;  // year 100, year 10000
  if (!(days >= first && days < last)) return {};
  constexpr std::int64_t secondsOfDay = 86400, epoch = 693899;  // 1899-12-30 counted from 0000-03-01
  double whole = std::trunc(days);
  // Before the epoch the fraction still counts forward from midnight.
  auto seconds =
      static_cast<std::int64_t>(std::llround(std::fabs(days - whole) * static_cast<double>(secondsOfDay)));
  if (seconds == secondsOfDay) {
    seconds = 0;
    whole += 1;
  }
  const Day date = civil(static_cast<std::int64_t>(whole) + epoch);
  const auto two = [](std::int64_t value) { return decimalPadded(value, 2); };
  return decimalPadded(date.year, 4) + u"-" + two(date.month) + u"-" + two(date.day) + u" " +
         two(seconds / 3600) + u":" + two(seconds / 60 % 60) + u":" + two(seconds % 60);
}

}  // namespace vordane::text
