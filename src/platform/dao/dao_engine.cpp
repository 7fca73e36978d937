#include "platform/dao/dao_engine.h"

#include <utility>

#include "platform/dao/dao_objects.h"

namespace vordane::dao {
namespace {

using automation::byVal;

constexpr std::int16_t openSnapshot = 4;   // dbOpenSnapshot
constexpr std::int32_t failOnError = 128;  // dbFailOnError: a statement that fails half way changes nothing

Value text(std::u16string_view value) {
  return std::u16string(value);
}

class Rows : public database::Recordset {
 public:
  explicit Rows(ObjectRef object) : rows_(std::move(object)) {}

  bool atEnd() override { return flag(u"EOF"); }
  bool isEmpty() override { return flag(u"BOF") && flag(u"EOF"); }
  // Until its end has been visited, DAO counts the rows it has seen, at least one where there is any.
  std::int32_t recordCount() override { return automation::toLong(get(rows_.object(), u"RecordCount")); }
  void moveFirst() override { call(rows_.object(), u"MoveFirst"); }
  void moveNext() override { call(rows_.object(), u"MoveNext"); }
  Value get(std::u16string_view column) override { return rows_.read(text(column)); }
  Value get(std::size_t column) override { return rows_.read(static_cast<std::int16_t>(column)); }
  bool isDate(std::u16string_view column) override {
    return automation::toInteger(dao::get(rows_.field(text(column)), u"Type")) == dateFieldType;
  }
  void set(std::u16string_view column, const Value& value) override {
    put(rows_.field(text(column)), u"Value", value);
  }
  void addNew() override { call(rows_.object(), u"AddNew"); }
  void edit() override { call(rows_.object(), u"Edit"); }
  void update() override { call(rows_.object(), u"Update"); }
  void close() override { rows_.close(); }

 private:
  static Value get(const ObjectRef& object, std::u16string_view member) { return dao::get(object, member); }
  bool flag(std::u16string_view member) { return automation::toBoolean(get(rows_.object(), member)); }

  DaoRecordset rows_;
};

// A snapshot, which keeps its rows in order; a row is reached by its position.
class Snapshot : public database::RowList {
 public:
  Snapshot(ObjectRef object, std::span<const std::u16string_view> columns) : rows_(std::move(object)) {
    for (const auto column : columns) columns_.push_back(text(column));
    if (automation::toBoolean(get(rows_.object(), u"EOF"))) return;
    // Only at the end does DAO know how many there are.
    call(rows_.object(), u"MoveLast");
    size_ = static_cast<std::size_t>(automation::toLong(get(rows_.object(), u"RecordCount")));
  }

  std::size_t size() const override { return size_; }

  bool fetch(std::size_t position, std::vector<Value>& out) override {
    if (position >= size_) return false;
    put(rows_.object(), u"AbsolutePosition", static_cast<std::int32_t>(position));
    out.clear();
    for (const Value& column : columns_) out.push_back(rows_.read(column));
    return true;
  }

 private:
  DaoRecordset rows_;
  std::vector<Value> columns_;
  std::size_t size_ = 0;
};

class File : public database::Database {
 public:
  explicit File(ObjectRef object) : object_(std::move(object)) {}
  ~File() override {
    try {
      call(object_, u"Close");
    } catch (const database::DatabaseError&) {
      // The engine's process has gone, and the file with it.
    }
  }
  File(const File&) = delete;
  File& operator=(const File&) = delete;

  std::unique_ptr<database::Recordset> openRecordset(std::u16string_view statement) override {
    return std::make_unique<Rows>(getObject(object_, u"OpenRecordset", {byVal(text(statement))}));
  }
  std::unique_ptr<database::RowList> openRowList(std::u16string_view statement,
                                                 std::span<const std::u16string_view> columns) override {
    return std::make_unique<Snapshot>(
        getObject(object_, u"OpenRecordset", {byVal(text(statement)), byVal(openSnapshot)}), columns);
  }
  void execute(std::u16string_view statement) override {
    call(object_, u"Execute", {byVal(text(statement)), byVal(failOnError)});
  }

  // Each row is saved as it is added: there is nothing to gather.
  void beginBatch() override {}
  void checkpoint() override {}
  void endBatch() override {}
  // A statement runs in the engine, which does not report how far it is.
  void setProgress(std::function<void()>) override {}

 private:
  ObjectRef object_;
};

class DaoEngine : public database::Engine {
 public:
  explicit DaoEngine(platform::ObjectCreator& creator) : creator_(creator) {}

  std::unique_ptr<database::Database> open(std::u16string_view path, bool readOnly) override {
    if (!engine_) engine_ = createEngine(creator_);
    return std::make_unique<File>(openDatabase(engine_, path, readOnly));
  }

 private:
  platform::ObjectCreator& creator_;
  ObjectRef engine_;
};

}  // namespace

std::unique_ptr<database::Engine> makeEngine(platform::ObjectCreator& creator) {
  return std::make_unique<DaoEngine>(creator);
}

}  // namespace vordane::dao
