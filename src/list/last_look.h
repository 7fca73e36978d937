// What a person has looked at of each exchange: the highest number among the faults that were shown then.
// Kept for each user with the program's settings, under the identity of the store, so that another store, or
// the same one elsewhere, is not taken for this one. Faults above the mark are new.
//
// An exchange that nobody has looked at yet has the mark of the day on which the user met the store. A store
// that holds less than a mark says is an older copy: the mark falls back to what it holds.
//
// What has come is read in pieces between messages, from the lowest mark on, and once read only goes on. One
// thread; the settings outlive it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/arrivals.h"
#include "platform/services.h"

namespace vordane::list {

class LastLook {
 public:
  explicit LastLook(platform::SettingsStore& settings) : settings_(settings) {}

  // More is not counted of an exchange: so many, or more.
  static constexpr std::size_t mostCounted = 1000;

  // Something may have come.
  void begin() {
    busy_ = begun_ = true;
    failed_ = false;
  }
  void giveUp() { busy_ = false; }  // until the next beginning
  void forget();                    // the store goes
  bool busy() const { return busy_; }
  bool failed() const { return failed_; }
  // Goes on while `again` says so, one piece at least; `exchanges` are those that the window lists. True when
  // there is something else to be shown. What fails ends it until the next beginning; never throws.
  bool work(database::Arrivals& store, std::span<const std::int64_t> exchanges,
            const std::function<bool()>& again);

  // The mark of an exchange; nothing before the store is known, and of one that is not listed.
  std::optional<std::int64_t> mark(std::int64_t exchange) const;
  // How many faults above it are known, up to `mostCounted`.
  std::size_t newFaults(std::int64_t exchange) const;
  // The person has seen all faults of the exchange up to this number.
  void looked(std::int64_t exchange, std::int64_t highest);

 private:
  struct Known {
    std::int64_t mark = 0;
    std::vector<std::int64_t> above;  // numbers, rising
  };
  bool meet(database::Arrivals& store, std::span<const std::int64_t> exchanges);
  bool list(std::span<const std::int64_t> exchanges, std::int64_t highest);
  bool followOthers();
  bool take(const std::vector<database::Arrival>& arrivals);
  void readAgainFrom(std::int64_t number);
  void settle(Known& one, std::int64_t highest);
  void raiseFarMarks(std::span<const std::int64_t> exchanges);
  std::optional<std::int64_t> kept(const std::u16string& key);
  void keep(const std::u16string& key, std::int64_t number);
  std::u16string keyOf(std::int64_t exchange) const;

  platform::SettingsStore& settings_;
  bool busy_ = false, begun_ = false, failed_ = false;
  std::u16string identity_;    // empty: the store is not known
  std::int64_t baseline_ = 0;  // what was there when the user met the store
  std::int64_t read_ = 0;      // everything up to it has been taken
  std::map<std::int64_t, Known> known_;
};

}  // namespace vordane::list
