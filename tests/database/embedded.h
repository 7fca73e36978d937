// The embedded engine under the contract tests, and its files for the tests of its own.
#pragma once

#include <filesystem>
#include <random>

#include "database/maker.h"
#include "language/language_databases.h"
#include "platform/sqlite/engine.h"
#include "settings/suite_databases.h"
#include "startup/databases.h"
#include "store/fault_database.h"
#include "tools/sqlite/database_writer.h"

namespace vordane::sqlite {

// A folder of its own that goes with the object.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::random_device random;
    path_ = std::filesystem::temp_directory_path() /
            ("vordane-database-" + std::to_string(random()) + std::to_string(random()));
    std::filesystem::create_directories(path_);
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  std::filesystem::path operator/(const char* name) const { return path_ / name; }

 private:
  std::filesystem::path path_;
};

inline std::span<const database::TableDefinition> tablesOf(database::Layout layout) {
  switch (layout) {
    case database::Layout::faults:
      return store::faultTables;
    case database::Layout::ownLanguage:
      return language::ownTables;
    case database::Layout::commonLanguage:
      return language::commonTables;
    case database::Layout::registration:
      return settings::registrationTables;
    case database::Layout::schedule:
      return settings::scheduleTables;
  }
  return {};
}

class EmbeddedUnderTest : public database::EngineUnderTest {
 public:
  explicit EmbeddedUnderTest(Options options = {})
      : engine_(makeEngine(startup::databases, std::move(options))) {}
  database::Engine& engine() override { return *engine_; }
  std::u16string make(database::Layout layout, const std::vector<database::Row>& rows = {}) override {
    const auto path = (folder_ / ("file" + std::to_string(++made_)).c_str()).u16string();
    tools::DatabaseWriter writer(path);
    writer.createTables(tablesOf(layout));
    for (const database::Row& row : rows) writer.insert(row.table, row.values);
    writer.finish();
    return path;
  }
  const TemporaryFolder& folder() const { return folder_; }

 private:
  TemporaryFolder folder_;
  int made_ = 0;
  std::unique_ptr<database::Engine> engine_;
};

}  // namespace vordane::sqlite
