#include <exception>
#include <iostream>
#include <optional>

#include "command.h"
#include "commands.h"
#include "console.h"
#include "lines.h"
#include "terminal_text.h"

namespace vordane::tools {
namespace {

// Every subcommand, in the order the help shows them.
constexpr Command commands[] = {
    {"decode",
     "decode (--language FILE | --messages FILE [--lists FILE]) [--narrow] [--explain] < records.tsv",
     "Turns recorded faults into readable text: one line in (record, TAB, first data, TAB, second data), one "
     "message\n"
     "line out, its line ends shown as \\r\\n.\n"
     "  --language FILE  the texts of a language database (VORDANE.LNG)\n"
     "  --messages FILE  the texts of a source file: number, TAB, text\n"
     "  --lists FILE     the kinds' lists of a source file: list, TAB, place, TAB, text\n"
     "  --narrow         module numbers of 6 bits, as older exchanges send them\n"
     "  --explain        behind each message its values with the characters they came from\n",
     decode},
    {"doctor", "doctor SUITE_DIR",
     "Says why the add-in would not start from that version directory, or start incomplete: files, tables, "
     "texts,\n"
     "damage, and on Windows settings and registration. Exit code 1 when there is something to say.\n",
     doctor},
    {"language", "language check FOLDER ...\nlanguage build [--common] FOLDER OUT.LNG",
     "check compares the texts of languages with what the program needs and with one another. build makes a "
     "language\n"
     "database of them: VORDANE.LNG, or with --common Common.LNG.\n",
     language},
    {"export", "export FILE --csv DIR [--spreadsheet]\nexport FILE.LNG --texts DIR",
     "--csv writes one CSV file (UTF-8) for each table of an embedded or Access database, --texts the "
     "sources of\n"
     "'language build'. CSV files hold every value as it stands, so that they can be read back; a "
     "spreadsheet runs a\n"
     "text that begins with =, +, - or @ as a formula.\n"
     "  --spreadsheet    an apostrophe before such texts, for files that a spreadsheet shall open\n",
     exportTables},
    {"import", "import SUITE_DIR",
     "Brings the Access files of a suite over to the embedded engine, all of them or none, and keeps each "
     "beside the\n"
     "new file with \".access\" behind its name.\n",
     import},
    {"install",
     "install SUITE_DIR --package DIR [--language en] [--words x64|x86] [--this-user] [--demonstration] "
     "[--wait 60] [--log FILE]",
     "Puts what an installer has unpacked into a version directory, renews it, or repairs it: all of it or "
     "none. Stored\n"
     "faults, jobs, and the words that faults are stored in stay. Ends with what the doctor finds.\n"
     "  --package DIR    what the installer has unpacked\n"
     "  --language en    the language of a set that is new\n"
     "  --words x64|x86  the word size; without it that of the system, and x86 where databases are Access "
     "files\n"
     "  --this-user      registered for this user alone\n"
     "  --demonstration  with the simulated exchange\n"
     "  --wait 60        seconds to wait for programs that are in use\n"
     "  --log FILE       what is told goes there too\n",
     install},
    {"list", "list FAULT.MDB [--exchange NAME] [--csv | --count]",
     "Prints the stored faults, newest first.\n"
     "  --exchange NAME  those of one exchange; upper and lower case are the same\n"
     "  --csv            every column, for a spreadsheet (UTF-8; an apostrophe stands before texts that "
     "would be formulas)\n"
     "  --count          only how many they are\n",
     list},
    {"suite", "suite DIR [--language en] [--source data]",
     "Makes the data files of an installed suite that are missing; stored faults, registration and jobs "
     "stay.\n"
     "  --language en    the language of its texts and of its report: a folder of SOURCE/language\n"
     "  --source data    where texts and report stand\n",
     suite},
    {"uninstall", "uninstall SUITE_DIR [--everything] [--wait 60] [--log FILE]",
     "Takes the add-in away from a version directory, and its registration. Stored faults, logs, jobs and "
     "settings stay.\n"
     "  --everything     they go too\n"
     "  --wait 60        seconds to wait for programs that are in use\n"
     "  --log FILE       what is told goes there too\n",
     uninstall},
};

const Command* commandNamed(std::string_view name) {
  for (const Command& command : commands)
    if (command.name == name) return &command;
  return nullptr;
}

// A usage line for each form of a command.
void showUsage(const Command& command, std::string_view before, std::ostream& out) {
  std::string_view rest = command.usage;
  for (std::string_view start = before; !rest.empty(); start = "       ") {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    out << start << "vordane-tools " << rest.substr(0, end) << '\n';
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
}

int showHelp(const Command& command) {
  showUsage(command, "usage: ", std::cout);
  std::cout << '\n' << command.help;
  return 0;
}

void showCommands(std::ostream& out) {
  out << "usage: vordane-tools COMMAND [ARGUMENT ...]\n";
  for (const Command& command : commands) showUsage(command, "       ", out);
  out << "       vordane-tools COMMAND --help | --help | --version\n";
}

bool isHelp(std::string_view argument) {
  return argument == "--help" || argument == "-h";
}

int misused(std::string_view reason) {
  std::cerr << "vordane-tools: " << reason << '\n';
  showCommands(std::cerr);
  return 2;
}

int misused(const Command& command, std::string_view reason) {
  std::cerr << "vordane-tools " << command.name << ": " << reason << '\n';
  showUsage(command, "usage: ", std::cerr);
  return 2;
}

int run(const Command& command, const Arguments& arguments) {
  if (!arguments.empty() && isHelp(arguments.front())) return showHelp(command);
  try {
    return command.run(arguments);
  } catch (const Misuse& misuse) {
    return misused(command, misuse.what());
  }
}

int run(const Arguments& arguments) {
  if (arguments.empty()) return misused("a command is missing");
  const std::string& first = arguments.front();
  if (first == "--version") return std::cout << "vordane-tools " VORDANE_VERSION "\n", 0;
  if (isHelp(first)) return showCommands(std::cout), 0;
  if (const Command* const command = commandNamed(first))
    return run(*command, {arguments.begin() + 1, arguments.end()});
  return misused("there is no command " + first);
}

int runWhole(int count, char** values) {
  try {
    const int code = run(programArguments(count, values));
    std::cout.flush();
    if (!std::cout)
      throw ToolError("the output can't be written. Make room on its disk, or write it elsewhere");
    return code;
  } catch (const std::exception& failure) {
    std::cerr << "vordane-tools: " << failure.what() << '\n';
    return 1;
  }
}

}  // namespace
}  // namespace vordane::tools

int main(int count, char** values) {
  using namespace vordane::tools;
  std::optional<TerminalStream> output, errors;
  if (isTerminal(stdout))
    output.emplace(std::cout, [](std::string_view text) { writeTerminal(stdout, text); });
  if (isTerminal(stderr))
    errors.emplace(std::cerr, [](std::string_view text) { writeTerminal(stderr, text); });
  return runWhole(count, values);
}
