// What a person does with the list besides reading it: the menu of its rows, and the bar that finds a text.
#include <windows.h>

#include <iterator>
#include <utility>

#include "platform/windows/window/main_window.h"
#include "text/text.h"

namespace vordane::window::win32 {
namespace {

using Only = ListWork::Only;
using What = RowOutput::What;
constexpr std::pair<What, ViewText> copyEntries[] = {{What::rows, ViewText::copyFault},
                                                     {What::message, ViewText::copyMessage},
                                                     {What::data, ViewText::copyData},
                                                     {What::csv, ViewText::copyCsv}};
enum GridCommand : UINT {
  saveCommand = 1,
  noteCommand,
  lookUpCommand,
  nextNewCommand,
  storedCommand,
  copyCommand,
  onlyCommand = copyCommand + std::size(copyEntries)
};
constexpr Only onlyEntries[] = {Only::kind, Only::otherKinds, Only::processor, Only::day};

}  // namespace

void MainWindow::contextMenu(HWND source, POINT place) {
  if (!inputAllowed() || source != grid_.window() || grid_.isOnHeading(place)) return;
  grid_.settleSelection();
  gridMenu(place.x == -1 && place.y == -1 ? grid_.menuPlace() : place);
}

void MainWindow::gridMenu(POINT place) {
  const ShownRow* selected = grid_.selectedRow();
  if (selected == nullptr) return;
  const Menu menu(CreatePopupMenu());
  appendCopies(menu.get());
  if (IsWindowEnabled(item(idLookUp)))
    AppendMenuW(menu.get(), MF_STRING, lookUpCommand, wide(windowText(item(idLookUp))));
  AppendMenuW(menu.get(), MF_STRING, noteCommand, wide(texts_.text(ViewText::noteMenu) + u"\tF2"));
  if (look_.offered())
    AppendMenuW(menu.get(), MF_STRING, nextNewCommand, wide(texts_.text(ViewText::nextNew) + u"\tF6"));
  if (events_->storedTextsOffered())
    AppendMenuW(menu.get(), MF_STRING | (events_->storedTextsShown() ? MF_CHECKED : 0U), storedCommand,
                wide(texts_.text(ViewText::storedTexts) + u"\tF8"));
  const GridRow row = selected->fault;  // the menu serves messages meanwhile
  if (IsWindowEnabled(item(idFilter))) appendFilters(menu.get(), row);
  const BOOL chosen =
      TrackPopupMenu(menu.get(), TPM_RETURNCMD | TPM_RIGHTBUTTON, place.x, place.y, 0, window_, nullptr);
  if (chosen > 0 && inputAllowed()) chosenInMenu(static_cast<UINT>(chosen), row);
}

void MainWindow::chosenInMenu(UINT command, const GridRow& row) {
  if (command == saveCommand) return list_.save();
  if (command == noteCommand) return notes_.write();
  if (command == lookUpCommand) return openLookUp();
  if (command == nextNewCommand) return goToNextNew();
  if (command == storedCommand) return events_->storedTextsAsked();
  if (command >= onlyCommand) return list_.show(onlyEntries[command - onlyCommand], row);
  list_.copy(copyEntries[command - copyCommand].first);
}

void MainWindow::appendCopies(HMENU menu) {
  for (UINT i = 0; i < std::size(copyEntries); ++i) {
    const std::u16string_view key = copyEntries[i].first == What::rows ? u"\tCtrl+C" : u"";
    AppendMenuW(menu, MF_STRING, copyCommand + i, wide(texts_.text(copyEntries[i].second).append(key)));
  }
  AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
  AppendMenuW(menu, MF_STRING, saveCommand, wide(texts_.text(ViewText::saveShown) + u"\tCtrl+S"));
}

void MainWindow::appendFilters(HMENU menu, const GridRow& row) {
  bool first = true;
  for (UINT i = 0; i < std::size(onlyEntries); ++i) {
    const std::u16string words = list_.menuText(onlyEntries[i], row);
    if (words.empty()) continue;
    if (std::exchange(first, false)) AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
    AppendMenuW(menu, MF_STRING, onlyCommand + i, wide(words));
  }
}

void MainWindow::openLookUp() {
  if (!inputAllowed() || !IsWindowEnabled(item(idLookUp))) return;
  lookUp_.show();
  markFound();
  place();
}

void MainWindow::closeLookUp() {
  lookUp_.hide();
  markFound();
  place();
  SetFocus(grid_.window());
}

// Where rows can't be told to be new, the key does nothing.
void MainWindow::goToNextNew() {
  if (!inputAllowed() || events_ == nullptr || events_->listUse() != ListUse::now || !look_.offered()) return;
  if (const auto row = look_.next(grid_.selected())) {
    grid_.select(*row);
    SetFocus(grid_.window());
    return;
  }
  status_.remark(texts_.text(ViewText::noNewFault));
  placeStatus();
}

// The text in the bar is marked as long as the bar is there.
void MainWindow::markFound() {
  lookUpNote_.clear();
  const std::u16string wanted = lookUp_.open() ? lookUp_.wanted() : std::u16string{};
  list_.seek(wanted);
  pane_.mark(text::toLower(wanted));
}

void MainWindow::showFound() {
  if (!lookUp_.open()) return;
  std::u16string words = list_.found();
  if (!words.empty() && !lookUpNote_.empty() && words != lookUpNote_) words += u". ";
  if (words != lookUpNote_) words += lookUpNote_;
  lookUp_.tell(words, list_.counting());
}

void MainWindow::lookUpNext(LookUpWay way) {
  const std::u16string wanted = lookUp_.wanted();
  if (wanted.empty() || grid_.size() == 0) return openLookUp();
  const bool back = way == LookUpWay::backwards;
  const auto from = grid_.selected();
  const auto hit = list_.lookUp(*events_, wanted, way);
  if (events_ == nullptr) return;  // the window went away meanwhile
  const bool wrapped = hit && from && (back ? *hit >= *from : *hit <= *from);
  if (hit) grid_.select(*hit);
  lookUpNote_ = !hit      ? texts_.text(ViewText::lookUpNotFound)
                : wrapped ? texts_.text(back ? ViewText::lookUpWrappedBack : ViewText::lookUpWrapped)
                          : std::u16string{};
  showFound();
}

}  // namespace vordane::window::win32
