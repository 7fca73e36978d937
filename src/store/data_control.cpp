#include "store/data_control.h"

#include <array>

#include "platform/database_numbers.h"
#include "text/numbers.h"

namespace vordane::store {
namespace {

// The order in which the rows of the grid read their columns.
constexpr std::array<std::u16string_view, 6> gridFields = {u"Fault", u"Alarm",       u"Date",
                                                           u"CPU",   u"Description", u"Count"};

}  // namespace

std::int16_t exchangeIdOf(const database::Value& value) {
  try {
    return automation::toInteger(value);
  } catch (const automation::AutomationError&) {
    const auto shown = automation::isNull(value) ? std::u16string(u"Null") : automation::toText(value);
    throw database::DatabaseError(automation::error::overflowNumber, u"PBXList.ID: " + shown);
  }
}

void DataControl::refresh(database::Database& database) {
  drop();
  if (!recordSource_.empty()) read(database);
}

void DataControl::clear() {
  recordSource_.clear();
  drop();
}

const ExchangeControl::Row& ExchangeControl::row() const {
  if (row_ == nullptr && noRow_ != nullptr) std::rethrow_exception(noRow_);
  if (row_ == nullptr) throw database::DatabaseError(database::number::noCurrentRecord, u"PBXList");
  return *row_;
}

void ExchangeControl::read(database::Database& database) {
  const auto records = database.openRecordset(recordSource());
  try {
    Row row{records->get(u"ID"), records->get(u"PBXName"), textOf(records->get(u"TimeStamp")),
            records->isDate(u"TimeStamp")};
    row_ = std::make_unique<Row>(std::move(row));
  } catch (const database::DatabaseError&) {
    if (!records->isEmpty()) throw;
    noRow_ = std::current_exception();
  }
  records->close();
}

void ExchangeControl::drop() noexcept {
  row_.reset();
  noRow_ = nullptr;
}

void FaultControl::read(database::Database& database) {
  rows_ = database.openRowList(recordSource(), gridFields);
}

}  // namespace vordane::store
