#include <exception>
#include <iostream>
#include <optional>

#include "commands.h"
#include "console.h"
#include "lines.h"
#include "terminal_text.h"

namespace vordane::tools {
namespace {

constexpr int wrongUsage = 2;

// Every subcommand, in the order the help shows them.
constexpr struct {
  const char* name;
  void (*declare)(options::Command& command);
  const char* does;
} commands[] = {
    {"capsule", declareCapsule,
     "Packs what happened at a workstation into one file, says what is in such a file, and plays it again."},
    {"decode", declareDecode,
     "Turns recorded faults into readable text: one line in (record, TAB, first data, TAB, second data), one "
     "message line out, its line ends shown as \\r\\n."},
    {"doctor", declareDoctor,
     "Says why the add-in would not start from a version directory, or start incomplete: files, tables, "
     "texts, "
     "damage, full logs and disks, and on Windows settings and registration."},
    {"guide", declareGuide, "Checks the guide for technicians and makes it ready for its pages."},
    {"language", declareLanguage, "Checks the texts of languages and makes language databases of them."},
    {"export", declareExport,
     "Writes the tables of a database, or the texts of a language database, into files."},
    {"follow", declareFollow,
     "Tells other systems of each new fault and of the lamps, once, as JSON lines or syslog messages, beside "
     "the add-in at its work."},
    {"import", declareImport,
     "Brings the Access files of a suite over to the embedded engine, all of them or none, and keeps each "
     "beside "
     "the new file with \".access\" behind its name."},
    {"install", declareInstall,
     "Puts what an installer has unpacked into a version directory, renews it, or repairs it: all of it or "
     "none. Stored faults, jobs, and the words that faults are stored in stay. Ends with what the doctor "
     "finds."},
    {"list", declareList, "Prints the stored faults, or the receipts of alarm resets, newest first."},
    {"store", declareStore, "Makes and examines a store on a database server that many stations share."},
    {"suite", declareSuite,
     "Makes the data files of an installed suite that are missing; stored faults, registration and jobs "
     "stay."},
    {"uninstall", declareUninstall,
     "Takes the add-in away from a version directory, and its registration. Stored faults, logs, jobs and "
     "settings stay."},
};

int run(const options::Words& words) {
  options::Program program("vordane-tools", "Looks after the files of the fault display.", wrongUsage);
  for (const auto& command : commands) command.declare(program.command(command.name, command.does));
  const auto ending = program.read(words);
  if (!ending) return program.perform();
  std::cout << ending->output;
  std::cerr << ending->errors;
  return ending->code;
}

int runWhole(int count, char** values) {
  try {
    const int code = run(programWords(count, values));
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
