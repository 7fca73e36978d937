#include "list/flood.h"

#include <algorithm>
#include <chrono>

#include "text/dates.h"
#include "text/text.h"

namespace vordane::list {
namespace {

constexpr std::size_t dayLength = 11;  // with the blank behind it

}  // namespace

std::optional<std::int64_t> onTheClock(Minute minute) {
  const auto part = [&](Minute unit, Minute of) { return static_cast<unsigned>(minute / unit % of); };
  const unsigned hour = part(100, 100), minutes = part(1, 100);
  const std::chrono::year_month_day day{std::chrono::year(static_cast<int>(part(100'000'000, 10'000))),
                                        std::chrono::month(part(1'000'000, 100)),
                                        std::chrono::day(part(10'000, 100))};
  if (minute == noMinute || !day.ok() || hour >= 24 || minutes >= 60) return {};
  const auto days = std::chrono::sys_days(day).time_since_epoch().count();
  return (std::int64_t{days} * 24 + hour) * 60 + minutes;
}

bool FloodSearch::take(Minute minute, std::size_t faults) {
  const auto clock = onTheClock(minute);
  return clock ? add({minute, *clock, faults}) : !over_;
}

// A million dates are not read letter by letter.
bool FloodSearch::take(std::u16string_view stored, std::size_t faults) {
  if (const auto group = ofDay(stored, faults)) return add(*group);
  const Minute minute = minuteOf(stored);
  const Minute midnight = minute - minute % 10'000;
  if (const auto clock = onTheClock(midnight); clock && minute != noMinute) {
    day_ = stored.substr(0, dayLength);
    midnight_ = {midnight, *clock, 0};
  }
  return take(minute, faults);
}

std::optional<FloodSearch::Group> FloodSearch::ofDay(std::u16string_view stored, std::size_t faults) const {
  if (day_.empty() || !text::startsWith(stored, day_) || !text::hasForm(stored.substr(dayLength), u"00:00"))
    return {};
  const auto two = [&](std::size_t at) { return (stored[at] - u'0') * 10 + (stored[at + 1] - u'0'); };
  const int hour = two(dayLength), minute = two(dayLength + 3);
  if (hour >= 24 || minute >= 60) return {};
  return Group{midnight_.minute + static_cast<Minute>(hour * 100 + minute),
               midnight_.clock + hour * 60 + minute, faults};
}

bool FloodSearch::add(const Group& group) {
  if (over_) return false;
  if (!stretch_.empty() && group.clock > stretch_.back().clock) {
    latest_.reset();
    over_ = true;
    return false;
  }
  drop(group.clock);
  if (!stretch_.empty() && stretch_.back().clock == group.clock)
    stretch_.back().faults += group.faults;
  else
    stretch_.push_back(group);
  faults_ += group.faults;
  if (latest_ && stretch_.front().clock < begin_) over_ = true;  // nothing in sight belongs to it
  if (over_ || faults_ <= limit) return !over_;
  if (!latest_) latest_ = Times{group.minute, stretch_.front().minute};
  latest_->first = group.minute;
  begin_ = group.clock;
  return true;
}

// What is too late to be seen together with that moment.
void FloodSearch::drop(std::int64_t clock) {
  const auto kept = std::find_if(stretch_.begin(), stretch_.end(),
                                 [&](const Group& group) { return group.clock < clock + stretch; });
  for (auto group = stretch_.begin(); group != kept; ++group) faults_ -= group->faults;
  stretch_.erase(stretch_.begin(), kept);
}

std::int64_t Flood::minutes() const {
  return onTheClock(times.last).value_or(0) - onTheClock(times.first).value_or(0) + 1;
}

Filter Flood::filter() const {
  Filter filter;
  filter.since = writtenMinute(times.first);
  filter.until = writtenMinute(times.last);
  return filter;
}

std::u16string writtenMinute(Minute minute) {
  std::u16string written = u"0000/00/00 00:00";
  for (auto character = written.rbegin(); character != written.rend(); ++character)
    if (*character == u'0') {
      *character = static_cast<char16_t>(u'0' + minute % 10);
      minute /= 10;
    }
  return written;
}

}  // namespace vordane::list
