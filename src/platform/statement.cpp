#include "platform/statement.h"

#include "platform/description.h"
#include "text/text.h"

namespace vordane::database {

Statement::Statement(const StatementPattern& pattern, std::span<const StatementValue> values)
    : pattern_(&pattern), count_(std::min(values.size(), mostValues)) {
  std::copy_n(values.begin(), count_, values_.begin());
  plain_ = findPlain();
}

std::u16string Statement::text() const {
  return pattern_ == nullptr ? std::u16string(text_) : pattern_->joined(values());
}

bool Statement::findPlain() const {
  if (count_ != pattern_->values()) return false;
  for (std::size_t i = 0; i < count_; ++i) {
    const StatementValue& value = values_.at(i);
    const char16_t quote = pattern_->before(i);
    const bool quoted = quote == u'\'' || quote == u'"';
    if (value.isNumber() == quoted) return false;
    if (quoted && text::find(value.text(), quote) != std::u16string_view::npos) return false;
  }
  return true;
}

}  // namespace vordane::database
