#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "any_file.h"
#include "commands.h"
#include "export_csv.h"
#include "export_json.h"
#include "export_texts.h"
#include "language_source.h"
#include "lines.h"
#include "selected_tables.h"
#include "selection_words.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

void tell(const std::vector<std::filesystem::path>& files) {
  for (const auto& file : files) std::cout << text::toUtf8(file.u16string()) << '\n';
}

int exportTables(const std::string& file, const FaultSelection& selection, TableFiles& out) {
  readSelected([&](access::Visitor& visitor) { readAnyFile(file, visitor); }, file, selection, out);
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
  std::optional<std::string> csv, json, texts;  // the directory to write to
  bool spreadsheet = false;
  FaultSelectionWords selection;
};

int run(const Options& given) {
  const FaultSelection selection = given.selection.selection();
  if (given.texts) {
    if (selection.isOn()) throw ToolError("--texts writes no faults, so none of them can be chosen");
    return exportTexts(given.file, *given.texts);
  }
  if (given.json) {
    JsonExport out(toPath(*given.json));
    return exportTables(given.file, selection, out);
  }
  CsvExport out(toPath(*given.csv), given.spreadsheet ? CsvUse::spreadsheet : CsvUse::readBack);
  return exportTables(given.file, selection, out);
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
  command.option("--json", "DIR", given->json,
                 "one JSON file there for each table likewise: its columns, then a line for each row");
  command.option("--texts", "DIR", given->texts,
                 "the sources of 'language build' there, of a language database (FILE.LNG)");
  command.flag("--spreadsheet", given->spreadsheet,
               "an apostrophe before such texts, for CSV files that a spreadsheet shall open");
  given->selection.declare(command);
  command.exactlyOne({"--csv", "--json", "--texts"});
  command.needs("--spreadsheet", "--csv");
  command.notes(
      "The last five choose among the stored faults; with --exchange no other exchange is written either. "
      "With "
      "--since or --until, faults whose date has another form are left out.");
  command.runs([given] { return run(*given); });
}

}  // namespace vordane::tools
