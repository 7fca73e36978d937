#include <exception>
#include <iostream>

#include "command.h"
#include "commands.h"
#include "console.h"

namespace vordane::tools {
namespace {

// Every subcommand, in the order the usage text shows them.
constexpr Command commands[] = {
    {"decode",
     "decode (--language FILE | --messages FILE [--lists FILE]) [--narrow] [--explain] < records.tsv",
     decode},
    {"doctor", "doctor SUITE_DIR", doctor},
    {"language", "language check FOLDER ... | language build [--common] FOLDER OUT.LNG", language},
    {"export", "export FILE --csv DIR | export FILE.LNG --texts DIR", exportTables},
    {"import", "import SUITE_DIR", import},
    {"list", "list FAULT.MDB [--exchange NAME] [--csv | --count]", list},
    {"suite", "suite DIR [--language en] [--source data]", suite},
};

int usage(std::ostream& out) {
  out << "usage: vordane-tools COMMAND [ARGUMENT ...]\n";
  for (const Command& command : commands) out << "  " << command.usage << '\n';
  return 2;
}

int run(const Arguments& arguments) {
  if (arguments.empty()) return usage(std::cerr);
  for (const Command& command : commands)
    if (command.name == arguments.front()) return command.run({arguments.begin() + 1, arguments.end()});
  return usage(std::cerr);
}

}  // namespace
}  // namespace vordane::tools

int main(int count, char** values) {
  try {
    return vordane::tools::run(vordane::tools::programArguments(count, values));
  } catch (const std::exception& failure) {
    std::cerr << "vordane-tools: " << failure.what() << '\n';
    return 1;
  }
}
