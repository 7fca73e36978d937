#include "text/dates.h"

#include <cmath>
#include <cstdint>

#include "text/numbers.h"

namespace vordane::text {
namespace {

constexpr std::int64_t secondsOfDay = 86400;
constexpr std::int64_t epoch = 693899;  // 1899-12-30 counted from 0000-03-01

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

// The other way round.
std::int64_t countOf(const Day& date) {
  const std::int64_t year = date.month <= 2 ? date.year - 1 : date.year;
  const std::int64_t fromMarch = date.month <= 2 ? date.month + 9 : date.month - 3;
  return 365 * year + year / 4 - year / 100 + year / 400 + (153 * fromMarch + 2) / 5 + date.day - 1;
}

}  // namespace

std::u16string isoMoment(double days) {
  constexpr double first = -657434, last = 2958466;   // year 100, year 10000
  if (!(days > first - 1 && days < last)) return {};  // the fraction counts away from 0
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

std::optional<double> momentOf(std::u16string_view text) {
  constexpr std::size_t length = 19;
  if (text.size() != length || text[4] != u'-') return std::nullopt;
  const auto part = [&](std::size_t at, std::size_t count) {
    return std::int64_t{decimalField(text.substr(at, count))};
  };
  const auto days = static_cast<double>(countOf({part(0, 4), part(5, 2), part(8, 2)}) - epoch);
  const auto seconds = static_cast<double>(part(11, 2) * 3600 + part(14, 2) * 60 + part(17, 2));
  const double time = seconds / static_cast<double>(secondsOfDay);
  const double moment = days < 0 ? days - time : days + time;
  if (isoMoment(moment) != text) return std::nullopt;
  return moment;
}

}  // namespace vordane::text
