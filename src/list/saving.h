// Saves every row shown in a file, in pieces between messages and in the same small room however many there
// are. The file has its name when it is whole; one that is given up, or can't be written to its end, leaves
// nothing. One thread; the desk outlives it, and whoever owns it lets it go when the desk shows other rows.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "list/row_forms.h"
#include "list/row_walk.h"
#include "platform/whole_file.h"

namespace vordane::list {

class Saving {
 public:
  Saving(Desk& desk, std::unique_ptr<RowWriter> writer, const std::filesystem::path& file);

  enum class State {
    atWork,
    saved,
    noFile,  // none can be made there
    noRoom,  // it could not be written to its end
    held,    // what has its name can't be replaced
    failed   // `failure` holds what the database said
  };
  // Goes on while `again` says so, one row at least. Never throws.
  State work(const std::function<bool()>& again);
  State state() const { return state_; }
  const std::u16string& failure() const { return failure_; }
  Desk::Progress progress() const { return walk_.progress(); }
  std::size_t gone() const { return walk_.gone(); }

 private:
  State piece(const std::function<bool()>& again);
  State takeName();
  bool flush();

  RowWalk walk_;
  std::unique_ptr<RowWriter> writer_;
  platform::WholeFile file_;
  std::string buffer_;
  State state_ = State::atWork;
  bool begun_ = false, written_ = false;
  int tries_ = 0;  // to take the name
  std::u16string failure_;
};

}  // namespace vordane::list
