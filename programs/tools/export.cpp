#include <iostream>

#include "access_reading.h"
#include "commands.h"
#include "database_files.h"
#include "export_csv.h"
#include "export_texts.h"
#include "language_source.h"
#include "lines.h"
#include "platform/engine_choice.h"
#include "text/utf8.h"
#include "tools/sqlite/table_reader.h"

namespace vordane::tools {
namespace {

void readAnyFile(const std::string& name, access::Visitor& visitor) {
  const std::filesystem::path path = toPath(name);
  try {
    switch (database::fileKind(path.u16string())) {
      case database::FileKind::access:
        return accessReading()(path, visitor);
      case database::FileKind::embedded:
        return readTables(path.u16string(), visitor);
      case database::FileKind::missing:
        throw database::DatabaseError(3024, path.u16string());
      case database::FileKind::unknown:
        throw database::DatabaseError(3343, path.u16string());
    }
  } catch (const database::DatabaseError& failure) {
    throw ToolError(failureText(name, failure));
  }
}

void tell(const std::vector<std::filesystem::path>& files) {
  for (const auto& file : files) std::cout << text::toUtf8(file.u16string()) << '\n';
}

int exportCsv(const std::string& file, const std::string& folder, CsvUse use) {
  CsvExport out(toPath(folder), use);
  readAnyFile(file, out);
  tell(out.files());
  return 0;
}

// What has no place in the sources is told, and then the exit code is 1: nobody takes them for the whole.
int exportTexts(const std::string& file, const std::string& folder) {
  TextExport texts;
  readAnyFile(file, texts);
  tell(texts.write(toPath(folder)));
  for (const std::string& problem : texts.problems()) std::cerr << problem << '\n';
  return texts.problems().empty() ? 0 : 1;
}

}  // namespace

int exportTables(const Arguments& arguments) {
  if (arguments.size() == 3 && arguments[1] == "--csv")
    return exportCsv(arguments[0], arguments[2], CsvUse::readBack);
  if (arguments.size() == 4 && arguments[1] == "--csv" && arguments[3] == "--spreadsheet")
    return exportCsv(arguments[0], arguments[2], CsvUse::spreadsheet);
  if (arguments.size() == 3 && arguments[1] == "--texts") return exportTexts(arguments[0], arguments[2]);
  throw Misuse("export needs a file, --csv or --texts, and a directory");
}

}  // namespace vordane::tools
