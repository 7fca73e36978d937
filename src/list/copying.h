// Gathers selected rows for the clipboard, in pieces between messages. One thread; the desk outlives it, and
// whoever owns it lets it go when the desk shows other rows.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "list/row_forms.h"
#include "list/row_walk.h"

namespace vordane::list {

// More than a mail or a sheet is made of; the clipboard is held in memory, twice over.
inline constexpr std::size_t mostRowsCopied = 20'000;

class Copying {
 public:
  // A row's own text instead of a form; empty where it has none.
  using TextOf = std::function<std::u16string(std::size_t shown, const window::GridRow& row)>;

  Copying(Desk& desk, const std::vector<Stretch>& rows, RowForm form, const Sheet& sheet);
  Copying(Desk& desk, const std::vector<Stretch>& rows, TextOf textOf);

  enum class State { atWork, complete, failed };
  // Goes on while `again` says so, one row at least. Never throws: `failure` holds what the database said.
  State work(const std::function<bool()>& again);
  const std::u16string& failure() const { return failure_; }
  Desk::Progress progress() const { return walk_.progress(); }

  // What is complete. The page's table goes with lines only; empty otherwise.
  const std::u16string& text() const { return text_; }
  const std::string& table() const { return tableText_; }

 private:
  void take(std::size_t shown, const window::GridRow& row, const database::Note& note);
  void keepPiece();

  RowWalk walk_;
  std::unique_ptr<RowWriter> writer_, table_;
  TextOf textOf_;
  std::u16string text_, failure_;
  std::string piece_, tableText_;
};

}  // namespace vordane::list
