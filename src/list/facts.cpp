#include "list/facts.h"

#include <algorithm>
#include <map>

#include "platform/stored_values.h"
#include "text/text.h"

namespace vordane::list {
namespace {

using database::textOf;

std::vector<Tally> tallied(std::map<std::u16string, Tally>&& byKey) {
  std::vector<Tally> tallies;
  for (auto& [key, tally] : byKey)
    if (tally.rows > 0) tallies.push_back(std::move(tally));
  // Numbers stand in front of longer ones.
  std::stable_sort(tallies.begin(), tallies.end(),
                   [](const Tally& a, const Tally& b) { return a.key.size() < b.key.size(); });
  return tallies;
}

}  // namespace

std::u16string titleOf(std::u16string_view description) {
  return std::u16string(text::trim(description.substr(0, description.find_first_of(u"\r\n"))));
}

void Facts::take(std::size_t position, std::uint32_t kind, std::u16string_view time) {
  if (position >= size()) return;
  if (kind >= groups_.size()) groups_.resize(kind + std::size_t{1});
  Group& group = groups_[kind];
  if (group.rows++ == 0 || position < group.first) group.first = static_cast<std::uint32_t>(position);
  groupOf_[position] = kind;
  if (time != lastTime_) {
    lastTime_ = time;
    lastMinute_ = list::minuteOf(time);
  }
  minuteOf_[position] = lastMinute_;
}

bool Facts::name(database::RowList& rows, std::size_t most, window::GridSource* reader) {
  for (const std::size_t end = named_ + most; named_ < groups_.size() && named_ < end; ++named_)
    read(groups_[named_], static_cast<std::uint32_t>(named_), rows, reader);
  return named_ < groups_.size();
}

// The row that was met first may have gone since: then another one speaks for its group.
void Facts::read(Group& group, std::uint32_t number, database::RowList& rows, window::GridSource* reader) {
  for (std::size_t position = group.first; position < size(); ++position) {
    if (groupOf_[position] != number || !rows.fetch(position, buffer_)) continue;
    group.fault = textOf(buffer_.at(window::faultColumn));
    group.alarm = textOf(buffer_.at(window::alarmColumn));
    group.cpu = textOf(buffer_.at(window::cpuColumn));
    group.description = textOf(buffer_.at(window::descriptionColumn));
    if (reader != nullptr)
      group.description = reader->asRead({group.fault, group.alarm, {}, group.cpu, group.description});
    return;
  }
}

std::vector<Tally> kindsOf(const Facts& facts) {
  std::map<std::u16string, Tally> byKey;
  for (const Group& group : facts.groups()) {
    Tally& tally = byKey[keyOf(group.fault)];
    if (tally.rows == 0)
      tally = {keyOf(group.fault), std::u16string(text::trim(group.fault)), titleOf(group.description)};
    tally.rows += group.rows;
  }
  return tallied(std::move(byKey));
}

std::vector<Tally> processorsOf(const Facts& facts) {
  std::map<std::u16string, Tally> byKey;
  for (const Group& group : facts.groups()) {
    Tally& tally = byKey[keyOf(group.cpu)];
    if (tally.rows == 0) tally = {keyOf(group.cpu), std::u16string(text::trim(group.cpu)), {}};
    tally.rows += group.rows;
  }
  return tallied(std::move(byKey));
}

Sieve::Sieve(const Filter& filter, const Facts& facts) : facts_(facts), limits_(filter) {
  for (const Group& group : facts.groups())
    groups_.push_back(showsGroup(filter, group.fault, group.alarm, group.cpu));
}

}  // namespace vordane::list
