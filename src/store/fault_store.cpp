#include "store/fault_store.h"

#include <stdexcept>

#include "language/message_numbers.h"
#include "platform/database_numbers.h"
#include "store/long_step.h"
#include "store/reset_receipts.h"
#include "store/statements.h"
#include "store/stored_years.h"
#include "store/time_stamp.h"
#include "store/trap.h"
#include "text/numbers.h"

namespace vordane::store {
namespace {

constexpr int dateColumn = 2;

// What acts on faults is dead while none are shown.
constexpr std::array<std::u16string_view, 5> faultButtons = {u"cmdPrint", u"cmdClear", u"cmdLookUp",
                                                             u"cmdFilter", u"cmdReset"};

// While it lives, a choice in the drop-down comes from the program and shows nothing.
class Filling {
 public:
  explicit Filling(bool& flag) : flag_(flag) { flag_ = true; }
  ~Filling() { flag_ = false; }
  Filling(const Filling&) = delete;
  Filling& operator=(const Filling&) = delete;

 private:
  bool& flag_;
};

}  // namespace

FaultStore::FaultStore(StoreForm& form, const Surroundings& around)
    : form_(form), around_(around), grid_(form, around.state) {}

void FaultStore::setSortFlags() {
  for (int column = 0; column < sortableColumns; ++column)
    ascending_[static_cast<std::size_t>(column)] = true;
  ascending_[dateColumn] = false;
}

void FaultStore::close() {
  grid_.show(nullptr);
  datFaultDisplay_.clear();
  datPBXList_.clear();
}

database::Database* FaultStore::openDatabase() {
  database::Database* database = form_.faultDatabase();
  if (database != nullptr) return database;
  form_.hostMessage(messageText(around_.state, message::databaseNotOpen));
  if (form_.alive()) form_.hostCode(database::number::fileNotFound);
  return nullptr;
}

bool FaultStore::showError(std::u16string_view engineText) {
  form_.showBox(box::stepFailed, engineText);
  return form_.alive();
}

bool FaultStore::trapDisplay(Report report, const std::function<void()>& steps) {
  const auto failure = trap(steps);
  if (!failure) return true;
  emptyDisplay();
  around_.status.displayFailed(*failure);
  form_.displayFailed(*failure);
  showNotice();
  return report == Report::quiet || showError(*failure);
}

void FaultStore::showNoDatabase() {
  if (!form_.alive()) return;
  emptyDisplay();
  status::show(around_.view, around_.status.withoutDatabase());
}

void FaultStore::emptyDisplay() {
  grid_.show(nullptr);
  datFaultDisplay_.clear();
  datPBXList_.clear();
  around_.form.control(u"txtTimeTag").set(u"Text", std::u16string{});
  showLamps(false, false);
  around_.receipts.show({});
  showRows();
  showButtonStates();
}

bool FaultStore::FillExchangeList(Report report) {
  database::Database* database = openDatabase();
  if (database == nullptr) return false;
  bool filled = false;
  trapDisplay(report, [&] {
    fillList(*database);
    filled = true;
  });
  return filled;
}

void FaultStore::setExchangeName(std::u16string_view name, Report report) {
  registeredName_ = name;
  exchangeId_ = 0;
  database::Database* database = openDatabase();
  if (database == nullptr) return showNoDatabase();
  const bool here = trapDisplay(report, [&] {
    exchangeId_ = idOfName(*database, name);
    fillList(*database);
    SelectExchange(*database);
  });
  if (here) showButtonStates();
}

void FaultStore::RefreshDisplay() {
  database::Database* database = openDatabase();
  if (database == nullptr) return showNoDatabase();
  refresh(*database, Report::box);
}

void FaultStore::refresh(database::Database& database, Report report) {
  const bool here = trapDisplay(report, [&] {
    fillList(database);
    SelectExchange(database);
  });
  if (here) showButtonStates();
}

void FaultStore::exchangeListClicked() {
  if (filling_) return;
  database::Database* database = openDatabase();
  if (database == nullptr) return showNoDatabase();
  if (trapDisplay(Report::box, [&] { SelectExchange(*database); })) showButtonStates();
}

void FaultStore::headingClicked(int column) {
  if (column < 0 || column >= headingColumns) throw std::out_of_range("no such column of the fault grid");
  if (database::Database* database = openDatabase())
    trapDisplay(Report::box, [&] { SortFaultGrid(*database, column); });
  else
    showNoDatabase();
  // Whatever came of the sorting, the next click asks for the other direction.
  bool& ascending = ascending_[static_cast<std::size_t>(column)];
  ascending = !ascending;
}

void FaultStore::DisplayAlarm() {
  database::Database* database = form_.faultDatabase();
  if (database == nullptr) {
    around_.receipts.show({});
    return showLamps(false, false);
  }
  trapDisplay(Report::box, [&] { paintLamps(*database); });
}

void FaultStore::showButtonStates() {
  const bool usable = grid_.size() != 0 && around_.state.runMode == RunMode::interactive;
  for (const auto name : faultButtons) around_.form.control(name).set(u"Enabled", usable);
}

std::optional<std::size_t> FaultStore::lookUp(std::u16string_view text, std::ptrdiff_t from,
                                              window::LookUpWay way) {
  database::Database* database = openDatabase();
  if (database == nullptr) return {};
  std::optional<std::size_t> found;
  trapDisplay(Report::box, [&] {
    LongStep step(around_, grid_, *database, LongStep::reading);
    found = grid_.lookUp(text, from, way, [&](std::size_t done) { step.at(done, grid_.size()); });
  });
  if (form_.alive()) showCount();
  return found;
}

// --- the steps of the display

std::optional<FaultStore::Chosen> FaultStore::chosen() const {
  const window::Control& list = around_.form.control(u"drpPBXList");
  if (list.listIndex() < 0) return {};
  const auto& entry = list.items().at(static_cast<std::size_t>(list.listIndex()));
  return Chosen{entry.text, static_cast<std::int16_t>(entry.itemData)};
}

std::int16_t FaultStore::idOfName(database::Database& database, std::u16string_view name) {
  if (name.empty()) return 0;
  const auto found = database.openRecordset(findExchange(name));
  const std::int16_t id = found->recordCount() < 1 ? std::int16_t{0} : exchangeIdOf(found->get(u"ID"));
  found->close();
  return id;
}

void FaultStore::fillList(database::Database& database) {
  const Filling filling(filling_);
  window::Control& list = around_.form.control(u"drpPBXList");
  list.clearItems();
  const auto rows = database.openRecordset(exchangesNewestFirst);
  int position = 0;
  for (; !rows->atEnd(); rows->moveNext()) {
    const std::int16_t id = exchangeIdOf(rows->get(u"ID"));
    const int entry = list.addItem(textOf(rows->get(u"PBXName")));
    list.setItemData(entry, id);
    if (id == exchangeId_) position = entry;
  }
  if (!list.items().empty()) list.setListIndex(position);
  rows->close();
}

void FaultStore::SelectExchange(database::Database& database) {
  widenStoredYears(around_, grid_, database);
  refreshExchange(database);
  // A newly shown exchange lists its faults newest first.
  ascending_[dateColumn] = false;
  SortFaultGrid(database, dateColumn);
  paintLamps(database);
}

void FaultStore::refreshExchange(database::Database& database) {
  const auto exchange = chosen();
  datPBXList_.setRecordSource(exchange ? selectExchange(exchange->name, exchange->id).text()
                                       : std::u16string{});
  datPBXList_.refresh(database);
  std::u16string received;
  if (datPBXList_.hasRow())
    received = shownTimeStamp(datPBXList_.row().timeStamp, datPBXList_.row().dated, around_.clock);
  around_.status.exchangeShown(datPBXList_.hasRow() ? exchange->name : std::u16string{}, received);
  status::showLine(around_.view, around_.status);
  around_.form.control(u"txtTimeTag").set(u"Text", std::move(received));
}

void FaultStore::SortFaultGrid(database::Database& database, int column) {
  refreshExchange(database);
  // The last column has no order of its own: the grid is read again as it stands.
  if (column < sortableColumns) {
    const bool ascending = ascending_[static_cast<std::size_t>(column)];
    sortKey_ = static_cast<SortKey>(ascending ? column : sortableColumns + column);
    const auto exchange = chosen();
    datFaultDisplay_.setRecordSource(exchange ? faultsOfExchange(exchange->id, sortKey_).text()
                                              : std::u16string{});
  }
  refreshFaults(database);
}

void FaultStore::refreshFaults(database::Database& database) {
  {
    const LongStep step(around_, grid_, database, LongStep::reading);
    datFaultDisplay_.refresh(database);
  }
  around_.status.displayed();
  ++displays_;
  grid_.show(datFaultDisplay_.rows());
  showRows();
}

std::optional<NewerList::Shown> FaultStore::shown() const {
  const auto exchange = chosen();
  if (!exchange || !datPBXList_.hasRow()) return {};
  return NewerList::Shown{exchange->id, exchange->name, datPBXList_.row().timeStamp, displays_};
}

NewerList::Pause FaultStore::lookForNewerList() {
  database::Database* database = form_.faultDatabase();
  if (database == nullptr) return newer_.pause();
  const LongStep step(around_, grid_, *database, LongStep::silent);
  const auto exchange = shown();
  if (newer_.ask(exchange, [&] { return database->arrivals(); })) {
    around_.status.newerListStored(exchange->name);
    status::showLine(around_.view, around_.status);
  }
  return newer_.pause();
}

void FaultStore::showRows() {
  const bool empty = grid_.size() == 0;
  around_.view.setRows(empty ? nullptr : &grid_);
  around_.view.setSortMark(empty ? -1 : sortColumn(sortKey_), isDescending(sortKey_));
  showCount();
  if (empty) showNotice();
}

void FaultStore::showCount() {
  const auto rows = text::decimal(static_cast<std::int64_t>(grid_.size()));
  around_.view.setStatus(window::countPart,
                         fillText(shownText(around_.state, message::statusFaultCount), {rows}));
}

void FaultStore::reword() {
  showCount();
  if (form_.faultDatabase() != nullptr) showNotice();
  around_.receipts.showLast();
}

void FaultStore::showNotice() {
  if (grid_.size() != 0) return status::show(around_.view, around_.status.aboveRows());
  const auto exchange = chosen();
  status::show(around_.view, around_.status.inEmptyGrid(
                                 exchange ? std::optional(exchange->name) : std::nullopt, registeredName_));
}

}  // namespace vordane::store
