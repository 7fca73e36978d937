#include "platform/dao/dao_reader.h"

#include <algorithm>
#include <filesystem>
#include <random>

#include "platform/dao/dao_objects.h"
#include "text/utf8.h"

namespace vordane::dao {
namespace {

using automation::byVal;

// Attributes of tables and fields, as DAO numbers them.
constexpr std::uint32_t systemTable = 0x80000002U;
constexpr std::uint32_t attachedTable = 0x60000000U;
constexpr std::uint32_t hiddenTable = 1;
constexpr std::uint32_t autoIncrement = 16;
constexpr std::int16_t openDynaset = 2, openSnapshot = 4;

struct TypeRow {
  std::int16_t dao;
  access::ColumnType type;
};
constexpr TypeRow types[] = {
    {1, access::ColumnType::boolean},
    {2, access::ColumnType::byte},
    {3, access::ColumnType::integer},
    {4, access::ColumnType::longInteger},
    {6, access::ColumnType::single},
    {7, access::ColumnType::doubleFloat},
    {dateFieldType, access::ColumnType::dateTime},
    {10, access::ColumnType::text},
    {12, access::ColumnType::memo},
};

std::int32_t number(const ObjectRef& object, std::u16string_view member) {
  return automation::toLong(get(object, member));
}

ObjectRef item(const ObjectRef& collection, std::int32_t position) {
  return getObject(collection, u"Item", {byVal(position)});
}

access::Column describe(const ObjectRef& field) {
  access::Column column;
  column.name = automation::toText(get(field, u"Name"));
  const auto code = number(field, u"Type");
  const auto* row = std::find_if(std::begin(types), std::end(types),
                                 [&](const TypeRow& known) { return known.dao == code; });
  if (row == std::end(types))
    throw access::AccessError("column " + text::toUtf8(column.name) + " has a type that is not imported");
  column.type = row->type;
  column.size = row->type == access::ColumnType::text ? number(field, u"Size") : 0;
  column.autoNumber = (static_cast<std::uint32_t>(number(field, u"Attributes")) & autoIncrement) != 0;
  return column;
}

access::Table describeTable(const ObjectRef& definition) {
  access::Table table;
  table.name = automation::toText(get(definition, u"Name"));
  const ObjectRef fields = getObject(definition, u"Fields");
  for (std::int32_t i = 0; i < number(fields, u"Count"); ++i)
    table.columns.push_back(describe(item(fields, i)));
  return table;
}

std::vector<Value> readRow(DaoRecordset& rows, const access::Table& table) {
  std::vector<Value> values;
  for (std::size_t i = 0; i < table.columns.size(); ++i)
    values.push_back(rows.read(static_cast<std::int16_t>(i)));
  return values;
}

// The number before the next one: what a row would be given is asked for without adding it.
std::int32_t lastNumberOf(const ObjectRef& database, const access::Table& table, const Value& counter) {
  DaoRecordset rows(getObject(database, u"OpenRecordset",
                              {byVal(u"SELECT * FROM [" + table.name + u"]"), byVal(openDynaset)}));
  call(rows.object(), u"AddNew");
  return automation::toLong(rows.read(counter)) - 1;
}

// Reads the table twice: how many rows and the highest number come first, the rows themselves then.
void readTable(const ObjectRef& database, access::Table table, access::Visitor& visitor) {
  DaoRecordset rows(getObject(database, u"OpenRecordset",
                              {byVal(u"SELECT * FROM [" + table.name + u"]"), byVal(openSnapshot)}));
  const auto some = [&] { return !automation::toBoolean(get(rows.object(), u"EOF")); };
  const auto counted = std::find_if(table.columns.begin(), table.columns.end(),
                                    [](const access::Column& column) { return column.autoNumber; });
  const Value counter = static_cast<std::int16_t>(counted - table.columns.begin());
  if (counted != table.columns.end()) table.lastAutoNumber = lastNumberOf(database, table, counter);
  for (; some(); call(rows.object(), u"MoveNext")) {
    ++table.rowCount;
    if (counted != table.columns.end())
      table.lastAutoNumber = std::max(table.lastAutoNumber, automation::toLong(rows.read(counter)));
  }
  visitor.beginTable(table);
  if (table.rowCount > 0) call(rows.object(), u"MoveFirst");
  for (; some(); call(rows.object(), u"MoveNext")) visitor.row(readRow(rows, table));
  visitor.endTable();
}

// DAO writes into whatever it opens, if only a mark: it gets a copy, in a folder of its own for the file it
// locks with.
class Copy {
 public:
  explicit Copy(std::u16string_view path) {
    namespace fs = std::filesystem;
    const fs::path source(path);
    std::random_device random;
    folder_ = fs::temp_directory_path() /
              ("vordane-access-" + std::to_string(random()) + "-" + std::to_string(random()));
    try {
      fs::create_directory(folder_);
      file_ = folder_ / source.filename();
      fs::copy_file(source, file_);
      fs::permissions(file_, fs::perms::owner_write, fs::perm_options::add);
    } catch (const fs::filesystem_error& failure) {
      remove();
      throw access::AccessError(text::toUtf8(path) +
                                " can't be copied to be read: " + failure.code().message());
    }
  }
  ~Copy() { remove(); }
  Copy(const Copy&) = delete;
  Copy& operator=(const Copy&) = delete;
  std::u16string path() const { return file_.u16string(); }

 private:
  void remove() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }
  std::filesystem::path folder_, file_;
};

class OpenFile {
 public:
  explicit OpenFile(ObjectRef object) : object_(std::move(object)) {}
  ~OpenFile() {
    try {
      call(object_, u"Close");
    } catch (const database::DatabaseError&) {
      // The engine has gone, and the file with it.
    }
  }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  const ObjectRef& object() const { return object_; }

 private:
  ObjectRef object_;
};

bool isUserTable(const ObjectRef& definition) {
  const auto attributes = static_cast<std::uint32_t>(number(definition, u"Attributes"));
  return (attributes & (systemTable | attachedTable | hiddenTable)) == 0;
}

}  // namespace

void readAccessFile(platform::ObjectCreator& creator, std::u16string_view path, access::Visitor& visitor) {
  const Copy copy(path);
  const OpenFile database(openDatabase(creator, copy.path(), false));
  const ObjectRef tables = getObject(database.object(), u"TableDefs");
  for (std::int32_t i = 0; i < number(tables, u"Count"); ++i) {
    const ObjectRef definition = item(tables, i);
    if (isUserTable(definition)) readTable(database.object(), describeTable(definition), visitor);
  }
}

}  // namespace vordane::dao
