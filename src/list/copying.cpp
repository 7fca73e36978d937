#include "list/copying.h"

#include "text/text.h"
#include "text/utf8.h"

namespace vordane::list {

Copying::Copying(Desk& desk, const std::vector<Stretch>& rows, RowForm form, const Sheet& sheet)
    : walk_(desk, rows), writer_(makeRowWriter(form, sheet, walk_.progress().of)) {
  if (form == RowForm::lines) table_ = makeRowWriter(RowForm::table, sheet, walk_.progress().of);
  writer_->begin(piece_);
  keepPiece();
  if (table_ != nullptr) table_->begin(tableText_);
}

Copying::Copying(Desk& desk, const std::vector<Stretch>& rows, TextOf textOf)
    : walk_(desk, rows), textOf_(std::move(textOf)) {}

Copying::State Copying::work(const std::function<bool()>& again) {
  try {
    if (!walk_.next([this](std::size_t shown, const window::GridRow& row,
                           const database::Note& note) { take(shown, row, note); },
                    again))
      return State::atWork;
  } catch (const database::DatabaseError& error) {
    failure_ = error.description();
    return State::failed;
  }
  if (writer_ != nullptr) writer_->end(piece_);
  keepPiece();
  if (table_ != nullptr) table_->end(tableText_);
  return State::complete;
}

// The clipboard's text is UTF-16; what is put there at the end is not gone through again.
void Copying::keepPiece() {
  text::appendUtf16(piece_, text_);
  piece_.clear();
}

void Copying::take(std::size_t shown, const window::GridRow& row, const database::Note& note) {
  if (writer_ != nullptr) writer_->row(row, note, piece_);
  keepPiece();
  if (table_ != nullptr) table_->row(row, note, tableText_);
  if (!textOf_) return;
  const std::u16string own = textOf_(shown, row);
  if (!own.empty()) (text_ += own) += text::crlf;
}

}  // namespace vordane::list
