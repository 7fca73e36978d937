// The tables of a database as CSV files.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "platform/access/access_file.h"

namespace vordane::tools {

enum class CsvUse : std::uint8_t {
  readBack,    // every value as it stands
  spreadsheet  // texts that a spreadsheet would run made harmless (text/csv.h)
};

// One file for each table it hears of, "TABLE.csv" in `folder`, which is made: UTF-8, lines that end with CR
// LF, a line of column names first; fields in quotes where they hold a quote, a comma or a line's end. Null
// is nothing and an empty text is "". Yes/No is True or False, a moment YYYY-MM-DD HH:MM:SS. What stood under
// a file's name is replaced, when the table has been written whole. Throws ToolError when it can't be.
class CsvExport : public access::Visitor {
 public:
  explicit CsvExport(std::filesystem::path folder, CsvUse use = CsvUse::readBack);
  ~CsvExport() override;
  CsvExport(const CsvExport&) = delete;
  CsvExport& operator=(const CsvExport&) = delete;

  void beginTable(const access::Table& table) override;
  void row(const std::vector<access::Value>& values) override;
  void endTable() override;

  // The files written whole.
  const std::vector<std::filesystem::path>& files() const { return files_; }

 private:
  void write(const std::vector<std::string>& fields);
  void flush();

  const CsvUse use_;
  std::filesystem::path folder_, target_, pending_;
  std::ofstream out_;
  std::string buffer_;
  std::vector<std::filesystem::path> files_;
};

// A field of a CSV line.
std::string csvField(const access::Value& value, CsvUse use = CsvUse::readBack);

}  // namespace vordane::tools
