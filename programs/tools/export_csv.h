// The tables of a database as CSV files.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "table_files.h"

namespace vordane::tools {

enum class CsvUse : std::uint8_t {
  readBack,    // every value as it stands
  spreadsheet  // texts that a spreadsheet would run made harmless (text/csv.h)
};

// One file for each table it hears of, "TABLE.csv": UTF-8, lines that end with CR LF, a line of column names
// first; fields in quotes where they hold a quote, a comma or a line's end. Null is nothing and an empty text
// is "". Yes/No is True or False, a moment YYYY-MM-DD HH:MM:SS.
class CsvExport : public TableFiles {
 public:
  explicit CsvExport(std::filesystem::path folder, CsvUse use = CsvUse::readBack)
      : TableFiles(std::move(folder), u".csv"), use_(use) {}

 protected:
  void begin(const access::Table& table, std::string& out) override;
  void append(const std::vector<access::Value>& values, std::string& out) override;

 private:
  const CsvUse use_;
};

// A field of a CSV line.
std::string csvField(const access::Value& value, CsvUse use = CsvUse::readBack);

}  // namespace vordane::tools
