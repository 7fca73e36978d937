#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "access_reading.h"
#include "commands.h"
#include "database_files.h"
#include "export_csv.h"
#include "export_texts.h"
#include "language_source.h"
#include "lines.h"
#include "platform/database_numbers.h"
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
        throw database::DatabaseError(database::number::fileNotFound, path.u16string());
      case database::FileKind::dataSource:  // its tables are the server's
      case database::FileKind::unknown:
        throw database::DatabaseError(database::number::notADatabase, path.u16string());
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

struct Options {
  std::string file;
  std::optional<std::string> csv, texts;  // the directory to write to
  bool spreadsheet = false;
};

int run(const Options& given) {
  if (given.texts) return exportTexts(given.file, *given.texts);
  return exportCsv(given.file, *given.csv, given.spreadsheet ? CsvUse::spreadsheet : CsvUse::readBack);
}

}  // namespace

void declareExport(options::Command& command) {
  const auto given = std::make_shared<Options>();
  command.argument("FILE", given->file, "the database");
  command.option(
      "--csv", "DIR", given->csv,
      "one CSV file (UTF-8) there for each table of an embedded or Access database. They hold every "
      "value as it stands, so that they can be read back; a spreadsheet runs a text that begins "
      "with =, +, - or @ as a formula");
  command.option("--texts", "DIR", given->texts,
                 "the sources of 'language build' there, of a language database (FILE.LNG)");
  command.flag("--spreadsheet", given->spreadsheet,
               "an apostrophe before such texts, for CSV files that a spreadsheet shall open");
  command.exactlyOne({"--csv", "--texts"});
  command.needs("--spreadsheet", "--csv");
  command.runs([given] { return run(*given); });
}

}  // namespace vordane::tools
