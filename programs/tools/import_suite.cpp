#include "import_suite.h"

#include <algorithm>
#include <array>
#include <optional>
#include <set>
#include <utility>

#include "platform/engine_choice.h"
#include "platform/sqlite/schema.h"
#include "text/dates.h"
#include "text/text.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

namespace fs = std::filesystem;

constexpr std::array<std::u16string_view, 5> suiteFiles = {u"FAULT.MDB", u"VORDANE.LNG", u"Common.LNG",
                                                           u"Register.mdb", u"Schedule.mdb"};

bool isSuiteFile(const fs::path& path) {
  const std::u16string name = path.filename().u16string();
  return std::any_of(suiteFiles.begin(), suiteFiles.end(),
                     [&](std::u16string_view file) { return text::equalIgnoringCase(file, name); });
}

sqlite::ColumnType columnType(const access::Column& column) {
  switch (column.type) {
    case access::ColumnType::boolean:
      return sqlite::ColumnType::yesNo;
    case access::ColumnType::byte:
    case access::ColumnType::integer:
    case access::ColumnType::longInteger:
      return column.autoNumber ? sqlite::ColumnType::autoNumber : sqlite::ColumnType::integer;
    case access::ColumnType::single:
    case access::ColumnType::doubleFloat:
      return sqlite::ColumnType::number;
    case access::ColumnType::dateTime:
      return sqlite::ColumnType::dateTime;
    case access::ColumnType::text:
    case access::ColumnType::memo:
      break;
  }
  return sqlite::ColumnType::text;
}

// Writes what it hears into a new embedded file.
class Import : public access::Visitor {
 public:
  explicit Import(const fs::path& target) : writer_(target.u16string(), true) {}

  void beginTable(const access::Table& table) override {
    table_ = table;
    rows_ = 0;
    std::vector<sqlite::ColumnDefinition> columns;
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
  sqlite::DatabaseWriter writer_;
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
// the first one over.
void takePlace(const fs::path& written, ImportedFile& file) {
  file.kept = keptName(file.path);
  std::error_code noLinks;
  fs::create_hard_link(file.path, file.kept, noLinks);
  if (noLinks) fs::copy_file(file.path, file.kept);
  fs::rename(written, file.path);
}

std::vector<fs::path> accessFilesBelow(const fs::path& directory) {
  std::vector<fs::path> found;
  for (const auto& entry : fs::recursive_directory_iterator(directory))
    if (entry.is_regular_file() && isSuiteFile(entry.path()) &&
        database::fileKind(entry.path().u16string()) == database::FileKind::access)
      found.push_back(entry.path());
  std::sort(found.begin(), found.end());
  return found;
}

}  // namespace

std::vector<ImportedFile> importSuite(const fs::path& directory, const AccessReading& read) {
  std::vector<ImportedFile> files;
  Pending pending;
  for (const fs::path& path : accessFilesBelow(directory)) {
    const fs::path written = withEnding(path, ".import");
    pending.add(written);
    Import import(written);
    read(path.string(), import);
    files.push_back({path, {}, import.finish()});
  }
  for (ImportedFile& file : files) takePlace(withEnding(file.path, ".import"), file);
  return files;
}

}  // namespace vordane::tools
