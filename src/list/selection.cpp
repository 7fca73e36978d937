#include "list/selection.h"

#include <algorithm>

namespace vordane::list {

void Selection::clear() {
  stretches_.clear();
  anchor_ = 0;
}

void Selection::only(std::size_t row) {
  stretches_ = {{row, row + 1}};
  anchor_ = row;
}

void Selection::toggle(std::size_t row) {
  has(row) ? remove(row) : add({row, row + 1});
  anchor_ = row;
}

void Selection::extend(std::size_t row, bool keep) {
  if (!keep) stretches_.clear();
  add({std::min(anchor_, row), std::max(anchor_, row) + 1});
}

void Selection::all(std::size_t rows) {
  stretches_.clear();
  if (rows > 0) stretches_.push_back({0, rows});
}

// The first stretch that ends behind the row.
std::vector<Stretch>::const_iterator Selection::reaching(std::size_t row) const {
  return std::upper_bound(stretches_.begin(), stretches_.end(), row,
                          [](std::size_t at, const Stretch& stretch) { return at < stretch.end; });
}

bool Selection::has(std::size_t row) const {
  const auto found = reaching(row);
  return found != stretches_.end() && found->begin <= row;
}

std::size_t Selection::size() const {
  std::size_t rows = 0;
  for (const Stretch& stretch : stretches_) rows += stretch.end - stretch.begin;
  return rows;
}

// What it touches becomes one with it.
void Selection::add(Stretch stretch) {
  auto first = stretch.begin == 0 ? stretches_.cbegin() : reaching(stretch.begin - 1), last = first;
  for (; last != stretches_.end() && last->begin <= stretch.end; ++last) {
    stretch.begin = std::min(stretch.begin, last->begin);
    stretch.end = std::max(stretch.end, last->end);
  }
  stretches_.insert(stretches_.erase(first, last), stretch);
}

void Selection::remove(std::size_t row) {
  const auto found = stretches_.begin() + (reaching(row) - stretches_.cbegin());
  const Stretch whole = *found;
  const auto behind = stretches_.erase(found);
  const Stretch parts[] = {{row + 1, whole.end}, {whole.begin, row}};
  auto place = behind;
  for (const Stretch& part : parts)
    if (part.begin < part.end) place = stretches_.insert(place, part);
}

}  // namespace vordane::list
