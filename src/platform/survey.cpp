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

class SurveyOfRows final : public Survey {
 public:
  SurveyOfRows(RowList& rows, const SurveyedColumns& columns) : rows_(rows), columns_(columns) {}

  bool next(std::size_t most, Taker& taker) override {
    const std::size_t size = rows_.size(), end = std::min(size, next_ + std::max<std::size_t>(most, 1));
    for (; next_ < end; ++next_) {
      if (!rows_.fetch(next_, row_)) continue;
      const std::u16string time = textOf(row_.at(columns_.time));
      taker.take(next_, kindOfRow(), text::withoutTrailingBlanks(time));
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
  std::vector<Value> row_;
  std::unordered_map<std::u16string, std::uint32_t> kinds_;
  std::size_t next_ = 0;
};

}  // namespace

std::unique_ptr<Survey> surveyRows(RowList& rows, const SurveyedColumns& columns) {
  return std::make_unique<SurveyOfRows>(rows, columns);
}

}  // namespace vordane::database
