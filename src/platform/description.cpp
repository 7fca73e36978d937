#include "platform/description.h"

namespace vordane::database {

std::u16string StatementPattern::joined(std::span<const std::u16string_view> values) const {
  std::size_t size = text_.size() + ending_.size();
  for (const std::u16string_view value : values) size += value.size();
  std::u16string statement;
  statement.reserve(size);
  constexpr std::size_t mark = 2;
  std::size_t done = 0;
  for (std::size_t i = 0; i < values.size(); ++i) {
    statement.append(text_.substr(done, places_.at(i) - done)).append(values[i]);
    done = places_.at(i) + mark;
  }
  return statement.append(text_.substr(done)).append(ending_);
}

std::u16string StatementPattern::sample() const {
  std::array<std::u16string_view, mostValues> zeros;
  zeros.fill(u"0");
  return joined({zeros.data(), values_});
}

}  // namespace vordane::database
