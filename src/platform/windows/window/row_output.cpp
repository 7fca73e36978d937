#include "platform/windows/window/row_output.h"

#include "platform/windows/window/clipboard.h"
#include "platform/windows/window/description.h"
#include "platform/windows/window/file_question.h"
#include "text/file_names.h"
#include "text/fill.h"
#include "text/numbers.h"

namespace vordane::window::win32 {
namespace {

constexpr ULONGLONG betweenWords = 250;  // milliseconds
constexpr int mostTries = 20;            // about as many hundredths of a second

std::u16string number(std::size_t value) {
  return text::decimal(static_cast<std::int64_t>(value));
}

constexpr list::RowForm fileForms[] = {list::RowForm::csvFile, list::RowForm::page, list::RowForm::json};

}  // namespace

void RowOutput::create(HWND parent, Around around) {
  parent_ = parent;
  around_ = std::move(around);
}

void RowOutput::forget() {
  givenUp_ = false;
  copying_.reset();
  saving_.reset();
}

void RowOutput::copy(What what, const std::vector<list::Stretch>& rows) {
  if (around_.use() != ListUse::now || rows.empty()) return;
  std::size_t many = 0;
  for (const list::Stretch& stretch : rows) many += stretch.end - stretch.begin;
  if (many > list::mostRowsCopied) {
    around_.say(fillText(texts_.text(ViewText::copyTooMany), {number(many), number(list::mostRowsCopied)}),
                false);
    MessageBeep(MB_ICONWARNING);
    return;
  }
  if (what == What::data)
    copying_.emplace(desk_, rows,
                     [this](std::size_t shown, const GridRow& row) { return dataOf(shown, row); });
  else
    copying_.emplace(desk_, rows,
                     what == What::csv       ? list::RowForm::csv
                     : what == What::message ? list::RowForm::messages
                                             : list::RowForm::lines,
                     around_.sheet());
  saving_.reset();
  start();
}

// As the pane shows it.
std::u16string RowOutput::dataOf(std::size_t shown, const GridRow& row) const {
  auto data = desk_.dataPart(shown);
  if (!data || data->end > row.description.size()) data = guessedDataPart(row.description);
  return data ? row.description.substr(data->begin, data->end - data->begin) : std::u16string{};
}

void RowOutput::save() {
  if (around_.use() != ListUse::now || desk_.size() == 0) return;
  FileQuestion question{texts_.text(ViewText::saveTitle),
                        text::asFileName(around_.sheet().exchange),
                        {{texts_.text(ViewText::saveAsCsv), u"csv"},
                         {texts_.text(ViewText::saveAsPage), u"html"},
                         {texts_.text(ViewText::saveAsJson), u"json"}}};
  const HWND parent = parent_;
  const auto answer = askForFile(parent, question);
  if (!answer || !IsWindow(parent)) return;
  if (around_.use() != ListUse::now || desk_.size() == 0)
    return around_.say(texts_.text(ViewText::outputGivenUp), false);
  copying_.reset();
  file_ = answer->file.u16string();
  saving_.emplace(desk_, list::makeRowWriter(fileForms[answer->kind], around_.sheet(), desk_.size()),
                  answer->file);
  start();
}

void RowOutput::start() {
  gathered_ = false;
  tries_ = 0;
  toldAt_ = GetTickCount64();
  around_.say({}, false);
}

void RowOutput::work(const std::function<bool()>& again) {
  if (givenUp_) return end(texts_.text(ViewText::outputGivenUp));
  if (copying_) copyOn(again);
  if (saving_) saveOn(again);
}

void RowOutput::copyOn(const std::function<bool()>& again) {
  if (gathered_) return putThere();
  switch (copying_->work(again)) {
    case list::Copying::State::atWork:
      return tellProgress(ViewText::copyAtWork, copying_->progress());
    case list::Copying::State::failed:
      return end(fillText(texts_.text(ViewText::outputFailed), {copying_->failure()}));
    case list::Copying::State::complete:
      gathered_ = true;
      return putThere();
  }
}

// Another program may hold it for a moment.
void RowOutput::putThere() {
  if (copying_->text().empty()) return end(texts_.text(ViewText::copyNoData));
  const bool there = putOnClipboard(parent_, copying_->text(), copying_->table(), [](int) { return false; });
  if (there) return copying_.reset();
  if (++tries_ < mostTries) return;
  end(texts_.text(ViewText::clipboardHeld));
  MessageBeep(MB_ICONWARNING);
}

void RowOutput::saveOn(const std::function<bool()>& again) {
  using State = list::Saving::State;
  switch (saving_->work(again)) {
    case State::atWork:
      return tellProgress(ViewText::saveAtWork, saving_->progress());
    case State::saved:
      return end(savedWords());
    case State::noFile:
      return end(fillText(texts_.text(ViewText::saveNoFile), {file_}));
    case State::noRoom:
      return end(fillText(texts_.text(ViewText::saveNoRoom), {file_}));
    case State::held:
      return end(fillText(texts_.text(ViewText::saveHeld), {file_}));
    case State::failed:
      return end(fillText(texts_.text(ViewText::outputFailed), {saving_->failure()}));
  }
}

std::u16string RowOutput::savedWords() const {
  const std::size_t gone = saving_->gone();
  const std::u16string rows = number(saving_->progress().done - gone);
  return gone == 0 ? fillText(texts_.text(ViewText::saved), {rows, file_})
                   : fillText(texts_.text(ViewText::savedButGone), {rows, file_, number(gone)});
}

void RowOutput::tellProgress(ViewText which, list::Desk::Progress progress) {
  if (GetTickCount64() - toldAt_ < betweenWords) return;
  toldAt_ = GetTickCount64();
  around_.say(fillText(texts_.text(which), {number(progress.done), number(progress.of)}), true);
}

void RowOutput::end(const std::u16string& words) {
  forget();
  around_.say(words, false);
}

bool RowOutput::escape() {
  if (!busy()) return false;
  end(texts_.text(ViewText::outputStopped));
  return true;
}

// Whoever brings other rows has something to say in the status line himself.
void RowOutput::giveUp() {
  if (!busy()) return;
  forget();
  givenUp_ = true;
}

}  // namespace vordane::window::win32
