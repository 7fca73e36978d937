#include "list/saving.h"

#include <utility>

namespace vordane::list {
namespace {

constexpr std::size_t enough = std::size_t{1} << 16;
constexpr int mostTries =
    100;  // a scanner or an indexer holds a file for a moment: a second or two of pieces

}  // namespace

Saving::Saving(Desk& desk, std::unique_ptr<RowWriter> writer, const std::filesystem::path& file)
    : walk_(desk, {{0, desk.size()}}), writer_(std::move(writer)), file_(file) {}

Saving::State Saving::work(const std::function<bool()>& again) {
  if (state_ != State::atWork) return state_;
  try {
    state_ = piece(again);
  } catch (const database::DatabaseError& error) {
    failure_ = error.description();
    state_ = State::failed;
  }
  return state_;
}

Saving::State Saving::piece(const std::function<bool()>& again) {
  if (written_) return takeName();
  if (!std::exchange(begun_, true)) {
    if (!file_.begin()) return State::noFile;
    writer_->begin(buffer_);
  }
  const auto take = [&](std::size_t, const window::GridRow& row, const database::Note& note) {
    writer_->row(row, note, buffer_);
  };
  // Nothing of the database is held while the file is written: its disk may be slow.
  bool through = false, more = true;
  while (!through && more) {
    more = false;  // as long as no row can be read
    through = walk_.next(take, [&] {
      more = again();
      return more && buffer_.size() < enough;
    });
    if (buffer_.size() >= enough && !flush()) return State::noRoom;
  }
  if (!through) return State::atWork;
  writer_->end(buffer_);
  written_ = flush() && file_.end();
  return written_ ? takeName() : State::noRoom;
}

Saving::State Saving::takeName() {
  if (file_.takeName()) return State::saved;
  return ++tries_ < mostTries ? State::atWork : State::held;
}

bool Saving::flush() {
  const bool written = file_.write(buffer_);
  buffer_.clear();
  return written;
}

}  // namespace vordane::list
