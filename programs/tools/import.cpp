#include <iostream>
#include <memory>

#include "access_reading.h"
#include "commands.h"
#include "import_suite.h"
#include "suite_files.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

int import(const std::string& directory) {
  const auto files = importSuite(suiteDirectory(directory), accessReading());
  for (const ImportedFile& file : files) {
    std::cout << text::toUtf8(file.path.u16string()) << ": brought over, the Access file is kept as "
              << text::toUtf8(file.kept.filename().u16string()) << '\n';
    for (const ImportedTable& table : file.tables)
      std::cout << "  " << table.name << ": " << table.rows << " rows\n";
  }
  if (files.empty()) std::cout << "no Access files of the suite below " << directory << '\n';
  return 0;
}

}  // namespace

void declareImport(options::Command& command) {
  const auto directory = std::make_shared<std::string>();
  command.argument("SUITE_DIR", *directory, "the version directory of a suite");
  command.runs([directory] { return import(*directory); });
}

}  // namespace vordane::tools
