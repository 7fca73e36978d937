// A clock that stands where a test sets it, or goes on a little at each look.
#pragma once

#include "platform/services.h"
#include "text/numbers.h"

namespace vordane::fakes {

class SetClock : public platform::Clock {
 public:
  platform::LocalTime now() override { return time; }
  double secondsSinceMidnight() override {
    seconds += secondsPerLook;
    return seconds;
  }
  void sleep(int milliseconds) override { seconds += milliseconds / 1000.0; }
  // Day.month.year, as some workstations write it.
  std::u16string regional(const platform::LocalTime& t) override {
    const auto two = [](int n) { return text::decimalPadded(n, 2); };
    std::u16string result = two(t.day);
    result.append(u".").append(two(t.month)).append(u".").append(text::decimal(t.year));
    result.append(u" ").append(two(t.hour)).append(u":").append(two(t.minute));
    return result.append(u":").append(two(t.second));
  }

  platform::LocalTime time{2026, 11, 20, 21, 14, 5};
  double seconds = 0;
  double secondsPerLook = 0;
};

}  // namespace vordane::fakes
