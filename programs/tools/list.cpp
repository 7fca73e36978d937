// vordane-tools list: prints the faults that a suite has stored.
#include <iostream>
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

using Form = ListOptions::Form;

struct Options {
  std::string file;
  ListOptions list;
};

void choose(Form form, Options& options) {
  if (options.list.form != Form::lines) throw Misuse("--csv and --count exclude each other");
  options.list.form = form;
}

Options parse(const Arguments& arguments) {
  Options options;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    if (arguments[i] == "--csv") {
      choose(Form::csv, options);
    } else if (arguments[i] == "--count") {
      choose(Form::count, options);
    } else if (arguments[i] == "--exchange") {
      if (++i == arguments.size()) throw Misuse("--exchange needs the name of an exchange behind it");
      options.list.exchange = text::fromUtf8(arguments[i]);
    } else if (arguments[i].starts_with("--")) {
      throw Misuse("unknown option " + arguments[i]);
    } else if (options.file.empty()) {
      options.file = arguments[i];
    } else {
      throw Misuse("one database at a time: " + options.file + " or " + arguments[i]);
    }
  }
  if (options.file.empty()) throw Misuse("the fault database is missing");
  return options;
}

}  // namespace

int list(const Arguments& arguments) {
  const Options options = parse(arguments);
  const auto engine = database::makeEngineChoice(accessEngine(), sqlite::makeEngine(startup::databases));
  const auto database = openDatabase(*engine, options.file);
  if (options.list.form == Form::csv) useBinaryStandardStreams();  // its lines have their ends
  try {
    listFaults(*database, options.file, options.list, std::cout);
  } catch (const database::DatabaseError& failure) {
    throw ToolError(failureText(options.file, failure));
  }
  return 0;
}

}  // namespace vordane::tools
