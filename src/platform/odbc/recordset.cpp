#include "platform/odbc/recordset.h"

#include <algorithm>

#include "platform/odbc/errors.h"
#include "platform/odbc/row_list.h"
#include "platform/stored_values.h"

namespace vordane::odbc {

ServerRecordset::ServerRecordset(std::shared_ptr<Session> session, const Plan& plan,
                                 std::vector<jet::Literal> literals)
    : session_(std::move(session)), plan_(plan), literals_(std::move(literals)) {}

void ServerRecordset::requireOpen() const {
  if (!open_) database::fail(number::invalidOperation);
}

void ServerRecordset::start() {
  requireOpen();
  if (place_ != Place::before) return;
  seen_ = session_->changes();
  if (plan_.special != Plan::Special::none) {
    startEvents();
  } else if (plan_.isLong()) {
    keepAllKeys();
  } else {
    keepRows(session_->rows(plan_, plan_.rows, literals_));
  }
  placeOn(0);
  hadRows_ = place_ == Place::onRow;
}

void ServerRecordset::startEvents() {
  if (plan_.special == Plan::Special::sameEvent) {
    const Session::Found found = session_->findSame(plan_, literals_);
    waiting_ = found.waiting;
    keepRows(found.rows);
    if (found.rows.empty()) keys_ = found.keys;
    if (!keys_.empty()) size_ = keys_.size();
    if (waiting_) size_ = 1;
    return;
  }
  keepRows(session_->rows(plan_, plan_.rows, literals_));
  onlyFirst_ = size_ > 0;
}

void ServerRecordset::keepRows(const std::vector<Fields>& rows) {
  rows_ = rows;
  size_ = rows_.size();
  if (!plan_.isKeyed()) return;
  for (const Fields& row : rows_) keys_.push_back(numberFrom(row[0]));
}

void ServerRecordset::keepAllKeys() {
  onlyFirst_ = false;
  keys_ = session_->keys(plan_, literals_);
  size_ = keys_.size();
  rows_.clear();
}

void ServerRecordset::placeOn(std::size_t position) {
  at_ = position;
  place_ = at_ < size_ ? Place::onRow : Place::atEnd;
}

bool ServerRecordset::atEnd() {
  start();
  return place_ == Place::atEnd;
}

bool ServerRecordset::isEmpty() {
  start();
  return !hadRows_;
}

std::int32_t ServerRecordset::recordCount() {
  return isEmpty() ? 0 : 1;
}

void ServerRecordset::moveFirst() {
  requireOpen();
  change_ = Change::none;
  if (isEmpty()) database::fail(number::noCurrentRecord);
  placeOn(0);
}

void ServerRecordset::moveNext() {
  start();
  change_ = Change::none;
  if (place_ == Place::atEnd) database::fail(number::noCurrentRecord);
  if (onlyFirst_) keepAllKeys();
  placeOn(at_ + 1);
}

void ServerRecordset::requireRow() {
  start();
  if (place_ != Place::onRow) database::fail(number::noCurrentRecord);
}

void ServerRecordset::requireTable() const {
  if (plan_.isUnion() || plan_.names.size() != plan_.table->columns.size())
    database::fail(number::invalidOperation);
  if (session_->readOnly()) database::fail(number::readOnly);
}

// The values of the current row, behind its key where there is one.
const Fields& ServerRecordset::row() {
  if (waiting_) {
    waiting_ = false;
    session_->checkpoint();
    keepRows(session_->rows(plan_, plan_.rows, literals_));
  }
  const bool inBlock = at_ >= block_ && at_ - block_ < rows_.size();
  if (plan_.isLong() && (!inBlock || seen_ != session_->changes())) {
    block_ = at_;
    seen_ = session_->changes();
    rows_ = readBlock(*session_, plan_, keys_, block_);
  }
  const Fields& found = rows_.at(at_ - block_);
  if (found.empty()) database::fail(number::recordGone);
  return found;
}

Value ServerRecordset::get(std::u16string_view column) {
  requireOpen();
  return get(plan_.resultColumn(column));
}

Value ServerRecordset::get(std::size_t column) {
  requireOpen();
  if (column >= plan_.names.size()) database::fail(number::unknownItem);
  if (change_ == Change::add || (change_ == Change::edit && fields_[column])) return pending(column);
  requireRow();
  return database::limitedValue(fromField(plan_.types[column], row().at(column + (plan_.isKeyed() ? 1 : 0))));
}

// All columns of the table are in the result, in its order, wherever something is changed.
Value ServerRecordset::pending(std::size_t column) {
  if (plan_.table->key == column && !fields_[column])
    fields_[column] = static_cast<std::int32_t>(session_->takeNumber(*plan_.table));
  if (fields_[column]) return *fields_[column];
  return plan_.types[column] == database::ColumnType::yesNo ? Value(false) : Value(automation::Null{});
}

bool ServerRecordset::isDate(std::u16string_view column) {
  return plan_.types.at(plan_.resultColumn(column)) == database::ColumnType::dateTime;
}

void ServerRecordset::set(std::u16string_view column, Value value) {
  requireOpen();
  if (change_ == Change::none) database::fail(number::noUpdateBegun);
  const std::size_t position = plan_.resultColumn(column);
  if (plan_.table->key == position) database::fail(number::badValue, column);
  fields_[position] = fit(plan_.table->columns[position], value);
}

void ServerRecordset::addNew() {
  requireOpen();
  requireTable();
  change_ = Change::add;
  fields_.assign(plan_.table->columns.size(), std::nullopt);
}

void ServerRecordset::edit() {
  requireOpen();
  requireTable();
  requireRow();
  if (!plan_.isKeyed()) database::fail(number::invalidOperation);
  // The rows that this recordset holds are known before the first of them changes.
  if (onlyFirst_) keepAllKeys();
  row();
  change_ = Change::edit;
  fields_.assign(plan_.table->columns.size(), std::nullopt);
}

void ServerRecordset::update() {
  requireOpen();
  if (change_ == Change::none) database::fail(number::noUpdateBegun);
  if (change_ == Change::add) {
    session_->add(*plan_.table, fields_);
    if (place_ != Place::before) hadRows_ = true;
  } else {
    session_->change(*plan_.table, keys_.at(at_), fields_);
    // What was read before is as it was, but for what was set.
    Fields& kept = rows_.at(at_ - block_);
    for (std::size_t i = 0; i < fields_.size(); ++i)
      if (fields_[i]) kept.at(i + 1) = toField(*fields_[i]);
    seen_ = session_->changes();
  }
  change_ = Change::none;
}

void ServerRecordset::close() {
  open_ = false;
  change_ = Change::none;
}

}  // namespace vordane::odbc
