// vordane-tools list: prints the faults that a suite has stored.
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "access_reading.h"
#include "commands.h"
#include "console.h"
#include "database_files.h"
#include "fault_list.h"
#include "lines.h"
#include "platform/engine_choice.h"
#include "platform/odbc/engine.h"
#include "platform/odbc/library.h"
#include "platform/sqlite/engine.h"
#include "startup/databases.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

struct Options {
  std::string file;
  std::optional<std::string> exchange, processor, since, until;
  std::vector<std::string> kinds;
  bool major = false, minor = false, csv = false, count = false;

  ListOptions list() const {
    using Form = ListOptions::Form;
    ListOptions all{csv ? Form::csv : count ? Form::count : Form::lines, {}, filter()};
    if (exchange) all.exchange = text::fromUtf8(*exchange);
    return all;
  }

 private:
  list::Filter filter() const {
    list::Filter wanted;
    wanted.major = major || !minor;
    wanted.minor = minor || !major;
    if (!kinds.empty()) wanted.kinds.way = list::KindRule::Way::only;
    for (const std::string& kind : kinds) wanted.kinds.kinds.insert(list::keyOf(text::fromUtf8(kind)));
    if (processor) wanted.processor = list::keyOf(text::fromUtf8(*processor));
    wanted.since = text::fromUtf8(since.value_or(""));
    wanted.until = text::fromUtf8(until.value_or(""));
    return wanted;
  }
};

int listAll(const Options& given) {
  const auto engine = database::makeEngineChoice(accessEngine(), sqlite::makeEngine(startup::databases), {},
                                                 odbc::makeEngine(startup::databases, odbc::systemLibrary()));
  const auto database = openDatabase(*engine, given.file);
  if (given.csv) useBinaryStandardStreams();  // its lines have their ends
  try {
    listFaults(*database, given.file, given.list(), std::cout);
  } catch (const database::DatabaseError& failure) {
    throw ToolError(failureText(given.file, failure));
  }
  return 0;
}

}  // namespace

void declareList(options::Command& command) {
  const auto given = std::make_shared<Options>();
  command.argument("FAULT.MDB", given->file, "the fault database");
  command.option("--exchange", "NAME", given->exchange,
                 "those of one exchange; upper and lower case are the same");
  command.option("--since", "TIME", given->since, "not older: YYYY/MM/DD HH:MM, or the beginning of it");
  command.option("--until", "TIME", given->until, "not newer, likewise: 2026/11 is the whole of that month");
  command.flag("--major", given->major, "only major alarms");
  command.flag("--minor", given->minor, "only minor alarms");
  command.options("--kind", "KIND", given->kinds, "only this fault kind, such as 3B; may be given again");
  command.option("--processor", "NAME", given->processor, "only those of one processor, such as \"LP 1\"");
  command.flag(
      "--csv", given->csv,
      "every column, for a spreadsheet (UTF-8; an apostrophe stands before texts that would be formulas)");
  command.flag("--count", given->count, "only how many they are");
  command.oneAtMost({"--csv", "--count"});
  command.notes("With --since or --until, faults whose date has another form are left out.");
  command.runs([given] { return listAll(*given); });
}

}  // namespace vordane::tools
