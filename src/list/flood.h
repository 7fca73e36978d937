// A flood: more faults within ten minutes than a person can follow. Ten in ten minutes is the limit of the
// standards of alarm management (ISA 18.2, EEMUA 191). Minutes that are full of them and share a fault are
// one flood. Values; nothing here reads a row.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "list/filter.h"

namespace vordane::list {

// Minutes since some moment, so that a difference is a time that went by; nothing for a date that no calendar
// has.
std::optional<std::int64_t> onTheClock(Minute minute);

// Looks for the latest flood in times that come newest first.
class FloodSearch {
 public:
  static constexpr std::size_t limit = 10;     // faults that are no flood yet
  static constexpr std::int64_t stretch = 10;  // minutes

  // Faults of that minute, or of that stored date. False when no older one can belong to what is known; times
  // that do not come newest first give no flood.
  bool take(Minute minute, std::size_t faults);
  bool take(std::u16string_view stored, std::size_t faults);

  struct Times {
    Minute first, last;
    bool operator==(const Times&) const = default;
  };
  const std::optional<Times>& latest() const { return latest_; }

 private:
  struct Group {
    Minute minute;
    std::int64_t clock;
    std::size_t faults;
  };
  bool add(const Group& group);
  void drop(std::int64_t clock);
  std::optional<Group> ofDay(std::u16string_view stored, std::size_t faults) const;

  // Of the date that was read last, with the blank behind it: the next one is mostly of the same day.
  std::u16string day_;
  Group midnight_{};
  std::vector<Group> stretch_;  // newest first: the last ten minutes
  std::size_t faults_ = 0;      // in them
  std::int64_t begin_ = 0;      // of the flood
  bool over_ = false;
  std::optional<Times> latest_;
};

// What a flood consists of.
struct Flood {
  FloodSearch::Times times{};
  std::size_t faults = 0;
  // Of one kind: its title, who reported it, whoever reported most of them first, and how many.
  struct Kind {
    std::u16string title;
    std::vector<std::u16string> processors;
    std::size_t faults = 0;
    bool operator==(const Kind&) const = default;
  };
  std::vector<Kind> kinds;  // the commonest first
  struct One {
    std::u16string title, processor;
    bool operator==(const One&) const = default;
  };
  One first, last;

  std::int64_t minutes() const;  // that it took, the first and the last included
  Filter filter() const;         // that shows its faults and no others
  bool operator==(const Flood&) const = default;
};

// A minute as dates are written.
std::u16string writtenMinute(Minute minute);

}  // namespace vordane::list
