// Some of the rows shown, one after the other, in pieces between messages: nothing of the file is held
// between two. One thread; the desk outlives it, and other rows in the desk end it (whoever owns it lets it
// go).
#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "list/desk.h"
#include "list/selection.h"

namespace vordane::list {

class RowWalk {
 public:
  RowWalk(Desk& desk, std::vector<Stretch> rows);

  // Takes rows, each with its note or an empty one, by their places until `again` says no, one row at least;
  // true when it has come to the end. Rows that have gone since are counted and left out. Those of one call
  // are of one moment; whoever takes them must not write to their file. Throws DatabaseError, and can't go on
  // then.
  using Take = std::function<void(std::size_t shown, const window::GridRow& row, const database::Note& note)>;
  bool next(const Take& take, const std::function<bool()>& again);

  Desk::Progress progress() const { return {done_, of_}; }
  std::size_t gone() const { return gone_; }

 private:
  bool atEnd() const { return stretch_ == rows_.size(); }
  void step();
  std::optional<window::GridRow> read(database::RowList& rows);

  Desk& desk_;
  std::vector<Stretch> rows_;
  std::size_t stretch_ = 0, place_ = 0, done_ = 0, of_ = 0, gone_ = 0;
  std::vector<database::Value> values_;
};

}  // namespace vordane::list
