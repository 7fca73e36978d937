// Printing through the host, and deleting: what acts on the shown exchange as a whole.
#include "language/message_numbers.h"
#include "store/fault_store.h"
#include "store/long_step.h"
#include "store/statements.h"
#include "store/trap.h"

namespace vordane::store {
namespace {

constexpr std::u16string_view databaseFile = u"FAULT.MDB", reportFile = u"FAULT.RPT";
constexpr int answerYes = 6;
// What the host does with the fifth argument is its own business; it has always been 0.
constexpr std::int16_t fifthArgument = 0;

std::u16string sortFormula(SortKey key, std::size_t position) {
  const auto& columns = reportColumns.at(static_cast<std::size_t>(sortColumn(key)));
  return (isDescending(key) ? u"-" : u"+") + std::u16string(columns.at(position));
}

std::vector<automation::Argument> reportArguments(StoreForm& form, std::u16string_view name, SortKey key) {
  const auto text = [](std::u16string value) { return automation::byRef(std::move(value)); };
  std::vector<automation::Argument> arguments;
  arguments.push_back(text(form.installPath(u"Database").append(databaseFile)));
  arguments.push_back(text(form.installPath(u"Report").append(reportFile)));
  arguments.push_back(text(std::u16string(u"{PbxList.PBXName} = '").append(name).append(u"'")));
  arguments.push_back(text(sortFormula(key, 0)));
  arguments.push_back(automation::byVal(fifthArgument));
  for (std::size_t position = 1; position < headingColumns; ++position)
    arguments.push_back(text(sortFormula(key, position)));
  return arguments;
}

}  // namespace

void FaultStore::PrintFaultReport() {
  if (openDatabase() == nullptr) return;
  if (form_.host() == nullptr) {
    form_.showBox(box::noHostToPrint);
    return;
  }
  std::u16string refusal;
  const auto failure = trap([&] {
    auto arguments = reportArguments(form_, textOf(datPBXList_.row().name), sortKey_);
    refusal = automation::toText(automation::call(*form_.host(), u"PrintReport", arguments));
  });
  if (!form_.alive()) return;
  if (failure) {
    showError(*failure);
  } else if (!refusal.empty()) {
    form_.showBox(box::reportRefused, refusal);
  }
}

void FaultStore::DeleteExchange() {
  if (openDatabase() == nullptr) return;
  const auto asked = datPBXList_.hasRow() ? datPBXList_.row().id : database::Value{};
  if (form_.showBox(box::confirmDelete) != answerYes || !form_.alive()) return;
  database::Database* database = form_.faultDatabase();
  if (database == nullptr) return;
  // A host may have registered another exchange while the box stood: the answer was not about that one.
  if (datPBXList_.hasRow() && datPBXList_.row().id != asked) return form_.deletionGivenUp();
  const auto failure = trap([&] {
    const std::int16_t id = exchangeIdOf(datPBXList_.row().id);
    LongStep step(around_, grid_, *database, LongStep::deleting);
    step.at(0, grid_.size());
    // Two steps of their own: faults left without an exchange are kept when the second fails.
    database->execute(deleteExchange(id));
    database->execute(deleteFaults(id));
  });
  if (failure && !showError(*failure)) return;
  refresh(*database, failure ? Report::quiet : Report::box);
}

}  // namespace vordane::store
