// Which of the rows shown are selected: stretches of positions, so that all of a million rows are one. The
// row that the keyboard stands on, which the window calls its selected fault, is the grid's business. A
// value.
#pragma once

#include <cstddef>
#include <vector>

namespace vordane::list {

// The positions from `begin` to before `end`.
struct Stretch {
  std::size_t begin = 0, end = 0;
  bool operator==(const Stretch&) const = default;
};

class Selection {
 public:
  void clear();
  void only(std::size_t row);    // a click
  void toggle(std::size_t row);  // with Ctrl
  // With Shift: from the row that was last chosen without it to this one; with Ctrl besides, those that are
  // selected stay so.
  void extend(std::size_t row, bool keep);
  void all(std::size_t rows);

  bool has(std::size_t row) const;
  std::size_t size() const;
  const std::vector<Stretch>& stretches() const { return stretches_; }  // in order, none touches the next

 private:
  std::vector<Stretch>::const_iterator reaching(std::size_t row) const;
  void add(Stretch stretch);
  void remove(std::size_t row);

  std::vector<Stretch> stretches_;
  std::size_t anchor_ = 0;
};

}  // namespace vordane::list
