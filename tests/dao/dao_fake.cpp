#include "dao/dao_fake.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>

#include "dao/dao_recordset.h"
#include "platform/engine_choice.h"
#include "startup/databases.h"
#include "text/text.h"
#include "text/utf8.h"
#include "tools/sqlite/table_reader.h"

namespace vordane::fakes {
namespace {

using automation::ObjectRef;

constexpr int itemNotFound = 3265, pathNotValid = 3044, openedExclusively = 3356;
constexpr std::int32_t systemObject = static_cast<std::int32_t>(0x80000002U), autoIncrement = 16;

// A field or table definition of a collection, by name or position.
template <class Items>
std::size_t positionOf(const Items& items, const Value& key) {
  if (const auto* name = std::get_if<std::u16string>(&key)) {
    for (std::size_t i = 0; i < items.size(); ++i)
      if (text::equalIgnoringCase(items[i].name, *name)) return i;
    raiseDao(itemNotFound, u"Item not found in this collection.");
  }
  const std::int32_t position = automation::toLong(key);
  if (position < 0 || position >= static_cast<std::int32_t>(items.size()))
    raiseDao(itemNotFound, u"Item not found in this collection.");
  return static_cast<std::size_t>(position);
}

class FieldDefinition : public DaoObject {
 public:
  FieldDefinition(const DaoWorldRef& world, const access::Column& column) : DaoObject(world, "Field") {
    property(u"Name", [column](Arguments) { return Value(column.name); });
    property(u"Type", [column](Arguments) { return Value(daoTypeOf(column)); });
    property(u"Size", [column](Arguments) { return Value(column.size); });
    property(u"Attributes",
             [column](Arguments) { return Value(column.autoNumber ? autoIncrement + 1 : std::int32_t{2}); });
  }
};

class FieldDefinitions : public DaoObject {
 public:
  FieldDefinitions(const DaoWorldRef& world, const access::Table& table) : DaoObject(world, "Fields") {
    collection([table] { return table.columns.size(); },
               [world, table](const Value& key) -> ObjectRef {
                 const auto& column = table.columns[positionOf(table.columns, key)];
                 return std::make_shared<FieldDefinition>(world, column);
               });
  }
};

class TableDefinition : public DaoObject {
 public:
  TableDefinition(const DaoWorldRef& world, const access::Table& table) : DaoObject(world, "TableDef") {
    property(u"Name", [table](Arguments) { return Value(table.name); });
    std::int32_t attributes = table.name.starts_with(u"MSys") ? systemObject : 0;
    if (const auto found = world->attached.find(table.name); found != world->attached.end())
      attributes = static_cast<std::int32_t>(found->second);
    property(u"Attributes", [attributes](Arguments) { return Value(attributes); });
    property(u"Fields", [world, table](Arguments) {
      return Value(ObjectRef(std::make_shared<FieldDefinitions>(world, table)));
    });
  }
};

class TableDefinitions : public DaoObject {
 public:
  TableDefinitions(const DaoWorldRef& world, std::vector<access::Table> tables)
      : DaoObject(world, "TableDefs") {
    // The engine's own catalogue stands among the others.
    tables.insert(tables.begin() + (tables.empty() ? 0 : 1),
                  access::Table{u"MSysObjects", {{u"Id", access::ColumnType::longInteger, 0, false}}, 0, 0});
    collection([tables] { return tables.size(); },
               [world, tables](const Value& key) -> ObjectRef {
                 return std::make_shared<TableDefinition>(world, tables[positionOf(tables, key)]);
               });
  }
};

class QueryDefinition : public DaoObject {
 public:
  QueryDefinition(const DaoWorldRef& world, std::u16string name) : DaoObject(world, "QueryDef") {
    property(u"Name", [name](Arguments) { return Value(name); });
  }
};

class QueryDefinitions : public DaoObject {
 public:
  explicit QueryDefinitions(const DaoWorldRef& shared) : DaoObject(shared, "QueryDefs") {
    collection([this] { return world()->queries.size(); },
               [this](const Value& key) -> ObjectRef {
                 const auto position = static_cast<std::size_t>(automation::toLong(key));
                 if (position >= world()->queries.size())
                   raiseDao(itemNotFound, u"Item not found in this collection.");
                 return std::make_shared<QueryDefinition>(world(), world()->queries[position]);
               });
  }
};

// An Access file of this world is an embedded one behind a first page that begins as Access's do. While it is
// open what stands behind that page lies in a file of its own; at its closing it goes back.
class InnerFile {
 public:
  explicit InnerFile(std::u16string path) : outer_(std::move(path)) {
    std::string bytes = bytesOf(outer_);
    if (database::fileKind(outer_) != database::FileKind::access) return;
    inner_ = outer_ + u".inner";
    page_ = bytes.substr(0, pageSize);
    std::ofstream(std::filesystem::path(*inner_), std::ios::binary) << bytes.substr(pageSize);
  }
  ~InnerFile() {
    if (!inner_) return;
    if (changed) std::ofstream(std::filesystem::path(outer_), std::ios::binary) << page_ << bytesOf(*inner_);
    std::error_code ignored;
    std::filesystem::remove(*inner_, ignored);
  }
  InnerFile(const InnerFile&) = delete;
  InnerFile& operator=(const InnerFile&) = delete;
  const std::u16string& path() const { return inner_ ? *inner_ : outer_; }

  // Whoever opens a file that is open already gets the same.
  static std::shared_ptr<InnerFile> open(const std::u16string& path) {
    static std::map<std::u16string, std::weak_ptr<InnerFile>> all;
    auto file = all[path].lock();
    if (!file) all[path] = file = std::make_shared<InnerFile>(path);
    return file;
  }

  bool changed = false;

 private:
  static constexpr std::size_t pageSize = 4096;
  static std::string bytesOf(const std::u16string& path) {
    std::ifstream in(std::filesystem::path(path), std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }
  std::u16string outer_;
  std::optional<std::u16string> inner_;
  std::string page_;
};

class FakeDatabase : public DaoObject {
 public:
  FakeDatabase(const DaoWorldRef& world, std::u16string path, bool readOnly)
      : DaoObject(world, "Database"), file_(std::make_shared<DaoFile>()), path_(std::move(path)) {
    // DAO opens what it may not write to, and says so by Updatable.
    file_->updatable = !readOnly && !world->writeProtected.contains(path_);
    inner_ = InnerFile::open(path_);
    inner_->changed |= file_->updatable;
    file_->database = sqlite::makeEngine(startup::databases)->open(inner_->path(), !file_->updatable);
    file_->tables = tools::describeTables(inner_->path());
    define();
  }
  ~FakeDatabase() override { close(); }

 private:
  void requireOpen() const override { requireOpenFile(*file_); }

  void define() {
    property(u"Name", [this](Arguments) { return Value(path_); });
    property(u"Updatable", [this](Arguments) { return Value(file_->updatable); });
    property(u"TableDefs", [this](Arguments) {
      return Value(ObjectRef(std::make_shared<TableDefinitions>(world(), file_->tables)));
    });
    property(u"QueryDefs",
             [this](Arguments) { return Value(ObjectRef(std::make_shared<QueryDefinitions>(world()))); });
    method(u"OpenRecordset", 1, 4, [this](Arguments arguments) {
      world()->statements.push_back(text(arguments, 0));
      const std::int32_t type = number(arguments, 1, dynaset);
      number(arguments, 2, 0);
      number(arguments, 3, 0);
      return Value(openDaoRecordset(world(), file_, text(arguments, 0), type));
    });
    method(u"Execute", 1, 2, [this](Arguments arguments) {
      number(arguments, 1, 0);
      world()->statements.push_back(text(arguments, 0));
      file_->database->execute(text(arguments, 0));
      return Value();
    });
    method(u"Close", 0, 0, [this](Arguments) {
      close();
      return Value();
    });
  }

  void close() {
    file_->database.reset();
    inner_.reset();
  }

  std::shared_ptr<DaoFile> file_;
  std::shared_ptr<InnerFile> inner_;
  std::u16string path_;
};

class FakeWorkspace : public DaoObject {
 public:
  explicit FakeWorkspace(const DaoWorldRef& shared) : DaoObject(shared, "Workspace") {
    method(u"OpenDatabase", 1, 4, [this](Arguments arguments) {
      flag(arguments, 1, false);
      leftOut(arguments, 3);
      return open(text(arguments, 0), flag(arguments, 2, false));
    });
  }

 private:
  Value open(const std::u16string& path, bool readOnly) {
    std::error_code failure;
    if (!std::filesystem::exists(std::filesystem::path(path).parent_path(), failure))
      raiseDao(pathNotValid, u"'" + path + u"' isn't a valid path.");
    if (const auto holder = world()->held.find(path); holder != world()->held.end() && holder->second > 0) {
      --holder->second;
      raiseDao(openedExclusively, u"The file is opened exclusively by another user.");
    }
    return ObjectRef(std::make_shared<FakeDatabase>(world(), path, readOnly));
  }
};

class FakeWorkspaces : public DaoObject {
 public:
  explicit FakeWorkspaces(const DaoWorldRef& shared) : DaoObject(shared, "Workspaces") {
    collection([] { return std::size_t{1}; },
               [this](const Value& key) -> ObjectRef {
                 if (automation::toLong(key) != 0)
                   raiseDao(itemNotFound, u"Item not found in this collection.");
                 return std::make_shared<FakeWorkspace>(world());
               });
  }
};

class FakeEngine : public DaoObject {
 public:
  explicit FakeEngine(const DaoWorldRef& shared) : DaoObject(shared, "DBEngine") {
    property(u"Workspaces",
             [this](Arguments) { return Value(ObjectRef(std::make_shared<FakeWorkspaces>(world()))); });
    property(u"Version", [](Arguments) { return Value(std::u16string(u"12.0")); });
    property(u"TestMisuse", [this](Arguments) {
      std::string lines;
      for (const std::string& line : world()->misuse) lines += line + "\n";
      return Value(text::fromUtf8(lines));
    });
  }
};

}  // namespace

ObjectRef makeDaoEngine(const DaoWorldRef& world) {
  return std::make_shared<FakeEngine>(world);
}

ObjectRef DaoWorkstation::create(std::u16string_view progId) {
  asked.emplace_back(progId);
  constexpr auto notRegistered = static_cast<std::int32_t>(0x80040154);
  if (progId != installed_) throw automation::AutomationError(notRegistered);
  return makeDaoEngine(world);
}

}  // namespace vordane::fakes
