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
#include "platform/sqlite/engine.h"
#include "startup/databases.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

struct Options {
  std::string file;
  std::optional<std::string> exchange;
  bool csv = false, count = false;

  ListOptions list() const {
    using Form = ListOptions::Form;
    ListOptions all{csv ? Form::csv : count ? Form::count : Form::lines, {}};
    if (exchange) all.exchange = text::fromUtf8(*exchange);
    return all;
  }
};

int list(const Options& given) {
  const auto engine = database::makeEngineChoice(accessEngine(), sqlite::makeEngine(startup::databases));
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
  command.flag(
      "--csv", given->csv,
      "every column, for a spreadsheet (UTF-8; an apostrophe stands before texts that would be formulas)");
  command.flag("--count", given->count, "only how many they are");
  command.oneAtMost({"--csv", "--count"});
  command.runs([given] { return list(*given); });
}

}  // namespace vordane::tools
