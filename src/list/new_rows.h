// The stored rows by their numbers: which one is highest, looked for in pieces between messages, and which
// row shown is the next that came after a mark. Rows whose list does not hold their numbers have none. One
// thread; the desk outlives it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>

#include "list/desk.h"
#include "platform/database.h"

namespace vordane::list {

class NewRows {
 public:
  explicit NewRows(Desk& desk) : desk_(desk) {}

  void begin();   // other rows are stored
  void forget();  // none are
  bool busy() const { return busy_ && desk_.list() != nullptr && desk_.list()->isRead(); }
  // The desk still reads the list on; until then there is nothing to do.
  bool waits() const { return busy_ && desk_.reading(); }
  // Goes on while `again` says so, one piece at least.
  void work(const std::function<bool()>& again);
  // The highest number of the stored rows; nothing until that is known, and where rows have no numbers.
  std::optional<std::int64_t> highest() const { return busy_ ? std::nullopt : highest_; }

  // Whether the row shown at this position came after the mark.
  bool isNew(std::size_t shown, std::int64_t mark) const;
  // The next such row behind `from`, or from the first on, and round the end once; at last `from` itself. Of
  // a long list that is not read yet all is read before, as far as the database lets it.
  std::optional<std::size_t> next(std::int64_t mark, std::optional<std::size_t> from) const;

 private:
  Desk& desk_;
  bool busy_ = false;
  std::size_t next_ = 0;
  std::optional<std::int64_t> highest_;
};

}  // namespace vordane::list
