// The tables of a database as files, one for each.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "platform/access/access_file.h"

namespace vordane::tools {

// Writes what it hears into "TABLE" with the ending, in `folder`, which is made. What stood under a file's
// name is replaced, when the table has been written whole. Throws ToolError when it can't be.
class TableFiles : public access::Visitor {
 public:
  TableFiles(std::filesystem::path folder, std::u16string ending);
  ~TableFiles() override;
  TableFiles(const TableFiles&) = delete;
  TableFiles& operator=(const TableFiles&) = delete;

  void beginTable(const access::Table& table) final;
  void row(const std::vector<access::Value>& values) final;
  void endTable() final;

  // The files written whole.
  const std::vector<std::filesystem::path>& files() const { return files_; }

 protected:
  // Each behind what `out` holds.
  virtual void begin(const access::Table& table, std::string& out) = 0;
  virtual void append(const std::vector<access::Value>& values, std::string& out) = 0;
  virtual void end(std::string&) {}

 private:
  void flush();

  const std::filesystem::path folder_;
  const std::u16string ending_;
  std::filesystem::path target_, pending_;
  std::ofstream out_;
  std::string buffer_;
  std::vector<std::filesystem::path> files_;
};

}  // namespace vordane::tools
