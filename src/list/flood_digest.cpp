#include "list/flood_digest.h"

#include <algorithm>
#include <map>

#include "list/facts.h"
#include "platform/stored_values.h"
#include "text/text.h"

namespace vordane::list {
namespace {

// Rows in a piece: few where their texts are read.
constexpr std::size_t timesWalked = 8192, rowsSurveyed = 4096;

std::u16string trimmed(const database::Value& value) {
  return std::u16string(text::trim(database::textOf(value)));
}

}  // namespace

// The rows are listed newest first, so the earliest of a flood has the greatest position.
class FloodDigest::Tally final : public database::Survey::Taker {
 public:
  explicit Tally(FloodDigest& digest) : digest_(digest) {}
  void take(std::size_t position, std::uint32_t kind, std::u16string_view) override {
    auto& groups = digest_.groups_;
    if (kind >= groups.size()) groups.resize(kind + std::size_t{1});
    if (groups[kind].faults++ == 0) groups[kind].position = position;
    if (!digest_.first_ || position > digest_.first_->position) digest_.first_ = {position, kind};
    if (!digest_.last_ || position < digest_.last_->position) digest_.last_ = {position, kind};
  }

 private:
  FloodDigest& digest_;
};

void FloodDigest::begin() {
  search_ = {};
  times_.reset();
  survey_.reset();
  groups_.clear();
  first_.reset();
  last_.reset();
  named_ = 0;
  step_ = Step::times;
}

void FloodDigest::forget() {
  begin();
  end({});
}

void FloodDigest::end(std::optional<Flood> found) {
  times_.reset();
  survey_.reset();
  step_ = Step::done;
  flood_ = std::move(found);
}

bool FloodDigest::work(const std::function<bool()>& again) {
  database::RowList* rows = desk_.list();
  if (!busy() || rows == nullptr) return false;
  try {
    do {
      piece(*rows, again);
    } while (busy() && again());
  } catch (const database::DatabaseError&) {
    end({});
  }
  return step_ == Step::done;
}

void FloodDigest::piece(database::RowList& rows, const std::function<bool()>& again) {
  if (step_ == Step::times) return lookAtTimes(rows);
  if (step_ == Step::faults) return lookAtFaults(rows);
  const auto together = rows.readTogether();
  do {
    if (named_ < groups_.size() && !name(groups_[named_++], rows)) return end({});
  } while (named_ < groups_.size() && again());
  if (named_ == groups_.size()) end(told());
}

void FloodDigest::lookAtTimes(database::RowList& rows) {
  if (times_ == nullptr) times_ = rows.times(window::dateColumn);
  const bool more = times_->next(
      timesWalked, [&](std::u16string_view time, std::size_t faults) { return search_.take(time, faults); });
  if (more) return;
  times_.reset();
  if (!search_.latest()) return end({});
  step_ = Step::faults;
}

void FloodDigest::lookAtFaults(database::RowList& rows) {
  if (survey_ == nullptr)
    survey_ = rows.surveyBetween(
        surveyedColumns, {writtenMinute(search_.latest()->first), writtenMinute(search_.latest()->last)});
  Tally tally(*this);
  if (survey_->next(rowsSurveyed, tally)) return;
  survey_.reset();
  if (groups_.empty()) return end({});  // they have gone meanwhile
  step_ = Step::names;
}

// A group's first row speaks for it; when it has gone others have, and a refresh is to come.
bool FloodDigest::name(Group& group, database::RowList& rows) {
  if (!rows.fetch(group.position, row_)) return false;
  window::GridRow row;
  row.fault = database::textOf(row_.at(window::faultColumn));
  row.description = database::textOf(row_.at(window::descriptionColumn));
  group.fault = keyOf(row.fault);
  group.processor = trimmed(row_.at(window::cpuColumn));
  group.title = titleOf(desk_.asRead(row));
  return true;
}

Flood FloodDigest::told() const {
  Flood flood;
  flood.times = *search_.latest();
  struct Kind {
    Flood::Kind told;
    std::map<std::u16string, std::size_t> processors;
  };
  std::map<std::u16string, Kind> byFault;
  for (const Group& group : groups_) {
    Kind& kind = byFault[group.fault];
    if (kind.told.faults == 0) kind.told.title = group.title;
    kind.told.faults += group.faults;
    kind.processors[group.processor] += group.faults;
    flood.faults += group.faults;
  }
  for (auto& [fault, kind] : byFault) {
    for (const auto& [processor, faults] : kind.processors) kind.told.processors.push_back(processor);
    std::stable_sort(
        kind.told.processors.begin(), kind.told.processors.end(),
        [&, &of = kind.processors](const auto& a, const auto& b) { return of.at(a) > of.at(b); });
    flood.kinds.push_back(std::move(kind.told));
  }
  std::stable_sort(flood.kinds.begin(), flood.kinds.end(),
                   [](const auto& a, const auto& b) { return a.faults > b.faults; });
  const auto one = [&](const Edge& edge) {
    return Flood::One{groups_[edge.group].title, groups_[edge.group].processor};
  };
  flood.first = one(*first_);
  flood.last = one(*last_);
  return flood;
}

}  // namespace vordane::list
