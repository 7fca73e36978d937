#include "list/finder.h"

#include <algorithm>

#include "text/text.h"

namespace vordane::list {
namespace {

constexpr std::size_t rowsRead = 256;

}  // namespace

void Finder::seek(std::u16string_view text) {
  std::u16string wanted = text::toLower(text);
  if (wanted == needle_ && failure_.empty()) return;
  needle_ = std::move(wanted);
  begin();
}

void Finder::begin() {
  failure_.clear();
  hits_.clear();
  next_ = 0;
  complete_ = false;
}

bool Finder::work(const std::function<bool()>& again) {
  database::RowList* rows = desk_.list();
  if (!busy() || rows == nullptr || desk_.busy()) return false;
  try {
    do piece(*rows);
    while (!complete_ && again());
  } catch (const database::DatabaseError& error) {
    begin();
    failure_ = error.description();
  }
  return complete_;
}

// Rows are stored in the order shown, so the hits are in order too.
void Finder::piece(database::RowList& rows) {
  const std::size_t end = std::min(desk_.size(), next_ + rowsRead);
  candidates_.clear();
  for (; next_ < end; ++next_) candidates_.push_back(static_cast<std::uint32_t>(desk_.storedPosition(next_)));
  rows.choose(needle_, candidates_, hits_);
  complete_ = next_ == desk_.size();
}

std::optional<std::size_t> Finder::number(std::size_t shown) const {
  if (!complete_ || shown >= desk_.size()) return {};
  const auto stored = static_cast<std::uint32_t>(desk_.storedPosition(shown));
  const auto found = std::lower_bound(hits_.begin(), hits_.end(), stored);
  if (found == hits_.end() || *found != stored) return {};
  return static_cast<std::size_t>(found - hits_.begin()) + 1;
}

}  // namespace vordane::list
