// The events of a store in memory, by their numbers.
#pragma once

#include <algorithm>
#include <map>
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
  std::optional<database::Latest> latest(std::int64_t owner, std::int64_t above) override {
    ++questions;
    mark = above;
    if (fails) throw database::DatabaseError(3151, u"gone");
    const auto found = listed.find(owner);
    if (found == listed.end()) return {};
    const bool more = std::any_of(all.begin(), all.end(), [&](const database::Arrival& each) {
      return each.owner == owner && each.number > above;
    });
    return database::Latest{found->second, more, last()};
  }
  // The next numbers.
  void add(std::int64_t owner, std::size_t events = 1) {
    for (; events > 0; --events) all.push_back({owner, last() + 1});
  }

  std::int64_t last() const { return all.empty() ? 0 : all.back().number; }

  std::u16string ownIdentity = u"aa";
  std::vector<database::Arrival> all;
  std::map<std::int64_t, std::u16string> listed;  // when the last list of an owner came
  int questions = 0;                              // for the latest; the last mark among them
  std::int64_t mark = 0;
  bool fails = false;
  std::size_t read = 0;
};

}  // namespace vordane::fakes
