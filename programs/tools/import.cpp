#include <iostream>

#include "access_reading.h"
#include "commands.h"
#include "import_suite.h"
#include "suite_files.h"
#include "text/utf8.h"

namespace vordane::tools {

int import(const Arguments& arguments) {
  if (arguments.size() != 1) throw Misuse("the version directory of a suite is needed, and nothing else");
  const auto files = importSuite(suiteDirectory(arguments.front()), accessReading());
  for (const ImportedFile& file : files) {
    std::cout << text::toUtf8(file.path.u16string()) << ": brought over, the Access file is kept as "
              << text::toUtf8(file.kept.filename().u16string()) << '\n';
    for (const ImportedTable& table : file.tables)
      std::cout << "  " << table.name << ": " << table.rows << " rows\n";
  }
  if (files.empty()) std::cout << "no Access files of the suite below " << arguments.front() << '\n';
  return 0;
}

}  // namespace vordane::tools
