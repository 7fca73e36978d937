#include "store/stored_years.h"

#include "language/message_numbers.h"
#include "store/batch.h"
#include "store/data_control.h"
#include "store/fault_record.h"
#include "store/long_step.h"
#include "store/statements.h"
#include "text/text.h"

namespace vordane::store {
namespace {

constexpr std::u16string_view dateColumn = u"Date";

void widen(database::Recordset& row) {
  const std::u16string date = textOf(row.get(dateColumn));
  const std::u16string widened = WidenYear(date);
  if (widened == date) return;
  row.edit();
  row.set(dateColumn, widened);
  row.update();
}

void widenAll(const Surroundings& around, comSSDataGrid::FaultRows& shown, database::Database& database,
              database::Recordset& rows) {
  const LongStep step(around, shown, database, LongStep::reading);
  Batch batch(database);
  for (rows.moveFirst(); !rows.atEnd(); rows.moveNext()) widen(rows);
  batch.end();
}

}  // namespace

void widenStoredYears(const Surroundings& around, comSSDataGrid::FaultRows& shown,
                      database::Database& database) {
  const auto rows = database.openRecordset(faultsNewestFirst);
  if (!rows->isEmpty() && text::middle(textOf(rows->get(dateColumn)), 3, 1) == u"/")
    widenAll(around, shown, database, *rows);
  rows->close();
}

}  // namespace vordane::store
