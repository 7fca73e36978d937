// The events of a store in memory, by their numbers.
#pragma once

#include <string>
#include <vector>

#include "platform/arrivals.h"
#include "platform/database.h"

namespace vordane::fakes {

class MemoryArrivals final : public database::Arrivals {
 public:
  std::u16string identity() override { return ownIdentity; }
  std::int64_t highest() override {
    if (fails) throw database::DatabaseError(3260, u"locked");
    return last();
  }
  std::vector<database::Arrival> after(std::int64_t number, std::size_t most) override {
    std::vector<database::Arrival> next;
    for (const database::Arrival& each : all)
      if (each.number > number && next.size() < most) next.push_back(each);
    read += next.size();
    return next;
  }
  // The next numbers.
  void add(std::int64_t owner, std::size_t events = 1) {
    for (; events > 0; --events) all.push_back({owner, last() + 1});
  }

  std::int64_t last() const { return all.empty() ? 0 : all.back().number; }

  std::u16string ownIdentity = u"aa";
  std::vector<database::Arrival> all;
  bool fails = false;
  std::size_t read = 0;
};

}  // namespace vordane::fakes
