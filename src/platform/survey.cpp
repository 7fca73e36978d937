#include "platform/survey.h"

#include <algorithm>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/database.h"
#include "platform/stored_values.h"
#include "text/blanks.h"
#include "text/text.h"

namespace vordane::database {
namespace {

constexpr char16_t between = 0xFFFF;  // no text of a column holds it

// Reading a row takes its time, and people wait for the end of a piece.
constexpr std::size_t rowsTogether = 256;
std::size_t piece(std::size_t most) {
  return std::clamp<std::size_t>(most, 1, rowsTogether);
}

class SurveyOfRows final : public Survey {
 public:
  SurveyOfRows(RowList& rows, const SurveyedColumns& columns, std::optional<TimesBetween> times)
      : rows_(rows), columns_(columns), times_(std::move(times)) {}

  bool next(std::size_t most, Taker& taker) override {
    const std::size_t size = rows_.size(), end = std::min(size, next_ + piece(most));
    for (; next_ < end; ++next_) {
      if (!rows_.fetch(next_, row_)) continue;
      const std::u16string whole = textOf(row_.at(columns_.time));
      const std::u16string_view time = text::withoutTrailingBlanks(whole);
      if (times_ && time < times_->first) return false;
      if (!times_ || time <= times_->last) taker.take(next_, kindOfRow(), time);
    }
    return next_ < size;
  }

 private:
  std::uint32_t kindOfRow() {
    std::u16string key;
    for (const std::size_t column : columns_.kind)
      (key += text::withoutTrailingBlanks(text::toLower(textOf(row_.at(column))))) += between;
    return kinds_.try_emplace(std::move(key), static_cast<std::uint32_t>(kinds_.size())).first->second;
  }

  RowList& rows_;
  SurveyedColumns columns_;
  std::optional<TimesBetween> times_;
  std::vector<Value> row_;
  std::unordered_map<std::u16string, std::uint32_t> kinds_;
  std::size_t next_ = 0;
};

class TimesOfRows final : public TimeWalk {
 public:
  TimesOfRows(RowList& rows, std::size_t column) : rows_(rows), column_(column) {}

  bool next(std::size_t most, const Take& take) override {
    const std::size_t all = std::min(rows_.size(), rowsReadForTimes);
    const std::size_t end = std::min(all, next_ + piece(most));
    for (; next_ < end; ++next_)
      if (rows_.fetch(next_, row_) && !take(text::withoutTrailingBlanks(textOf(row_.at(column_))), 1))
        return false;
    return next_ < all;
  }

 private:
  RowList& rows_;
  std::size_t column_, next_ = 0;
  std::vector<Value> row_;
};

}  // namespace

std::unique_ptr<Survey> surveyRows(RowList& rows, const SurveyedColumns& columns) {
  return std::make_unique<SurveyOfRows>(rows, columns, std::nullopt);
}

std::unique_ptr<Survey> surveyRows(RowList& rows, const SurveyedColumns& columns, TimesBetween times) {
  return std::make_unique<SurveyOfRows>(rows, columns, std::move(times));
}

std::unique_ptr<TimeWalk> walkTimes(RowList& rows, std::size_t column) {
  return std::make_unique<TimesOfRows>(rows, column);
}

}  // namespace vordane::database
