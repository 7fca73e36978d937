// A person's place in the list while faults arrive: which fault the caret stands on, and which one was the
// newest when the beginning of the list was last looked at. A renewed list shows its newest faults first, as
// it is read; the place is found again in it by looking at a few dozen rows, at once. One thread; holds no
// rows.
#pragma once

#include <cstddef>
#include <optional>

#include "platform/view.h"

namespace vordane::list {

class Steady {
 public:
  // The caret stands on this fault now, at `position` among the stored rows.
  void caretAt(const window::GridRow& fault, std::size_t position, std::size_t rows);

  enum class Why {
    other,    // rows of another exchange
    choice,   // the same, in an order that the person chose
    renewed,  // the same, newest first, since faults may have come
  };
  // Other rows are there, one at least. The position at which the caret belongs; nothing when the list begins
  // at its top: after a choice, as long as nobody has `moved` in it, and when the fault has gone.
  std::optional<std::size_t> shown(window::GridSource& rows, Why why, bool moved);
  // The beginning of a list that is newest first is in sight.
  void seen(window::GridSource& rows);
  void forget() { *this = {}; }

  // Stored rows that are newer than the newest one that was seen.
  std::size_t newer() const { return newer_; }

 private:
  struct Held {
    window::GridRow fault;
    std::size_t position = 0, rows = 0;  // where it stood, of how many
  };
  std::optional<Held> caret_, newest_;
  std::size_t newer_ = 0;
};

// Where a fault stands among rows that are listed newest first: at `guess`, or where its date and number put
// it. Nothing when it is not there.
std::optional<std::size_t> placeOf(const window::GridRow& fault, window::GridSource& rows, std::size_t guess);

}  // namespace vordane::list
