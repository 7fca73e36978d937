#include "list/last_look.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "platform/database.h"
#include "text/numbers.h"
#include "text/utf8.h"

namespace vordane::list {
namespace {

constexpr std::u16string_view application = u"VORDANE", section = u"LastLook";
constexpr std::size_t rowsTogether = 500;
// A mark this far below what was read is kept anew where nothing of its exchange has come since, so that the
// next start need not read so far.
constexpr std::int64_t farBelow = 10'000;

}  // namespace

void LastLook::forget() {
  busy_ = begun_ = failed_ = false;
  read_ = 0;
  identity_.clear();
  known_.clear();
}

bool LastLook::work(database::Arrivals& store, std::span<const std::int64_t> exchanges,
                    const std::function<bool()>& again) {
  bool changed = false;
  try {
    if (std::exchange(begun_, false)) changed = meet(store, exchanges);
    do {
      if (identity_.empty()) {
        busy_ = false;
        return changed;
      }
      const auto arrivals = store.after(read_, rowsTogether);
      changed = take(arrivals) || changed;
      busy_ = arrivals.size() == rowsTogether;
    } while (busy_ && again());
    if (!busy_) raiseFarMarks(exchanges);
  } catch (const database::DatabaseError&) {
    busy_ = false;
    failed_ = true;
  }
  return changed;
}

// At each beginning, since an older copy may have taken the store's place, and other exchanges may be listed.
bool LastLook::meet(database::Arrivals& store, std::span<const std::int64_t> exchanges) {
  if (identity_.empty()) identity_ = store.identity();
  if (identity_.empty()) return false;
  const std::int64_t highest = store.highest();
  bool changed = false;
  if (known_.empty() || highest < read_) {
    known_.clear();
    read_ = highest;
    const auto met = kept(identity_);
    baseline_ = std::min(met.value_or(highest), highest);
    if (met != baseline_) keep(identity_, baseline_);
    changed = true;
  } else {
    changed = followOthers();
  }
  return list(exchanges, highest) || changed;
}

// Of an exchange that is listed from now on everything above its mark has to be read.
bool LastLook::list(std::span<const std::int64_t> exchanges, std::int64_t highest) {
  bool changed = false;
  for (const std::int64_t exchange : exchanges) {
    if (known_.contains(exchange)) continue;
    std::int64_t mark = kept(keyOf(exchange)).value_or(baseline_);
    if (mark > highest) keep(keyOf(exchange), mark = highest);
    known_[exchange].mark = mark;
    if (mark < read_) readAgainFrom(mark);
    changed = true;
  }
  return changed;
}

// The same person may have looked in another window.
bool LastLook::followOthers() {
  bool changed = false;
  for (auto& [exchange, one] : known_) {
    if (one.above.empty()) continue;
    const auto elsewhere = kept(keyOf(exchange));
    if (!elsewhere || *elsewhere <= one.mark) continue;
    settle(one, *elsewhere);
    changed = true;
  }
  return changed;
}

bool LastLook::take(const std::vector<database::Arrival>& arrivals) {
  bool changed = false;
  for (const auto& [exchange, number] : arrivals) {
    read_ = number;
    const auto found = known_.find(exchange);
    if (found == known_.end() || number <= found->second.mark) continue;
    if (found->second.above.size() >= mostCounted) continue;
    found->second.above.push_back(number);
    changed = true;
  }
  return changed;
}

std::optional<std::int64_t> LastLook::mark(std::int64_t exchange) const {
  const auto found = known_.find(exchange);
  return found != known_.end() ? std::optional(found->second.mark) : std::nullopt;
}

std::size_t LastLook::newFaults(std::int64_t exchange) const {
  const auto found = known_.find(exchange);
  return found != known_.end() ? found->second.above.size() : 0;
}

void LastLook::looked(std::int64_t exchange, std::int64_t highest) {
  const auto found = known_.find(exchange);
  if (found == known_.end() || highest <= found->second.mark) return;
  settle(found->second, highest);
  keep(keyOf(exchange), highest);
}

// Numbers beyond those that are counted are not remembered: they are read once more.
void LastLook::settle(Known& one, std::int64_t highest) {
  const bool allKnown = one.above.size() < mostCounted;
  one.mark = highest;
  std::erase_if(one.above, [&](std::int64_t number) { return number <= highest; });
  if (!allKnown && highest < read_) readAgainFrom(highest);
}

void LastLook::readAgainFrom(std::int64_t number) {
  for (auto& [exchange, one] : known_)
    std::erase_if(one.above, [&](std::int64_t above) { return above > number; });
  read_ = number;
  busy_ = true;
}

void LastLook::raiseFarMarks(std::span<const std::int64_t> exchanges) {
  for (const std::int64_t exchange : exchanges) {
    const auto found = known_.find(exchange);
    if (found == known_.end()) continue;
    Known& one = found->second;
    const std::int64_t nothingUpTo = one.above.empty() ? read_ : one.above.front() - 1;
    if (nothingUpTo - one.mark < farBelow) continue;
    one.mark = nothingUpTo;
    keep(keyOf(exchange), nothingUpTo);
  }
}

std::u16string LastLook::keyOf(std::int64_t exchange) const {
  return identity_ + u'.' + text::decimal(exchange);
}

// What is no number counts as absent.
std::optional<std::int64_t> LastLook::kept(const std::u16string& key) {
  const auto value = settings_.read(application, section, key);
  if (!value) return {};
  const std::string digits = text::toUtf8(*value);
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (error != std::errc{} || end != digits.data() + digits.size()) return {};
  return number;
}

void LastLook::keep(const std::u16string& key, std::int64_t number) {
  settings_.write(application, section, key, text::decimal(number));
}

}  // namespace vordane::list
