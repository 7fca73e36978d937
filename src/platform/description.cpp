#include "platform/description.h"

#include <algorithm>

#include "text/numbers.h"

namespace vordane::database {

std::u16string StatementPattern::joined(std::span<const StatementValue> values) const {
  constexpr std::size_t longestNumber = 11;
  std::size_t size = text_.size() + ending_.size();
  for (const StatementValue& value : values) size += value.isNumber() ? longestNumber : value.text().size();
  std::u16string statement;
  statement.reserve(size);
  constexpr std::size_t mark = 2;
  std::size_t done = 0;
  for (std::size_t i = 0; i < values.size(); ++i) {
    statement.append(text_.substr(done, places_.at(i) - done));
    values[i].isNumber() ? statement.append(text::decimal(values[i].number()))
                         : statement.append(values[i].text());
    done = places_.at(i) + mark;
  }
  return statement.append(text_.substr(done)).append(ending_);
}

std::u16string StatementPattern::sample() const {
  std::array<StatementValue, Statement::mostValues> zeros;
  zeros.fill(u"0");
  return joined({zeros.data(), values_});
}

}  // namespace vordane::database
