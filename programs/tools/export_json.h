// The tables of a database as JSON files.
#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "table_files.h"

namespace vordane::tools {

// One file for each table it hears of, "TABLE.json": one object that names the table and its columns, then
// its rows, each an array on a line of its own. Texts as they stand, Null is null, Yes/No true or false, a
// moment "YYYY-MM-DD HH:MM:SS".
class JsonExport : public TableFiles {
 public:
  explicit JsonExport(std::filesystem::path folder) : TableFiles(std::move(folder), u".json") {}

 protected:
  void begin(const access::Table& table, std::string& out) override;
  void append(const std::vector<access::Value>& values, std::string& out) override;
  void end(std::string& out) override { out += "\n]}\n"; }

 private:
  bool comma_ = false;
};

}  // namespace vordane::tools
