#include "dao/dao_recordset.h"

#include <algorithm>

#include "platform/jet.h"
#include "text/dates.h"
#include "text/text.h"

namespace vordane::fakes {
namespace {

using automation::ObjectRef;

constexpr int invalidArgument = 3001, noUpdateBegun = 3020, noCurrentRecord = 3021, readOnlyDatabase = 3027;
constexpr int notUpdatable = 3164, itemNotFound = 3265, objectInvalid = 3420, conversionFailed = 3421;

struct TypeRow {
  access::ColumnType type;
  std::int16_t dao;
};
constexpr TypeRow types[] = {
    {access::ColumnType::boolean, 1},  {access::ColumnType::byte, 2},
    {access::ColumnType::integer, 3},  {access::ColumnType::longInteger, 4},
    {access::ColumnType::single, 6},   {access::ColumnType::doubleFloat, 7},
    {access::ColumnType::dateTime, 8}, {access::ColumnType::text, 10},
    {access::ColumnType::memo, 12},
};

// The columns of a statement's result, as they are declared.
std::vector<access::Column> columnsOf(const DaoFile& file, const std::u16string& statement) {
  jet::Lifted lifted;
  jet::lift(statement, lifted);
  const jet::Shape shape = jet::parse(lifted);
  const auto table = std::find_if(file.tables.begin(), file.tables.end(), [&](const access::Table& known) {
    return text::equalIgnoringCase(known.name, shape.table);
  });
  if (table == file.tables.end()) return {};  // the engine says that there is none
  if (shape.columns.empty()) return table->columns;
  std::vector<access::Column> columns;
  for (const auto& name : shape.columns)
    for (const access::Column& column : table->columns)
      if (text::equalIgnoringCase(column.name, name)) columns.push_back(column);
  return columns;
}

// The recordset's own state, which its fields look at too.
class Rows {
 public:
  Rows(std::shared_ptr<DaoFile> file, const std::u16string& statement, std::int32_t type)
      : file_(std::move(file)),
        type_(type),
        columns_(columnsOf(*file_, statement)),
        inner_(file_->database->openRecordset(statement)) {
    if (type != dynaset && type != snapshot) raiseDao(invalidArgument, u"Invalid argument.");
    if (!inner_->atEnd()) seen_ = 1;  // a statement that can't be run is refused now
  }

  void requireOpen() const {
    if (!inner_) raiseDao(objectInvalid, u"Object invalid or no longer set.");
    requireOpenFile(*file_);
  }
  const std::vector<access::Column>& columns() const { return columns_; }
  bool atEnd() { return inner_->atEnd(); }
  bool isEmpty() { return inner_->isEmpty(); }
  std::int32_t recordCount() const { return seen_; }
  std::int32_t position() { return atEnd() ? -1 : at_; }

  void moveFirst() {
    editing_ = false;
    inner_->moveFirst();
    at_ = 0;
  }
  void moveNext() {
    editing_ = false;
    inner_->moveNext();
    ++at_;
    if (!inner_->atEnd()) seen_ = std::max(seen_, at_ + 1);
  }
  void moveLast() {
    if (isEmpty()) raiseDao(noCurrentRecord, u"No current record.");
    while (!inner_->atEnd()) moveNext();
    moveTo(seen_ - 1);
  }
  void moveTo(std::int32_t wanted) {
    if (wanted < 0 || isEmpty()) raiseDao(invalidArgument, u"Invalid argument.");
    if (atEnd() || wanted < at_) moveFirst();
    while (at_ < wanted) {
      moveNext();
      if (inner_->atEnd()) raiseDao(invalidArgument, u"Invalid argument.");
    }
  }

  void requireChangeable() const {
    if (!file_->updatable || type_ == snapshot)
      raiseDao(readOnlyDatabase, u"Cannot update. Database or object is read-only.");
  }
  void addNew() {
    requireChangeable();
    inner_->addNew();
    editing_ = adding_ = true;
  }
  void edit() {
    if (atEnd()) raiseDao(noCurrentRecord, u"No current record.");
    requireChangeable();
    inner_->edit();
    editing_ = true;
    adding_ = false;
  }
  void update() {
    requireEditing();
    inner_->update();
    seen_ += adding_ ? 1 : 0;
    editing_ = adding_ = false;
  }
  void close() { inner_.reset(); }

  Value value(std::size_t column) {
    const bool known = adding_ || !atEnd();
    if (!known) raiseDao(noCurrentRecord, u"No current record.");
    return typed(columns_[column], inner_->get(column));
  }
  void setValue(std::size_t position, const Value& value) {
    requireEditing();
    const access::Column& column = columns_[position];
    if (column.autoNumber) raiseDao(notUpdatable, u"Field cannot be updated.");
    inner_->set(column.name, stored(column, value));
  }

 private:
  void requireEditing() const {
    if (!editing_) raiseDao(noUpdateBegun, u"Update or CancelUpdate without AddNew or Edit.");
  }

  // In the type that the column has in an Access file.
  static Value typed(const access::Column& column, Value value) {
    if (automation::isNull(value)) return value;
    switch (column.type) {
      case access::ColumnType::integer:
        return automation::toInteger(value);
      case access::ColumnType::longInteger:
        return automation::toLong(value);
      case access::ColumnType::doubleFloat:
        return std::holds_alternative<std::u16string>(value) ? value : Value(automation::toDouble(value));
      case access::ColumnType::dateTime:
        return automation::Date{text::momentOf(automation::toText(value)).value()};
      case access::ColumnType::text:
      case access::ColumnType::memo:
        return automation::toText(value);
      default:
        return value;
    }
  }

  static Value stored(const access::Column& column, const Value& value) {
    if (std::holds_alternative<ObjectRef>(value) || automation::isMissing(value))
      raiseDao(conversionFailed, u"Data type conversion error.");
    // A workstation with other regional settings than the writer's makes nothing of a date's text.
    if (column.type != access::ColumnType::dateTime || automation::isNull(value)) return value;
    if (!std::holds_alternative<automation::Date>(value))
      raiseDao(conversionFailed, u"Data type conversion error.");
    return automation::toText(value);
  }

  std::shared_ptr<DaoFile> file_;
  std::int32_t type_;
  std::vector<access::Column> columns_;
  std::unique_ptr<database::Recordset> inner_;
  std::int32_t at_ = 0, seen_ = 0;
  bool editing_ = false, adding_ = false;
};
using RowsRef = std::shared_ptr<Rows>;

class FakeField : public DaoObject {
 public:
  FakeField(const DaoWorldRef& shared, RowsRef rows, std::size_t position)
      : DaoObject(shared, "Field"), rows_(std::move(rows)), position_(position) {
    property(u"Name", [this](Arguments) { return Value(column().name); });
    property(u"Type", [this](Arguments) { return Value(daoTypeOf(column())); });
    property(
        u"Value", [this](Arguments) { return rows_->value(position_); },
        [this](Arguments arguments) {
          rows_->setValue(position_, arguments[0].value);
          return Value();
        });
  }

 private:
  void requireOpen() const override { rows_->requireOpen(); }
  const access::Column& column() const { return rows_->columns()[position_]; }

  RowsRef rows_;
  std::size_t position_;
};

class FakeFields : public DaoObject {
 public:
  FakeFields(const DaoWorldRef& shared, RowsRef rows) : DaoObject(shared, "Fields"), rows_(std::move(rows)) {
    collection([this] { return rows_->columns().size(); },
               [this](const Value& key) -> ObjectRef {
                 return std::make_shared<FakeField>(world(), rows_, positionOf(key));
               });
  }

 private:
  void requireOpen() const override { rows_->requireOpen(); }

  std::size_t positionOf(const Value& key) const {
    const auto& columns = rows_->columns();
    const auto* name = std::get_if<std::u16string>(&key);
    for (std::size_t i = 0; i < columns.size(); ++i)
      if (name != nullptr ? text::equalIgnoringCase(columns[i].name, *name)
                          : automation::toLong(key) == static_cast<std::int32_t>(i))
        return i;
    raiseDao(itemNotFound, u"Item not found in this collection.");
  }

  RowsRef rows_;
};

class FakeRecordset : public DaoObject {
 public:
  FakeRecordset(const DaoWorldRef& shared, RowsRef rows)
      : DaoObject(shared, "Recordset"), rows_(std::move(rows)) {
    property(u"EOF", [this](Arguments) { return Value(rows_->atEnd()); });
    property(u"BOF", [this](Arguments) { return Value(rows_->isEmpty()); });
    property(u"RecordCount", [this](Arguments) { return Value(rows_->recordCount()); });
    property(u"Fields",
             [this](Arguments) { return Value(ObjectRef(std::make_shared<FakeFields>(world(), rows_))); });
    property(
        u"AbsolutePosition", [this](Arguments) { return Value(rows_->position()); },
        [this](Arguments arguments) {
          rows_->moveTo(number(arguments, 0, -1));
          return Value();
        });
    step(u"MoveFirst", &Rows::moveFirst);
    step(u"MoveNext", &Rows::moveNext);
    step(u"MoveLast", &Rows::moveLast);
    step(u"AddNew", &Rows::addNew);
    step(u"Edit", &Rows::edit);
    step(u"Update", &Rows::update);
    step(u"Close", &Rows::close);
  }

 private:
  void requireOpen() const override { rows_->requireOpen(); }
  void step(std::u16string name, void (Rows::*action)()) {
    method(std::move(name), 0, 0, [this, action](Arguments) {
      (*rows_.*action)();
      return Value();
    });
  }

  RowsRef rows_;
};

}  // namespace

void requireOpenFile(const DaoFile& file) {
  if (!file.database) raiseDao(objectInvalid, u"Object invalid or no longer set.");
}

std::int16_t daoTypeOf(const access::Column& column) {
  for (const TypeRow& row : types)
    if (row.type == column.type) return row.dao;
  return 0;
}

ObjectRef openDaoRecordset(const DaoWorldRef& world, const std::shared_ptr<DaoFile>& file,
                           const std::u16string& statement, std::int32_t type) {
  return std::make_shared<FakeRecordset>(world, std::make_shared<Rows>(file, statement, type));
}

}  // namespace vordane::fakes
