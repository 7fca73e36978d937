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
#include "receipt_list.h"
#include "selection_words.h"
#include "startup/databases.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

struct Options {
  std::string file;
  FaultSelectionWords selection;
  std::optional<std::string> processor;
  bool major = false, minor = false, csv = false, json = false, count = false, receipts = false;

  // By what a fault has and a receipt has not.
  bool choosesFaults() const {
    return major || minor || processor || !selection.classes.empty() || !selection.kinds.empty();
  }
  ListOptions list() const {
    using Form = ListOptions::Form;
    ListOptions all{csv     ? Form::csv
                    : json  ? Form::json
                    : count ? Form::count
                            : Form::lines,
                    selection.selection()};
    all.selection.filter.major = major || !minor;
    all.selection.filter.minor = minor || !major;
    if (processor) all.selection.filter.processor = list::keyOf(text::fromUtf8(*processor));
    return all;
  }
};

int listAll(const Options& given) {
  if (given.receipts && given.choosesFaults())
    throw ToolError(
        "--receipts lists resets of alarms: only --exchange, --since and --until choose among them");
  const auto engine = database::makeEngineChoice(accessEngine(), sqlite::makeEngine(startup::databases), {},
                                                 odbc::makeEngine(startup::databases, odbc::systemLibrary()));
  const auto database = openDatabase(*engine, given.file);
  if (given.csv || given.json) useBinaryStandardStreams();  // its lines have their ends
  try {
    if (given.receipts)
      listReceipts(*database, given.file, given.list(), std::cout);
    else
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
  given->selection.declare(command);
  command.flag("--major", given->major, "only major alarms");
  command.flag("--minor", given->minor, "only minor alarms");
  command.option("--processor", "NAME", given->processor, "only those of one processor, such as \"LP 1\"");
  command.flag(
      "--csv", given->csv,
      "every column, for a spreadsheet (UTF-8; an apostrophe stands before texts that would be formulas)");
  command.flag("--receipts", given->receipts,
               "the receipts of alarm resets instead of the faults: who, where, when, and what the exchange "
               "answered");
  command.flag("--json", given->json, "one JSON document for programs, each fault on a line of its own");
  command.flag("--count", given->count, "only how many they are");
  command.oneAtMost({"--csv", "--json", "--count"});
  command.notes("With --since or --until, faults whose date has another form are left out.");
  command.runs([given] { return listAll(*given); });
}

}  // namespace vordane::tools
