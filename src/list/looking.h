// When a person has looked at an exchange's faults: when the window was in front with them for five seconds.
// A rule over what it is told; one thread.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <optional>

namespace vordane::list {

class Looking {
 public:
  using Time = std::chrono::steady_clock::time_point;
  static constexpr std::chrono::seconds longEnough{5};

  // The faults of an exchange, up to the one that is numbered highest.
  struct Shown {
    std::int64_t exchange = 0, highest = 0;
    bool operator==(const Shown&) const = default;
  };
  // What stands in front at that moment; nothing: the window is not in front, or nobody can use it. Answers
  // with what has been looked at by then, once. Faults that come on the way have their own five seconds.
  std::optional<Shown> see(const std::optional<Shown>& shown, Time now);
  // When it is worth asking again; nothing while there is nothing to wait for.
  std::optional<Time> due() const;

 private:
  struct Waiting {
    Shown shown;
    Time since;
  };
  bool goesOn(const Shown& shown) const;

  std::deque<Waiting> waiting_;  // in front, but not for long enough; the oldest first
  std::optional<Shown> lookedAt_;
};

}  // namespace vordane::list
