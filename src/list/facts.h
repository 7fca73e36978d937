// What a filter has to know of every row without reading it again: its kind, its time. Filled by a survey.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "list/filter.h"
#include "platform/database.h"
#include "platform/grid_columns.h"
#include "platform/view.h"

namespace vordane::list {

inline constexpr database::SurveyedColumns surveyedColumns{
    {window::faultColumn, window::alarmColumn, window::cpuColumn}, window::dateColumn};

// Rows that agree in kind, class and processor.
struct Group {
  std::uint32_t first = 0;  // its first row
  std::size_t rows = 0;
  std::u16string fault, alarm, cpu, description;  // of that row, once `name` has read it
};

class Facts final : public database::Survey::Taker {
 public:
  static constexpr std::uint32_t noGroup = 0xFFFFFFFF;

  explicit Facts(std::size_t rows) : groupOf_(rows, noGroup), minuteOf_(rows, noMinute) {}

  void take(std::size_t position, std::uint32_t kind, std::u16string_view time) override;
  // Reads the texts of the next groups, about `most`, with the descriptions as `reader` gives them, if any;
  // false when all have theirs.
  bool name(database::RowList& rows, std::size_t most, window::GridSource* reader = nullptr);

  std::size_t size() const { return groupOf_.size(); }
  const std::vector<Group>& groups() const { return groups_; }
  std::uint32_t groupOf(std::size_t position) const { return groupOf_[position]; }  // noGroup: it has gone
  Minute minuteOf(std::size_t position) const { return minuteOf_[position]; }

 private:
  void read(Group& group, std::uint32_t number, database::RowList& rows, window::GridSource* reader);

  std::vector<Group> groups_;
  std::vector<std::uint32_t> groupOf_;
  std::vector<Minute> minuteOf_;
  std::size_t named_ = 0;
  std::vector<database::Value> buffer_;
  std::u16string lastTime_;  // rows of one time often follow each other
  Minute lastMinute_ = noMinute;
};

// A fault's title: the first line of its description.
std::u16string titleOf(std::u16string_view description);

// The kinds that are stored, in the order of their numbers, and the processors, each with its rows.
struct Tally {
  std::u16string key, shown, title;  // a kind's title is that of one of its faults
  std::size_t rows = 0;
};
std::vector<Tally> kindsOf(const Facts& facts);
std::vector<Tally> processorsOf(const Facts& facts);

// Which rows a filter shows as far as the facts tell; the text is left to whoever can read rows.
class Sieve {
 public:
  Sieve(const Filter& filter, const Facts& facts);
  enum class Verdict { hidden, shown, shownIfOtherDates };
  Verdict of(std::size_t position) const {
    const std::uint32_t group = facts_.groupOf(position);
    if (group == Facts::noGroup || !groups_[group]) return Verdict::hidden;
    if (!limits_.any()) return Verdict::shown;
    const Minute minute = facts_.minuteOf(position);
    if (minute == noMinute) return Verdict::shownIfOtherDates;
    return limits_.hold(minute) ? Verdict::shown : Verdict::hidden;
  }

 private:
  const Facts& facts_;
  std::vector<bool> groups_;
  Limits limits_;
};

}  // namespace vordane::list
