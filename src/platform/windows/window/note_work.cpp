#include "platform/windows/window/note_work.h"

#include <windows.h>

#include <array>

#include "platform/windows/window/handles.h"
#include "text/fill.h"
#include "text/numbers.h"

namespace vordane::window::win32 {
namespace {

using database::Note;
using Put = database::Notes::Put;

std::u16string number(std::size_t value) {
  return text::decimal(static_cast<std::int64_t>(value));
}

// The workstation and who has logged in to it; either may have no name.
std::u16string whoWrites() {
  std::array<wchar_t, 257> name{};
  DWORD length = static_cast<DWORD>(name.size());
  std::u16string who;
  if (GetComputerNameExW(ComputerNameNetBIOS, name.data(), &length)) who = fromWide(name.data(), length);
  length = static_cast<DWORD>(name.size());
  if (GetUserNameW(name.data(), &length) && length > 1) who += u"\\" + fromWide(name.data(), length - 1);
  return database::noteLine(who);
}

// As the dates of faults are written.
std::u16string now() {
  SYSTEMTIME time{};
  GetLocalTime(&time);
  std::array<wchar_t, 32> words{};
  wsprintfW(words.data(), L"%04u/%02u/%02u %02u:%02u", time.wYear, time.wMonth, time.wDay, time.wHour,
            time.wMinute);
  return fromWide(words.data(), wcslen(words.data()));
}

}  // namespace

void NoteWork::create(HWND parent, Around around) {
  around_ = std::move(around);
  bar_.create(
      parent, [this] { bar_.tell(texts_.text(ViewText::noteBlanks)); }, around_.tip, around_.barMade);
}

std::u16string NoteWork::heading(const Note& note) const {
  return fillText(texts_.text(ViewText::noteBegin), {note.author, note.moment});
}

void NoteWork::look() {
  const bool unseen = around_.use() == ListUse::never;
  if (bar_.editing() && !unseen) return;
  const int before = bar_.height();
  const bool focused = bar_.has(GetFocus());
  const ShownRow* row = unseen ? nullptr : grid_.selectedRow();
  if (row != nullptr && !row->note.text.empty())
    bar_.show(heading(row->note), row->note.text);
  else
    bar_.hide();
  if (focused && !bar_.shown()) SetFocus(grid_.window());
  if (bar_.height() != before) around_.placeAgain();
}

database::Notes* NoteWork::notes() {
  database::RowList* rows = around_.rows();
  return rows == nullptr ? nullptr : rows->notes();
}

std::u16string NoteWork::reason() {
  database::RowList* rows = around_.rows();
  if (rows == nullptr) return {};
  switch (rows->noNotes()) {
    case database::NoNotes::accessFile:
      return texts_.text(ViewText::notesNotInAccess);
    case database::NoNotes::server:
      return texts_.text(ViewText::notesNotOnServer);
    case database::NoNotes::foreignTable:
      break;
  }
  return texts_.text(ViewText::notesNotInFile);
}

std::u16string NoteWork::failed(const database::DatabaseError& error) const {
  return fillText(texts_.text(ViewText::noteFailed), {error.description()});
}

// One that is being written is gone on with.
void NoteWork::write() {
  if (around_.use() != ListUse::now) return;
  if (bar_.editing()) {
    SetFocus(bar_.box());
    return;
  }
  const ShownRow* row = grid_.selectedRow();
  if (row == nullptr) return;
  const std::int64_t fault = row->fault.count;
  try {
    if (database::Notes* kept = notes()) return begin(*kept, fault);
    around_.say(reason());
  } catch (const database::DatabaseError& error) {
    around_.say(failed(error));
  }
}

void NoteWork::begin(database::Notes& notes, std::int64_t fault) {
  before_ = notes.of(fault).value_or(Note{});
  fault_ = fault;
  bar_.edit(fillText(texts_.text(ViewText::noteEdit), {text::decimal(fault)}), before_.text);
  bar_.tell(texts_.text(ViewText::noteHow));
  around_.placeAgain();
}

void NoteWork::keep() {
  if (!bar_.editing() || around_.use() != ListUse::now) return;
  const std::u16string text = database::noteLine(bar_.text());
  if (text.size() > database::longestNote)
    return bar_.tell(
        fillText(texts_.text(ViewText::noteTooLong), {number(text.size()), number(database::longestNote)}));
  if (text == before_.text) return end();
  try {
    if (database::Notes* kept = notes())
      return put(*kept, text.empty() ? Note{} : Note{whoWrites(), now(), text});
    bar_.tell(reason());
  } catch (const database::DatabaseError& error) {
    bar_.tell(failed(error));
  }
}

void NoteWork::put(database::Notes& notes, const Note& now) {
  switch (notes.put(fault_, before_, now)) {
    case Put::kept:
      around_.written();
      return end();
    case Put::faultGone:
      return bar_.tell(texts_.text(ViewText::noteFaultGone));
    case Put::changed:
      return changedMeanwhile(notes);
    case Put::notOneLine:
      return bar_.tell(fillText(texts_.text(ViewText::noteTooLong),
                                {number(now.text.size()), number(database::longestNote)}));
  }
}

// Who has seen what the other wrote may put his own in its place.
void NoteWork::changedMeanwhile(database::Notes& notes) {
  before_ = notes.of(fault_).value_or(Note{});
  bar_.tell(before_.text.empty()
                ? texts_.text(ViewText::noteTakenAway)
                : fillText(texts_.text(ViewText::noteChanged), {before_.author, before_.text}));
}

void NoteWork::end() {
  const bool focused = bar_.has(GetFocus());
  bar_.hide();
  if (focused) SetFocus(grid_.window());
  look();
  around_.placeAgain();
}

bool NoteWork::escape() {
  if (!bar_.editing() || !bar_.has(GetFocus())) return false;
  end();
  return true;
}

}  // namespace vordane::window::win32
