#include "capsule/capsule.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

#include "database_files.h"
#include "lines.h"
#include "platform/database_numbers.h"
#include "platform/engine_choice.h"
#include "text/dates.h"
#include "text/text.h"
#include "text/utf8.h"
#include "tools/sqlite/table_reader.h"

namespace vordane::tools {
namespace {

using database::ColumnType;

constexpr std::u16string_view aboutTable = u"About", traceTable = u"Trace", settingTable = u"Settings",
                              receiptTable = u"Receipts", reportTable = u"Report", between = u" in ";

constexpr database::ColumnDefinition aboutColumns[] = {{u"Name", ColumnType::text},
                                                       {u"Value", ColumnType::text}};
constexpr database::ColumnDefinition traceColumns[] = {
    {u"Line", ColumnType::integer}, {u"File", ColumnType::text}, {u"Text", ColumnType::text}};
constexpr database::ColumnDefinition settingColumns[] = {
    {u"Section", ColumnType::text}, {u"Key", ColumnType::text}, {u"Value", ColumnType::text}};
constexpr database::ColumnDefinition textColumns[] = {{u"Text", ColumnType::text}};
constexpr database::TableDefinition ownTables[] = {{aboutTable, aboutColumns},
                                                   {traceTable, traceColumns},
                                                   {settingTable, settingColumns},
                                                   {receiptTable, textColumns},
                                                   {reportTable, textColumns}};

ColumnType typeOf(const access::Column& column) {
  switch (column.type) {
    case access::ColumnType::boolean:
      return ColumnType::yesNo;
    case access::ColumnType::byte:
    case access::ColumnType::integer:
    case access::ColumnType::longInteger:
      return column.autoNumber ? ColumnType::autoNumber : ColumnType::integer;
    case access::ColumnType::single:
    case access::ColumnType::doubleFloat:
      return ColumnType::number;
    case access::ColumnType::dateTime:
      return ColumnType::dateTime;
    case access::ColumnType::text:
    case access::ColumnType::memo:
      break;
  }
  return ColumnType::text;
}

void createTable(DatabaseWriter& writer, std::u16string_view name, const access::Table& table) {
  std::vector<database::ColumnDefinition> columns;
  for (const access::Column& column : table.columns) columns.push_back({column.name, typeOf(column)});
  writer.createTable({name, columns});
}

// A moment as a column of times takes it.
void insertRow(DatabaseWriter& writer, std::u16string_view table, std::vector<access::Value>& values) {
  for (access::Value& value : values)
    if (const auto* moment = std::get_if<automation::Date>(&value)) value = text::isoMoment(moment->days);
  writer.insert(table, values);
}

// The databases that a suite may have; a capsule names no other.
bool isSuiteFile(std::u16string_view name) {
  for (const std::u16string_view known :
       {u"FAULT.MDB", u"VORDANE.LNG", u"Common.LNG", u"Register.mdb", u"Schedule.mdb"})
    if (name == known) return true;
  constexpr std::u16string_view begin = u"VORDANE.", end = u".LNG";
  constexpr std::size_t longest = 8;  // "pt-BR"
  if (name.size() <= begin.size() + end.size() || !name.starts_with(begin) || !name.ends_with(end))
    return false;
  const std::u16string_view language = name.substr(begin.size(), name.size() - begin.size() - end.size());
  return language.size() <= longest && std::all_of(language.begin(), language.end(), [](char16_t c) {
           return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || c == u'-';
         });
}

struct Place {
  std::u16string table, file;
};
// Nothing for the capsule's own tables.
std::optional<Place> placeOf(const std::u16string& name) {
  const std::size_t at = name.rfind(between);
  if (at == name.npos) return {};
  return Place{name.substr(0, at), name.substr(at + between.size())};
}

std::string textIn(const access::Value& value) {
  return automation::isNull(value) ? std::string{} : text::toUtf8(automation::toText(value));
}

class Reader : public access::Visitor {
 public:
  explicit Reader(Capsule& capsule) : capsule_(capsule) {}

  void beginTable(const access::Table& table) override {
    name_ = table.name;
    columns_ = table.columns.size();
    if (const auto place = placeOf(name_)) {
      if (!isSuiteFile(place->file))
        throw ToolError("it holds a table of \"" + text::toUtf8(place->file) +
                        "\", which is no file of a suite");
      rows_ = &capsule_.rows[text::toUtf8(name_)];
      return;
    }
    rows_ = nullptr;
    for (const database::TableDefinition& own : ownTables)
      if (own.name == name_ && own.columns.size() != columns_)
        throw ToolError("its table " + text::toUtf8(name_) + " has not the columns of a capsule");
  }
  void row(const std::vector<access::Value>& values) override {
    if (rows_ != nullptr)
      ++*rows_;
    else if (name_ == aboutTable)
      capsule_.about[textIn(values.at(0))] = textIn(values.at(1));
    else if (name_ == traceTable)
      capsule_.trace.push_back({textIn(values.at(1)), textIn(values.at(2))});
    else if (name_ == reportTable)
      capsule_.report.push_back(textIn(values.at(0)));
  }
  void endTable() override {}

 private:
  Capsule& capsule_;
  std::u16string name_;
  std::size_t columns_ = 0;
  std::size_t* rows_ = nullptr;
};

class Unpacker : public access::Visitor {
 public:
  explicit Unpacker(const std::filesystem::path& folder) : folder_(folder) {}

  void beginTable(const access::Table& table) override {
    const auto place = placeOf(table.name);
    writer_ = nullptr;
    if (!place) return;
    if (!isSuiteFile(place->file)) throw ToolError("it names a file that no suite has");
    auto& writer = writers_[place->file];
    if (!writer) writer = std::make_unique<DatabaseWriter>((folder_ / place->file).u16string());
    writer_ = writer.get();
    name_ = place->table;
    createTable(*writer_, name_, table);
    last_ = table.lastAutoNumber;
  }
  void row(const std::vector<access::Value>& values) override {
    if (writer_ == nullptr) return;
    values_ = values;
    insertRow(*writer_, name_, values_);
  }
  void endTable() override {
    if (writer_ != nullptr && last_ != 0) writer_->setLastAutoNumber(name_, last_);
  }
  std::vector<std::filesystem::path> finish() {
    std::vector<std::filesystem::path> made;
    for (auto& [file, writer] : writers_) {
      writer->finish();
      made.push_back(folder_ / file);
    }
    return made;
  }

 private:
  const std::filesystem::path& folder_;
  std::map<std::u16string, std::unique_ptr<DatabaseWriter>> writers_;
  DatabaseWriter* writer_ = nullptr;
  std::u16string name_;
  std::vector<access::Value> values_;
  std::int32_t last_ = 0;  // as above
};

// What can't be read of a capsule, with its name in front.
template <typename Step>
auto readingCapsule(const std::filesystem::path& path, Step step) {
  const std::string name = text::toUtf8(path.u16string());
  if (database::fileKind(path.u16string()) != database::FileKind::embedded)
    throw ToolError(name + ": this is no capsule");
  try {
    return step();
  } catch (const database::DatabaseError& failure) {
    throw ToolError(failureText(name, failure));
  } catch (const automation::AutomationError&) {
    throw ToolError(name + ": a value in it is not what a capsule has there");
  } catch (const ToolError& failure) {
    throw ToolError(name + ": " + failure.what());
  }
}

}  // namespace

CapsuleWriter::CapsuleWriter(const std::filesystem::path& path) : writer_(path.u16string()) {
  writer_.createTables(ownTables);
  about("Format", std::to_string(capsuleFormat));
}

void CapsuleWriter::insert(std::u16string_view table, std::initializer_list<std::string_view> texts) {
  std::vector<access::Value> row;
  for (const std::string_view text : texts) row.emplace_back(text::fromUtf8(text));
  writer_.insert(table, row);
}

void CapsuleWriter::about(std::string_view name, std::string_view value) {
  insert(aboutTable, {name, value});
}

void CapsuleWriter::traceLine(std::string_view file, std::string_view text) {
  const access::Value row[] = {++lines_, text::fromUtf8(file), text::fromUtf8(text)};
  writer_.insert(traceTable, row);
}

void CapsuleWriter::setting(std::u16string_view section, std::u16string_view key, std::u16string_view value) {
  const access::Value row[] = {std::u16string(section), std::u16string(key), std::u16string(value)};
  writer_.insert(settingTable, row);
}

void CapsuleWriter::receipt(std::string_view json) {
  insert(receiptTable, {json});
}

void CapsuleWriter::reportLine(std::string_view text) {
  insert(reportTable, {text});
}

access::Visitor& CapsuleWriter::tablesOf(std::string_view file) {
  tables_.file = text::fromUtf8(file);
  return tables_;
}

void CapsuleWriter::finish() {
  about("Complete", "1");
  writer_.finish();
}

void CapsuleWriter::Tables::beginTable(const access::Table& table) {
  name_ = table.name;
  name_ += between;
  name_ += file;
  createTable(writer_, name_, table);
  lastAutoNumber_ = table.lastAutoNumber;
}

void CapsuleWriter::Tables::endTable() {
  if (lastAutoNumber_ != 0) writer_.setLastAutoNumber(name_, lastAutoNumber_);
}

void CapsuleWriter::Tables::row(const std::vector<access::Value>& values) {
  values_ = values;
  insertRow(writer_, name_, values_);
}

Capsule readCapsule(const std::filesystem::path& path) {
  return readingCapsule(path, [&] {
    Capsule capsule;
    Reader reader(capsule);
    readTables(path.u16string(), reader);
    const auto value = [&](const char* name) {
      const auto found = capsule.about.find(name);
      return found == capsule.about.end() ? std::string{} : found->second;
    };
    const std::string format = value("Format");
    if (format.empty()) throw ToolError("this is no capsule");
    if (format != std::to_string(capsuleFormat))
      throw ToolError("it has format " + format + ", made by version " + value("Version") +
                      ": open it with that version or a later one");
    if (value("Complete") != "1") throw ToolError("it is not whole");
    return capsule;
  });
}

std::vector<std::filesystem::path> unpackDatabases(const std::filesystem::path& capsule,
                                                   const std::filesystem::path& folder) {
  readCapsule(capsule);  // nothing is written of one that is not right
  return readingCapsule(capsule, [&] {
    Unpacker unpacker(folder);
    readTables(capsule.u16string(), unpacker);
    return unpacker.finish();
  });
}

}  // namespace vordane::tools
