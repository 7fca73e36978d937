// The events of a store in the order they came, for whoever wants to know what is new since he looked. A
// number is never given twice, so the events that are numbered above a mark are those that came after it. No
// question is a documented statement, and none holds a lock or waits for one. One thread; made for a few
// questions and not kept, since it keeps the store open.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vordane::database {

struct Arrival {
  std::int64_t owner = 0, number = 0;
  bool operator==(const Arrival&) const = default;
};

// What is stored of one owner at one moment.
struct Latest {
  std::u16string listed;     // when its last list came, as the store keeps it
  bool more = false;         // it has events above the mark that was asked for
  std::int64_t highest = 0;  // the highest number of all events, whoever owns them
  bool operator==(const Latest&) const = default;
};

class Arrivals {
 public:
  virtual ~Arrivals() = default;
  // All of these throw DatabaseError, also when somebody else holds the store at this moment.

  // What tells this store from every other: random, made once, and kept in the store. Empty where there is
  // none and none can be made.
  virtual std::u16string identity() = 0;
  // The highest number of all events; 0 without any.
  virtual std::int64_t highest() = 0;
  // The next events that are numbered above `number`, in the order of their numbers; fewer than `most` when
  // there are no more.
  virtual std::vector<Arrival> after(std::int64_t number, std::size_t most) = 0;
  // In one question; no event below the mark is looked at. Nothing where there is no such owner, or where the
  // store does not tell.
  virtual std::optional<Latest> latest(std::int64_t /*owner*/, std::int64_t /*mark*/) { return {}; }
};

}  // namespace vordane::database
