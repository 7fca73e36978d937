// vordane-tools store: a store that many stations share, as its administrator makes it and looks after it.
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "commands.h"
#include "database_files.h"
#include "language_texts.h"
#include "lines.h"
#include "platform/odbc/administration.h"
#include "platform/odbc/library.h"
#include "platform/sqlite/engine.h"
#include "startup/databases.h"
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
  options::Command& checking = command.command(
      "check", "Examines a store: versions, tables, indexes, rights, language, clock. Changes nothing.");
  declare(checking, std::make_shared<Options>(),
          "the texts of a station, to be compared with the store's language", check);
  checking.notes("Exit code: 0 nothing is wrong, 1 there is something to say, 2 wrong usage.");
}

}  // namespace vordane::tools
