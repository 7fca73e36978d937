// vordane-tools store: a store that many stations share, as its administrator makes it and looks after it.
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "any_file.h"
#include "commands.h"
#include "database_files.h"
#include "language_source.h"
#include "language_texts.h"
#include "lines.h"
#include "platform/engine_choice.h"
#include "platform/odbc/administration.h"
#include "platform/odbc/engine.h"
#include "platform/odbc/library.h"
#include "platform/sqlite/engine.h"
#include "startup/databases.h"
#include "store_import.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

struct Options {
  std::string file;
  std::optional<std::string> language;

  odbc::Subject subject() const {
    odbc::Subject subject{store::languageSubject, {}};
    if (language) subject.own = storingLanguageOf(*sqlite::makeEngine(startup::databases), *language);
    return subject;
  }
};

// Runs what is done with the store of a data source; its failure as the tools say it.
template <typename Deed>
int onStore(const std::string& file, Deed deed) try {
  odbc::Administration store(text::fromUtf8(file), odbc::systemLibrary());
  return deed(store);
} catch (const database::DatabaseError& failure) {
  throw ToolError(failureText(file, failure));
}

int create(const Options& given) {
  const odbc::Subject language = given.subject();
  return onStore(given.file, [&](odbc::Administration& store) {
    for (const std::string& line : store.create(store::faultDatabase, language)) std::cout << line << '\n';
    return 0;
  });
}

int check(const Options& given) {
  const odbc::Subject language = given.subject();
  return onStore(given.file, [&](odbc::Administration& store) {
    int code = 0;
    for (const odbc::Examined& one : store.examine(store::faultDatabase, language)) {
      std::cout << (one.good ? "" : "wrong: ") << one.text << '\n';
      if (!one.good) code = 1;
    }
    return code;
  });
}

// The data source of a store, and no other database: a file takes its faults from the exchange alone.
std::unique_ptr<database::Database> openStore(database::Engine& engine, const std::string& file) {
  const std::u16string path = toPath(file).u16string();
  if (database::fileKind(path) != database::FileKind::dataSource)
    throw ToolError(file + ": this is no data source of a store");
  return engine.open(path, false);
}

int import(const std::string& from, const Options& given) try {
  const database::Agreement language = *given.subject().own;
  const auto engine = odbc::makeEngine(startup::databases, odbc::systemLibrary());
  const auto store = openStore(*engine, given.file);
  const ReadTables read = [&](access::Visitor& visitor) { readAnyFile(from, visitor); };
  const StoreImport done = importIntoStore(read, orderOf(from), *store, language);
  for (const ImportedExchange& exchange : done.exchanges)
    std::cout << text::toUtf8(exchange.name) << ": " << exchange.added << " faults brought over, "
              << exchange.known << " known already\n";
  if (done.ownerless != 0) std::cout << done.ownerless << " faults of no exchange were left where they are\n";
  return 0;
} catch (const database::DatabaseError& failure) {
  throw ToolError(failureText(given.file, failure) + ". What was brought over is kept; try again");
}

void declare(options::Command& command, const std::shared_ptr<Options>& given, const std::string& says,
             int (*deed)(const Options&)) {
  command.argument("FILE.dsn", given->file, "the file data source of the store");
  command.option("--language", "VORDANE.LNG", given->language, says);
  command.runs([given, deed] { return deed(*given); });
}

}  // namespace

void declareStore(options::Command& command) {
  options::Command& making = command.command(
      "create",
      "Makes the tables and the roles of a store in an empty database, and says what it made. Done "
      "again, it puts rights and index right and leaves the faults.");
  declare(making, std::make_shared<Options>(),
          "the texts of the stations: their language is the store's, and no station with other words stores "
          "faults. Without it, the first station that stores a list decides",
          create);
  options::Command& importing = command.command(
      "import", "Brings the exchanges and faults of a database into a store. May be done again.");
  const auto imported = std::make_shared<Options>();
  const auto from = std::make_shared<std::string>();
  importing.argument("FILE.dsn", imported->file, "the file data source of the store");
  importing.argument("FAULT.MDB", *from,
                     "the database they come from: of the embedded engine, of Access, or another store");
  importing.option(
      "--language", "VORDANE.LNG", imported->language,
      "the texts in which these faults were composed; a store that is kept in other words takes none");
  importing.exactlyOne({"--language"});
  importing.notes(
      "Exchanges are known by their names, faults as when a list is taken in: what the store holds already "
      "is "
      "not stored again. IDs and numbers are given anew, the faults' in their order.");
  importing.runs([imported, from] { return import(*from, *imported); });
  options::Command& checking = command.command(
      "check", "Examines a store: versions, tables, indexes, rights, language, clock. Changes nothing.");
  declare(checking, std::make_shared<Options>(),
          "the texts of a station, to be compared with the store's language", check);
  checking.notes("Exit code: 0 nothing is wrong, 1 there is something to say, 2 wrong usage.");
}

}  // namespace vordane::tools
