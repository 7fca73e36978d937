// A folder of the test's own, whose files the database engine finds by their last name whatever directory a
// Windows path puts in front of it.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "platform/engine_choice.h"
#include "platform/sqlite/engine.h"
#include "startup/databases.h"
#include "tools/sqlite/database_writer.h"

namespace vordane::fakes {

class FolderEngine : public database::Engine {
 public:
  FolderEngine() : folder_(makeFolder()), engine_(sqlite::makeEngine(startup::databases, options())) {}
  FolderEngine(const FolderEngine&) = delete;
  FolderEngine& operator=(const FolderEngine&) = delete;
  ~FolderEngine() override {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }

  std::unique_ptr<database::Database> open(std::u16string_view path, bool readOnly) override {
    opened.push_back({std::u16string(path), readOnly});
    if (!readOnly && !unwritable.empty() && path.ends_with(unwritable))
      throw database::DatabaseError(3051, std::u16string(path));
    const std::u16string found = file(path.substr(path.rfind(u'\\') + 1));
    const bool isServer = server != nullptr && database::fileKind(found) == database::FileKind::dataSource;
    return between(path, (isServer ? *server : *engine_).open(found, readOnly));
  }

  std::u16string file(std::u16string_view name) const { return (folder_ / name).u16string(); }
  const std::filesystem::path& folder() const { return folder_; }

  struct Opened {
    std::u16string path;
    bool readOnly;
  };
  std::vector<Opened> opened;
  bool onNetwork = false;
  std::unique_ptr<database::Engine>
      server;                 // for files that are data sources, where a test has such an engine
  std::u16string unwritable;  // the name of a file that opens for reading only
  // What stands between a database and whoever opens it: nothing, or something that watches it.
  std::function<std::unique_ptr<database::Database>(std::u16string_view path,
                                                    std::unique_ptr<database::Database> database)>
      between = [](std::u16string_view, auto database) { return database; };

 private:
  sqlite::Options options() {
    sqlite::Options options;
    options.onNetwork = [this](auto) { return onNetwork; };
    options.longestUnsavedMilliseconds = 3600000;  // a busy machine shall not make a step save in between
    return options;
  }
  static std::filesystem::path makeFolder() {
    static int number = 0;
    const auto base = std::filesystem::temp_directory_path();
    for (;;) {
      auto folder = base / ("vordane-test-" + std::to_string(reinterpret_cast<std::uintptr_t>(&number)) +
                            "-" + std::to_string(++number));
      if (std::filesystem::create_directory(folder)) return folder;
    }
  }

  std::filesystem::path folder_;
  std::unique_ptr<database::Engine> engine_;
};

// A new database in the folder with one table and its rows.
using Row = std::vector<database::Value>;
struct NewTable {
  database::TableDefinition definition;
  std::vector<Row> rows;
};
inline void makeDatabase(const FolderEngine& engine, std::u16string_view name,
                         const std::vector<NewTable>& tables) {
  tools::DatabaseWriter writer(engine.file(name), true);
  for (const NewTable& table : tables) {
    writer.createTable(table.definition);
    for (const Row& row : table.rows) writer.insert(table.definition.name, row);
  }
  writer.finish();
}

// One of the documented tables, by name.
inline const database::TableDefinition& tableNamed(std::span<const database::TableDefinition> tables,
                                                   std::u16string_view name) {
  for (const auto& table : tables)
    if (table.name == name) return table;
  throw std::out_of_range("no such table");
}

}  // namespace vordane::fakes
