// vordane-tools capsule: what happened at a workstation, in one file.
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "any_file.h"
#include "capsule/capsule.h"
#include "capsule/capsule_pack.h"
#include "commands.h"
#include "database_files.h"
#include "examination.h"
#include "lines.h"
#include "platform/engine_choice.h"
#include "settings/suite_settings.h"
#include "text/utf8.h"
#include "trace/json_text.h"

namespace vordane::tools {
namespace {

constexpr int somethingLeftOut = 3;

struct Options {
  std::string suite, out, exchange;
  std::optional<std::string> since, trace;
  bool anonymous = false;
};

// "YYYY/MM/DD HH:MM", or its beginning, as the trace writes it.
std::string momentOf(std::string since) {
  constexpr std::string_view form = "0000/00/00 00:00";
  const auto fits = [](char given, char of) {
    return of == '0' ? given >= '0' && given <= '9' : given == of;
  };
  if (since.size() < 4 || since.size() > form.size() ||
      !std::equal(since.begin(), since.end(), form.begin(), fits))
    throw ToolError("--since " + since + ": a time is YYYY/MM/DD HH:MM, or the beginning of it");
  std::replace(since.begin(), since.end(), '/', '-');
  std::replace(since.begin(), since.end(), ' ', 'T');
  return since;
}

std::string now() {
  std::string text;
  trace::appendMoment(std::chrono::duration_cast<std::chrono::microseconds>(
                          std::chrono::system_clock::now().time_since_epoch())
                          .count(),
                      text);
  return text;
}

std::vector<std::u16string> fromEnvironment(std::initializer_list<const char*> names) {
  std::vector<std::u16string> values;
  for (const char* name : names)
    if (const char* value = std::getenv(name)) values.push_back(text::fromUtf8(value));
  return values;
}

PackRequest requestFor(const Options& given, database::Engine& engine) {
  PackRequest request;
  request.layout = {suiteDirectory(given.suite)};
  request.exchange = text::fromUtf8(given.exchange);
  if (given.since) request.since = momentOf(*given.since);
  request.trace = given.trace ? toPath(*given.trace) : request.layout.sharedDatabases() / "TRACE";
  request.anonymous = given.anonymous;
  request.people = fromEnvironment({"USERNAME", "USER", "LOGNAME"});
  request.workstations = fromEnvironment({"COMPUTERNAME", "HOSTNAME"});
  request.made = now();
  request.read = readAnyFile;
  const auto system = setupSystem();
  request.report = linesOf(examineSuite(request.layout, engine, surroundingsHere(*system)));
  if (const auto workstation = thisWorkstation())
    for (const std::u16string_view key : {settings::setting::installPath, settings::setting::suiteVersion,
                                          settings::setting::exchangeVersion})
      if (const auto value = workstation->setting(toText(request.layout.root.filename()), key))
        request.settings.emplace_back(std::u16string(key), *value);
  return request;
}

int make(const Options& given) {
  const auto engine = examiningEngine();
  const PackRequest request = requestFor(given, *engine);
  try {
    const Packed packed = packCapsule(request, *engine, toPath(given.out));
    std::cout << given.out << ": " << packed.faults << " faults, " << packed.traceLines << " lines of "
              << packed.traceFiles << " trace files\n";
    if (packed.halfLines != 0) std::cout << packed.halfLines << " half lines of the trace are not in it\n";
    for (const std::string& one : packed.leftOut) std::cerr << "not in it: " << one << '\n';
    return packed.leftOut.empty() ? 0 : somethingLeftOut;
  } catch (const database::DatabaseError& failure) {
    throw ToolError(failureText(given.out, failure));
  }
}

int show(const std::string& file) {
  const Capsule capsule = readCapsule(toPath(file));
  for (const auto& [name, value] : capsule.about)
    if (!value.empty()) std::cout << name << ": " << value << '\n';
  for (const auto& [table, rows] : capsule.rows) std::cout << table << ": " << rows << " rows\n";
  for (const std::string& line : capsule.report) std::cout << "doctor: " << line << '\n';
  return 0;
}

}  // namespace

void declareCapsule(options::Command& command) {
  options::Command& making = command.command(
      "make",
      "Packs the trace of a suite's fault display, an exchange's stored faults and receipts, texts, settings "
      "and "
      "what the doctor says into one file, to be sent to whoever looks into it. Changes nothing.");
  const auto given = std::make_shared<Options>();
  making.argument("SUITE_DIR", given->suite, "the version directory of a suite");
  making.argument("OUT", given->out, "the file to make; it must not be there");
  making.option("--exchange", "NAME", given->exchange,
                "the exchange whose faults and receipts are packed; upper and lower case are the same");
  making.exactlyOne({"--exchange"});
  making.option("--since", "TIME", given->since,
                "leaves out of the trace what ended before: YYYY/MM/DD HH:MM (UTC), or the beginning of it");
  making.option("--trace", "DIR", given->trace,
                "where the trace stands; usual: QUIL32/DATABASE/TRACE of the suite");
  making.flag(
      "--anonymous", given->anonymous,
      "other names in place of exchanges, people, workstations and log-in identifiers, the same always by "
      "the same other");
  making.notes(
      "Exit code: 0 done, 1 failed, 2 wrong usage, 3 done but for what is said to be not in it. The file is "
      "one of "
      "SQLite; it holds what is stored of the exchange and what the trace tells.");
  making.runs([given] { return make(*given); });

  options::Command& showing = command.command("show", "Says what a capsule holds.");
  const auto file = std::make_shared<std::string>();
  showing.argument("FILE", *file, "the capsule");
  showing.runs([file] { return show(*file); });

  declareCapsulePlay(command.command(
      "play", "Plays a recorded conversation again and says whether the add-in does the same."));
}

}  // namespace vordane::tools
