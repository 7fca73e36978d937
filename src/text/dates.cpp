#include "text/dates.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>

#include "text/numbers.h"

namespace vordane::text {
namespace {

using namespace std::chrono_literals;
using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr std::int64_t secondsOfDay = 86400;
constexpr sys_days epoch = 1899y / 12 / 30;

}  // namespace

std::u16string isoText(int year, int month, int day, int hour, int minute, int second) {
  const auto two = [](int value) { return decimalPadded(value, 2); };
  return decimalPadded(year, 4) + u"-" + two(month) + u"-" + two(day) + u" " + two(hour) + u":" +
         two(minute) + u":" + two(second);
}

bool hasForm(std::u16string_view text, std::u16string_view pattern) {
  const auto fits = [](char16_t character, char16_t wanted) {
    return wanted == u'0' ? isDecimalDigit(character) : character == wanted;
  };
  return std::equal(text.begin(), text.end(), pattern.begin(), pattern.end(), fits);
}

bool isIsoText(std::u16string_view text) {
  return hasForm(text, u"0000-00-00 00:00:00");
}

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
  const year_month_day date(epoch + std::chrono::days(static_cast<int>(whole)));
  const auto time = static_cast<int>(seconds);
  return isoText(int{date.year()}, static_cast<int>(unsigned{date.month()}),
                 static_cast<int>(unsigned{date.day()}), time / 3600, time / 60 % 60, time % 60);
}

std::optional<double> momentOf(std::u16string_view text) {
  constexpr std::size_t length = 19;
  if (text.size() != length || text[4] != u'-') return std::nullopt;
  const auto part = [&](std::size_t at, std::size_t count) {
    return std::int64_t{decimalField(text.substr(at, count))};
  };
  const year_month_day date(std::chrono::year(static_cast<int>(part(0, 4))),
                            std::chrono::month(static_cast<unsigned>(part(5, 2))),
                            std::chrono::day(static_cast<unsigned>(part(8, 2))));
  if (!date.ok()) return std::nullopt;
  const auto days = static_cast<double>((sys_days(date) - epoch).count());
  const auto seconds = static_cast<double>(part(11, 2) * 3600 + part(14, 2) * 60 + part(17, 2));
  const double time = seconds / static_cast<double>(secondsOfDay);
  const double moment = days < 0 ? days - time : days + time;
  if (isoMoment(moment) != text) return std::nullopt;
  return moment;
}

}  // namespace vordane::text
