#include "platform/dao/dao_engine.h"

#include <chrono>
#include <thread>
#include <utility>

#include "platform/dao/dao_objects.h"
#include "platform/database_numbers.h"
#include "platform/jet.h"
#include "platform/stored_values.h"

namespace vordane::dao {
namespace {

using automation::byVal;
namespace number = database::number;

constexpr std::int16_t openDynaset = 2;    // dbOpenDynaset: holds the rows' keys and fetches the rows
constexpr std::int32_t failOnError = 128;  // dbFailOnError: a statement that fails half way changes nothing

// The engine's numbers that callers of this interface know by another one, or act upon here.
constexpr int pathNotValid = 3044;
constexpr int openedExclusively = 3356;
constexpr int inUse = 3045;

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
  Value get(std::u16string_view column) override { return database::limitedValue(rows_.read(text(column))); }
  Value get(std::size_t column) override {
    return database::limitedValue(rows_.read(static_cast<std::int16_t>(column)));
  }
  bool isDate(std::u16string_view column) override { return rows_.isDate(text(column)); }
  void set(std::u16string_view column, Value value) override { rows_.write(text(column), value); }
  void addNew() override { call(rows_.object(), u"AddNew"); }
  void edit() override { call(rows_.object(), u"Edit"); }
  void update() override { call(rows_.object(), u"Update"); }
  void close() override { rows_.close(); }

 private:
  static Value get(const ObjectRef& object, std::u16string_view member) { return dao::get(object, member); }
  bool flag(std::u16string_view member) { return automation::toBoolean(get(rows_.object(), member)); }

  DaoRecordset rows_;
};

// The rows keep their order and their places; one that was deleted meanwhile can't be read any more.
class List : public database::RowList {
 public:
  List(ObjectRef object, std::span<const std::u16string_view> columns) : rows_(std::move(object)) {
    for (const auto column : columns) columns_.push_back(text(column));
    if (automation::toBoolean(dao::get(rows_.object(), u"EOF"))) return;
    // Only at the end does DAO know how many there are.
    call(rows_.object(), u"MoveLast");
    size_ = static_cast<std::size_t>(automation::toLong(dao::get(rows_.object(), u"RecordCount")));
  }

  std::size_t size() const override { return size_; }
  database::NoNotes noNotes() const override { return database::NoNotes::accessFile; }

  bool fetch(std::size_t position, std::vector<Value>& out) override {
    out.clear();
    if (position >= size_) return false;
    try {
      put(rows_.object(), u"AbsolutePosition", static_cast<std::int32_t>(position));
      for (const Value& column : columns_) out.push_back(database::limitedValue(rows_.read(column)));
    } catch (const database::DatabaseError& error) {
      if (error.number() != number::recordGone) throw;
      out.clear();
      return false;
    }
    return true;
  }

 private:
  DaoRecordset rows_;
  std::vector<Value> columns_;
  std::size_t size_ = 0;
};

// Before a statement reaches the engine its shape is looked at: values are joined to it as they came, and the
// engine would run what they make of it, in other files too.
class File : public database::Database {
 public:
  File(ObjectRef object, std::shared_ptr<const jet::Documented> documented)
      : object_(std::move(object)), documented_(std::move(documented)) {}
  ~File() override { close(); }
  File(const File&) = delete;
  File& operator=(const File&) = delete;

  // A file that may not be changed opens all the same, and says so here.
  void requireUpdatable() const {
    if (!automation::toBoolean(dao::get(object_, u"Updatable")))
      throw database::DatabaseError(number::noPermission, u"The database is read-only.");
  }

  // A table that lies in another file, or a query that stands for one, would be read and changed in its
  // place.
  void requireTablesOfItsOwn() const {
    constexpr std::uint32_t attached = 0x60000000U;  // dbAttachedTable and dbAttachedODBC
    forEach(u"TableDefs", [](const ObjectRef& table, const std::u16string& name) {
      const auto attributes = static_cast<std::uint32_t>(automation::toLong(dao::get(table, u"Attributes")));
      if ((attributes & attached) != 0) refuse(name);
    });
    forEach(u"QueryDefs", [](const ObjectRef&, const std::u16string& name) { refuse(name); });
  }

  std::unique_ptr<database::Recordset> openRecordset(const database::Statement& statement) override {
    return std::make_unique<Rows>(getObject(object_, u"OpenRecordset", {byVal(documented(statement))}));
  }
  std::unique_ptr<database::RowList> openRowList(const database::Statement& statement,
                                                 std::span<const std::u16string_view> columns) override {
    return std::make_unique<List>(
        getObject(object_, u"OpenRecordset", {byVal(documented(statement)), byVal(openDynaset)}), columns);
  }
  void execute(const database::Statement& statement) override {
    call(object_, u"Execute", {byVal(documented(statement)), byVal(failOnError)});
  }

  // Each row is saved as it is added: there is nothing to gather.
  void beginBatch() override {}
  void checkpoint() override {}
  void endBatch() override {}
  // A statement runs in the engine, which does not report how far it is.
  void setProgress(Progress) override {}

  void close() noexcept override {
    if (std::exchange(closed_, true)) return;
    try {
      call(object_, u"Close");
    } catch (const database::DatabaseError&) {
      // The engine's process has gone, and the file with it.
    }
  }

 private:
  // The statement's text, which the engine runs as it stands.
  std::u16string documented(const database::Statement& statement) {
    std::u16string text = statement.text();
    documented_->require(text, lifted_);
    return text;
  }
  // Those under a described name.
  template <class Look>
  void forEach(std::u16string_view collection, const Look& look) const {
    const ObjectRef all = getObject(object_, collection);
    const std::int32_t count = automation::toLong(dao::get(all, u"Count"));
    for (std::int32_t i = 0; i < count; ++i) {
      const ObjectRef one = getObject(all, u"Item", {byVal(i)});
      const std::u16string name = automation::toText(dao::get(one, u"Name"));
      if (documented_->hasTable(name)) look(one, name);
    }
  }
  [[noreturn]] static void refuse(const std::u16string& name) {
    throw database::DatabaseError(number::notADatabase,
                                  u"Not a table of the database's own: '" + name + u"'.");
  }

  ObjectRef object_;
  std::shared_ptr<const jet::Documented> documented_;
  jet::Lifted lifted_;  // keeps its memory between statements
  bool closed_ = false;
};

class DaoEngine : public database::Engine {
 public:
  DaoEngine(database::Descriptions descriptions, platform::ObjectCreator& creator,
            std::chrono::milliseconds lockWait)
      : documented_(std::make_shared<const jet::Documented>(descriptions)),
        creator_(creator),
        lockWait_(lockWait) {}

  std::unique_ptr<database::Database> open(std::u16string_view path, bool readOnly) override {
    if (!engine_) engine_ = createEngine(creator_);
    auto file = std::make_unique<File>(openPatiently(path, readOnly), documented_);
    if (!readOnly) file->requireUpdatable();
    file->requireTablesOfItsOwn();
    return file;
  }

 private:
  // A program that has the file exclusively, as Access does while it repairs one, may be about to close it.
  ObjectRef openPatiently(std::u16string_view path, bool readOnly) {
    const auto end = std::chrono::steady_clock::now() + lockWait_;
    for (;;) {
      try {
        return openDatabase(engine_, path, readOnly);
      } catch (const database::DatabaseError& error) {
        if (error.number() == pathNotValid)
          throw database::DatabaseError(number::fileNotFound, error.description());
        if (error.number() != inUse && error.number() != openedExclusively) throw;
        if (std::chrono::steady_clock::now() >= end)
          throw database::DatabaseError(number::locked, error.description());
      }
      std::this_thread::sleep_for(lockWait_ / 20);
    }
  }

  std::shared_ptr<const jet::Documented> documented_;
  platform::ObjectCreator& creator_;
  std::chrono::milliseconds lockWait_;
  ObjectRef engine_;
};

}  // namespace

std::unique_ptr<database::Engine> makeEngine(database::Descriptions descriptions,
                                             platform::ObjectCreator& creator,
                                             std::chrono::milliseconds lockWait) {
  return std::make_unique<DaoEngine>(descriptions, creator, lockWait);
}

}  // namespace vordane::dao
