// The rows shown that hold a text: how many they are, and which of them a row is. Counted in pieces between
// messages as the desk's own work; other rows, or another text, begin it anew. One thread; the desk outlives
// it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "list/desk.h"

namespace vordane::list {

class Finder {
 public:
  explicit Finder(Desk& desk) : desk_(desk) {}

  // An empty text looks for nothing.
  void seek(std::u16string_view text);
  void begin();  // the desk shows other rows

  // What is looked for, in small letters, as rows are compared and marked.
  const std::u16string& needle() const { return needle_; }
  // While the desk is busy it waits.
  bool busy() const { return !needle_.empty() && !complete_ && failure_.empty() && desk_.list() != nullptr; }
  // Goes on while `again` says so, one piece at least; true when it has come to the end with this. Never
  // throws: `failure` holds what the database said.
  bool work(const std::function<bool()>& again);
  const std::u16string& failure() const { return failure_; }

  bool complete() const { return complete_; }
  std::size_t hits() const { return hits_.size(); }  // so far
  Desk::Progress progress() const { return {next_, desk_.size()}; }
  // The number, from 1, of a row shown among the hits; nothing when it is none or that isn't known yet.
  std::optional<std::size_t> number(std::size_t shown) const;

 private:
  void piece(database::RowList& rows);

  Desk& desk_;
  std::u16string needle_, failure_;
  std::vector<std::uint32_t> hits_, candidates_;  // positions among the stored rows
  std::size_t next_ = 0;
  bool complete_ = false;
};

}  // namespace vordane::list
