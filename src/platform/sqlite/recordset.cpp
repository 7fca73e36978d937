#include "platform/sqlite/recordset.h"

#include "platform/sqlite/errors.h"

namespace vordane::sqlite {
namespace {

std::optional<std::u16string_view> textOf(const std::optional<Value>& value) {
  if (!value) return std::nullopt;
  const auto* text = std::get_if<std::u16string>(&*value);
  return text ? std::optional<std::u16string_view>(*text) : std::nullopt;
}

std::optional<std::int64_t> numberOf(const std::optional<Value>& value) {
  if (!value || automation::isNull(*value)) return std::nullopt;
  return automation::toLong(*value);
}

}  // namespace

EmbeddedRecordset::EmbeddedRecordset(std::shared_ptr<Opened> opened, Plan& plan,
                                     std::vector<jet::Literal>& literals)
    : opened_(std::move(opened)), connection_(opened_->connection), plan_(plan) {
  if (!findSame(literals)) literals_ = std::move(literals);
  connection_.add(*this);
}

// The duplicate test is made once for each event received: answered at once, from the statement's own
// values, and only the key of what was found is kept.
bool EmbeddedRecordset::findSame(const std::vector<jet::Literal>& literals) {
  if (plan_.special != Plan::Special::sameEvent || !connection_.events().usable()) return false;
  connection_.beforeRead();
  keepKeys(connection_.events().findSame(literals[plan_.ownerValue].number, plan_.sameTexts(literals)));
  hadRows_ = place_ == Place::onRow;
  return true;
}

EmbeddedRecordset::~EmbeddedRecordset() {
  giveBack();
  connection_.remove(*this);
}

void EmbeddedRecordset::giveBack() noexcept {
  if (!pool_) return;
  pool_->giveBack(std::move(rows_));
  pool_ = nullptr;
}

void EmbeddedRecordset::requireOpen() const {
  if (!open_) fail(number::invalidOperation);
}

void EmbeddedRecordset::start() {
  requireOpen();
  if (place_ != Place::before) return;
  connection_.beforeRead();
  startRows();
  hadRows_ = place_ == Place::onRow;
}

void EmbeddedRecordset::startRows() {
  if (plan_.special == Plan::Special::newestEvents && connection_.events().usable()) {
    const auto newest = connection_.events().newest();
    keepKeys(newest ? std::vector{*newest} : std::vector<std::int64_t>{});
    onlyNewest_ = newest.has_value();
    return;
  }
  pool_ = &plan_.rows;
  rows_ = pool_->take(connection_);
  int parameter = 0;
  if (!plan_.isUnion())
    for (const jet::Literal& literal : literals_) rows_.bind(++parameter, literal);
  stepRows();
}

void EmbeddedRecordset::stepRows() {
  loaded_ = false;
  if (rows_.step()) {
    place_ = Place::onRow;
    if (plan_.isUnion()) return;
    key_ = rows_.integer(0);
    at_ = keys_.size();
    keys_.push_back(key_);
  } else {
    at_ = keys_.size();
    place_ = Place::atEnd;
    rows_.reset();
  }
}

void EmbeddedRecordset::keepKeys(std::vector<std::int64_t> keys) {
  keys_ = std::move(keys);
  at_ = 0;
  keyed_ = true;
  placeOnKey();
}

void EmbeddedRecordset::placeOnKey() {
  loaded_ = false;
  place_ = at_ < keys_.size() ? Place::onRow : Place::atEnd;
  if (place_ == Place::onRow) key_ = keys_[at_];
}

// From here on the rows are those there are now, in the order they have now.
void EmbeddedRecordset::finishReading() {
  if (place_ == Place::before || plan_.isUnion()) return;
  if (onlyNewest_) {
    onlyNewest_ = false;
    keys_ = connection_.events().allNewestFirst();
  }
  if (keyed_) return;
  if (place_ == Place::onRow) {
    loadRow();
    while (rows_.step()) keys_.push_back(rows_.integer(0));
  }
  giveBack();
  keyed_ = true;
}

void EmbeddedRecordset::readFrom(const Statement& statement) {
  row_.resize(plan_.names.size());
  for (std::size_t i = 0; i < row_.size(); ++i) {
    const bool yesNo = !plan_.columns.empty() && plan_.columns[i]->kind == Kind::yesNo;
    row_[i] = statement.limitedValue(static_cast<int>(i) + plan_.firstColumn(), yesNo);
  }
  loaded_ = true;
}

void EmbeddedRecordset::loadRow() {
  if (loaded_) return;
  if (!keyed_) return readFrom(rows_);
  connection_.tables().follow();
  if (plan_.tablesChanged != connection_.tables().timesChanged()) fail(number::recordGone);
  connection_.beforeRead();
  Statement row = plan_.byKey.take(connection_);
  row.bind(1, key_);
  const bool found = row.step();
  if (found) readFrom(row);
  plan_.byKey.giveBack(std::move(row));
  if (!found) fail(number::recordGone);
}

bool EmbeddedRecordset::atEnd() {
  start();
  return place_ == Place::atEnd;
}

bool EmbeddedRecordset::isEmpty() {
  start();
  return !hadRows_;
}

std::int32_t EmbeddedRecordset::recordCount() {
  return isEmpty() ? 0 : 1;
}

void EmbeddedRecordset::moveFirst() {
  requireOpen();
  change_ = Change::none;
  if (isEmpty()) fail(number::noCurrentRecord);
  if (keyed_) {
    at_ = 0;
    return placeOnKey();
  }
  rows_.reset();
  keys_.clear();
  stepRows();
}

void EmbeddedRecordset::moveNext() {
  start();
  change_ = Change::none;
  if (place_ == Place::atEnd) fail(number::noCurrentRecord);
  if (onlyNewest_) finishReading();
  if (!keyed_) return stepRows();
  ++at_;
  placeOnKey();
}

void EmbeddedRecordset::requireRow() {
  start();
  if (place_ != Place::onRow) fail(number::noCurrentRecord);
}

void EmbeddedRecordset::requireTable() const {
  if (plan_.isUnion() || plan_.columns.size() != plan_.table->columns.size()) fail(number::invalidOperation);
  if (connection_.readOnly()) fail(number::readOnly);
}

Value EmbeddedRecordset::get(std::u16string_view column) {
  requireOpen();
  return get(plan_.resultColumn(column));
}

Value EmbeddedRecordset::get(std::size_t column) {
  requireOpen();
  if (column >= plan_.names.size()) fail(number::unknownItem);
  if (change_ == Change::add || (change_ == Change::edit && fields_[column])) return pending(column);
  requireRow();
  loadRow();
  return row_[column];
}

// All columns of the table are in the result, in its order, wherever something is changed.
Value EmbeddedRecordset::pending(std::size_t column) {
  if (plan_.table->autoNumber == column && !fields_[column]) reserveNumber();
  if (fields_[column]) return *fields_[column];
  return plan_.table->columns[column].kind == Kind::yesNo ? Value(false) : Value(automation::Null{});
}

bool EmbeddedRecordset::isDate(std::u16string_view column) {
  const std::size_t position = plan_.resultColumn(column);
  return !plan_.columns.empty() && plan_.columns[position]->kind == Kind::date;
}

void EmbeddedRecordset::set(std::u16string_view column, Value value) {
  requireOpen();
  if (change_ == Change::none) fail(number::noUpdateBegun);
  const std::size_t position = plan_.resultColumn(column);
  if (plan_.table->autoNumber == position) fail(number::badValue, column);
  fields_[position] = fit(plan_.table->columns[position], std::move(value), connection_.utf8());
}

void EmbeddedRecordset::addNew() {
  requireOpen();
  requireTable();
  change_ = Change::add;
  fields_.assign(plan_.table->columns.size(), std::nullopt);
}

void EmbeddedRecordset::edit() {
  requireOpen();
  requireTable();
  requireRow();
  loadRow();
  // The rows that this recordset holds are known before the first of them changes.
  finishReading();
  change_ = Change::edit;
  fields_.assign(plan_.table->columns.size(), std::nullopt);
}

void EmbeddedRecordset::update() {
  requireOpen();
  if (change_ == Change::none) fail(number::noUpdateBegun);
  change_ == Change::add ? insertRow() : updateRow();
  change_ = Change::none;
}

void EmbeddedRecordset::close() {
  giveBack();
  open_ = false;
  change_ = Change::none;
}

void EmbeddedRecordset::reserveNumber() {
  fields_[*plan_.table->autoNumber] = static_cast<std::int32_t>(connection_.takeNumber(*plan_.table));
}

// The columns that are set, a bit for each.
std::uint64_t EmbeddedRecordset::setColumns() const {
  std::uint64_t bits = 0;
  for (std::size_t i = 0; i < fields_.size(); ++i)
    if (fields_[i]) bits |= std::uint64_t{1} << i;
  return bits;
}

std::string EmbeddedRecordset::sqlOfInsert() const {
  std::string names, values;
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    if (!fields_[i]) continue;
    names += (names.empty() ? "" : ", ") + plan_.table->columns[i].quoted;
    values += values.empty() ? "?" : ", ?";
  }
  const std::string head = "INSERT INTO " + plan_.table->quoted;
  return names.empty() ? head + " DEFAULT VALUES" : head + "(" + names + ") VALUES (" + values + ")";
}

std::string EmbeddedRecordset::sqlOfUpdate() const {
  std::string changes;
  for (std::size_t i = 0; i < fields_.size(); ++i)
    if (fields_[i]) changes += (changes.empty() ? "" : ", ") + plan_.table->columns[i].quoted + " = ?";
  return "UPDATE " + plan_.table->quoted + " SET " + changes + " WHERE rowid = ?";
}

int EmbeddedRecordset::bindFields(Statement& statement) const {
  int parameter = 0;
  for (const auto& field : fields_)
    if (field) statement.bind(++parameter, *field);
  return parameter;
}

std::int64_t EmbeddedRecordset::insertFields() {
  StatementPool& pool = plan_.table->inserts[setColumns()];
  if (pool.sql().empty()) pool = StatementPool(sqlOfInsert());
  Statement insert = pool.take(connection_);
  bindFields(insert);
  insert.run();
  pool.giveBack(std::move(insert));
  return sqlite3_last_insert_rowid(connection_.handle());
}

void EmbeddedRecordset::updateFields() {
  StatementPool& pool = plan_.table->updates[setColumns()];
  if (pool.sql().empty()) pool = StatementPool(sqlOfUpdate());
  Statement change = pool.take(connection_);
  const int fields = bindFields(change);
  change.bind(fields + 1, key_);
  change.run();
  pool.giveBack(std::move(change));
  if (sqlite3_changes64(connection_.handle()) == 0) fail(number::recordGone);
}

void EmbeddedRecordset::insertRow() {
  Table& table = *plan_.table;
  const auto number = table.autoNumber;
  // A number in its documented range is taken beforehand; a long one is left to the engine, which is quicker.
  const bool reserved = number && !fields_[*number] && table.columns[*number].kind == Kind::integer16;
  // A row alone is added whole or not at all, and that of an event is taken back when the index can't have
  // it.
  WriteScope write(connection_, reserved ? WriteScope::Undo::bySavepoint : WriteScope::Undo::byTheStep);
  const bool indexed = table.events && connection_.events().usable();
  if (reserved) reserveNumber();
  const std::int64_t key = insertFields();
  if (indexed) addToIndex(key);
  write.done();
  if (place_ != Place::before) hadRows_ = true;
}

void EmbeddedRecordset::addToIndex(std::int64_t key) {
  const EventColumns& events = *plan_.table->events;
  EventTexts texts;
  for (std::size_t i = 0; i < texts.size(); ++i) texts[i] = textOf(fields_[events.texts[i]]);
  try {
    connection_.events().added(key, numberOf(fields_[events.owner]), texts);
  } catch (...) {
    takeBack(key);
    throw;
  }
}

// Outside a batch the transaction goes anyway. What is damaged is not written again: all that is not safe yet
// is given up, as it is when taking back fails.
void EmbeddedRecordset::takeBack(std::int64_t key) noexcept {
  if (!connection_.inBatch() || !connection_.inTransaction()) return;
  connection_.events().undone();
  try {
    if (connection_.damaged()) return connection_.rollback();
    connection_.events().changing(key);  // the index may have it already
    Statement row(connection_, "DELETE FROM " + plan_.table->quoted + " WHERE rowid = ?");
    row.bind(1, key);
    row.run();
  } catch (...) {
    connection_.rollback();
  }
}

void EmbeddedRecordset::updateRow() {
  if (setColumns() == 0) return;
  WriteScope write(connection_);
  const bool indexed = plan_.table->events && connection_.events().usable();
  if (indexed) connection_.events().changing(key_);
  updateFields();
  if (indexed) connection_.events().changed(key_);
  write.done();
  loaded_ = false;
}

}  // namespace vordane::sqlite
