#include "import_suite.h"

#include <algorithm>
#include <optional>
#include <set>
#include <span>
#include <utility>

#include "database_files.h"
#include "language/language_databases.h"
#include "lines.h"
#include "platform/engine_choice.h"
#include "settings/suite_databases.h"
#include "store/fault_database.h"
#include "text/dates.h"
#include "text/text.h"
#include "text/utf8.h"
#include "tools/sqlite/database_writer.h"

namespace vordane::tools {
namespace {

namespace fs = std::filesystem;

struct SuiteFile {
  std::u16string_view name;
  std::span<const database::TableDefinition> tables;  // those it must have
};
constexpr SuiteFile suiteFiles[] = {{u"FAULT.MDB", store::faultTables},
                                    {u"VORDANE.LNG", language::ownTables},
                                    {u"Common.LNG", language::commonTables},
                                    {u"Register.mdb", settings::registrationTables},
                                    {u"Schedule.mdb", settings::scheduleTables}};

constexpr const char* importEnding = ".import";

const SuiteFile* suiteFile(const fs::path& path) {
  const std::u16string name = path.filename().u16string();
  const auto* found = std::find_if(std::begin(suiteFiles), std::end(suiteFiles), [&](const SuiteFile& file) {
    return text::equalIgnoringCase(file.name, name);
  });
  return found == std::end(suiteFiles) ? nullptr : found;
}

database::ColumnType columnType(const access::Column& column) {
  switch (column.type) {
    case access::ColumnType::boolean:
      return database::ColumnType::yesNo;
    case access::ColumnType::byte:
    case access::ColumnType::integer:
    case access::ColumnType::longInteger:
      return column.autoNumber ? database::ColumnType::autoNumber : database::ColumnType::integer;
    case access::ColumnType::single:
    case access::ColumnType::doubleFloat:
      return database::ColumnType::number;
    case access::ColumnType::dateTime:
      return database::ColumnType::dateTime;
    case access::ColumnType::text:
    case access::ColumnType::memo:
      break;
  }
  return database::ColumnType::text;
}

// Writes what it hears into a new embedded file.
class Import : public access::Visitor {
 public:
  explicit Import(const fs::path& target) : writer_(target.u16string(), true) {}

  void beginTable(const access::Table& table) override {
    table_ = table;
    rows_ = 0;
    std::vector<database::ColumnDefinition> columns;
    for (const access::Column& column : table_.columns) columns.push_back({column.name, columnType(column)});
    writer_.createTable({table_.name, columns});
  }

  void row(const std::vector<access::Value>& values) override {
    values_ = values;
    for (access::Value& value : values_)
      if (const auto* moment = std::get_if<automation::Date>(&value)) value = text::isoMoment(moment->days);
    writer_.insert(table_.name, values_);
    ++rows_;
  }

  void endTable() override {
    const std::string name = text::toUtf8(table_.name);
    if (rows_ != table_.rowCount) throw access::AccessError("table " + name + ": not every row arrived");
    const bool counts = std::any_of(table_.columns.begin(), table_.columns.end(),
                                    [](const access::Column& column) { return column.autoNumber; });
    if (counts) writer_.setLastAutoNumber(table_.name, table_.lastAutoNumber);
    tables_.push_back({name, rows_});
  }

  std::vector<ImportedTable> finish() {
    writer_.finish();
    return std::move(tables_);
  }

 private:
  DatabaseWriter writer_;
  access::Table table_;
  std::vector<access::Value> values_;
  std::uint32_t rows_ = 0;
  std::vector<ImportedTable> tables_;
};

fs::path withEnding(const fs::path& path, std::string_view ending) {
  fs::path result = path;
  result += ending;
  return result;
}

// A name beside `path` that nothing has yet.
fs::path keptName(const fs::path& path) {
  fs::path kept = withEnding(path, ".access");
  for (int i = 2; fs::exists(kept); ++i) kept = withEnding(path, ".access-" + std::to_string(i));
  return kept;
}

// Files written beside their places; gone again unless they took them.
class Pending {
 public:
  Pending() = default;
  Pending(const Pending&) = delete;
  Pending& operator=(const Pending&) = delete;
  ~Pending() {
    std::error_code ignored;
    for (const fs::path& file : files_) fs::remove(file, ignored);
  }
  void add(const fs::path& file) { files_.insert(file); }

 private:
  std::set<fs::path> files_;
};

// At no moment is there no file under the name: the Access file gets a second name, then the new file takes
// the first one over. A file that another program holds can't lose a second name either, so the name it has
// is tried first.
void takePlace(const fs::path& written, ImportedFile& file, const platform::Pause& pause) {
  const fs::path kept = keptName(file.path);
  std::error_code failure = platform::moveFile(file.path, file.path, pause);
  if (!failure) {
    fs::create_hard_link(file.path, kept, failure);
    if (failure) fs::copy_file(file.path, kept, failure);
    if (!failure) failure = platform::moveFile(written, file.path, pause);
    if (!failure) {
      file.kept = kept;
      return;
    }
    platform::removeFile(kept, pause);
  }
  throw ToolError(
      text::toUtf8(file.path.u16string()) + ": can't be replaced (" + failure.message() +
      "). End the programs that use it and see that its folder may be written, then import again");
}

void takePlaces(std::vector<ImportedFile>& files, const platform::Pause& pause) {
  try {
    for (ImportedFile& file : files) takePlace(withEnding(file.path, importEnding), file, pause);
  } catch (...) {
    // Those that had their turn go back: a suite is brought over whole or not at all.
    for (const ImportedFile& file : files)
      if (!file.kept.empty()) platform::moveFile(file.kept, file.path, pause);
    throw;
  }
}

// Rows that somebody adds while the file is read would be left behind.
void requireUnused(const fs::path& path) {
  for (const char* ending : {".ldb", ".LDB"}) {
    const fs::path lock = fs::path(path).replace_extension(ending);
    if (fs::exists(lock))
      throw ToolError(text::toUtf8(path.u16string()) +
                      " is in use: " + text::toUtf8(lock.filename().u16string()) +
                      " stands beside it. End the programs that use it (or, if none does, delete "
                      "that file), then import again");
  }
}

std::vector<fs::path> accessFilesBelow(const fs::path& directory) {
  std::vector<fs::path> found;
  std::error_code failure;
  for (auto entry = fs::recursive_directory_iterator(directory, failure);
       !failure && entry != fs::recursive_directory_iterator(); entry.increment(failure))
    if (entry->is_regular_file(failure) && suiteFile(entry->path()) != nullptr &&
        database::fileKind(entry->path().u16string()) == database::FileKind::access)
      found.push_back(entry->path());
  if (failure)
    throw ToolError(text::toUtf8(directory.u16string()) + ": the folder can't be searched (" +
                    failure.message() +
                    "). Name the version directory of an installed suite that you may read");
  std::sort(found.begin(), found.end());
  return found;
}

// A damaged list of tables may hide one without any other sign.
void requireTables(const fs::path& path, const std::vector<ImportedTable>& tables) {
  for (const database::TableDefinition& needed : suiteFile(path)->tables) {
    const bool found = std::any_of(tables.begin(), tables.end(), [&](const ImportedTable& table) {
      return text::equalIgnoringCase(text::fromUtf8(table.name), needed.name);
    });
    if (!found)
      throw access::AccessError(text::toUtf8(path.u16string()) + ": it is damaged, since it has no table " +
                                text::toUtf8(needed.name));
  }
}

// Reads an Access file and writes what it holds beside it.
std::vector<ImportedTable> bringOver(const fs::path& path, const fs::path& written,
                                     const AccessReading& read) {
  const std::string name = text::toUtf8(path.u16string());
  try {
    Import import(written);
    read(path, import);
    std::vector<ImportedTable> tables = import.finish();
    requireTables(path, tables);
    return tables;
  } catch (const access::AccessError& failure) {
    const std::string reason = failure.what();
    throw ToolError((reason.starts_with(name) ? "" : name + ": ") + reason +
                    ". Nothing was changed. Let Access repair the file, then import again");
  } catch (const database::DatabaseError& failure) {
    throw ToolError(failureText(name, failure) + ". Nothing was changed");
  }
}

}  // namespace

std::vector<ImportedFile> importSuite(const fs::path& directory, const AccessReading& read,
                                      const platform::Pause& pause) {
  std::vector<ImportedFile> files;
  Pending pending;
  for (const fs::path& path : accessFilesBelow(directory)) {
    requireUnused(path);
    const fs::path written = withEnding(path, importEnding);
    pending.add(written);
    files.push_back({path, {}, bringOver(path, written, read)});
  }
  takePlaces(files, pause);
  return files;
}

}  // namespace vordane::tools
