#include <iostream>
#include <memory>
#include <string>

#include "capsule/capsule.h"
#include "commands.h"
#include "language_build.h"
#include "language_check.h"
#include "lines.h"
#include "platform/engine_choice.h"
#include "play_place.h"
#include "player.h"
#include "replay/replay_compare.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

namespace fs = std::filesystem;

constexpr int differs = 3;

struct Options {
  std::string file, folder, programs, source, language = "en";
  std::optional<long> run, patience;
  bool onlyWrite = false;
};

// Where the programs stand: beside one another, or as a suite has them.
PlayPrograms programsOf(const fs::path& folder) {
  const SuiteLayout suite{folder.parent_path()};
  const auto either = [](const fs::path& first, const fs::path& second) {
    return fs::exists(first) ? first : second;
  };
  return {folder / places.program().filename(), folder / places.host().filename(),
          either(folder / places.simulator().filename(), suite.simulator())};
}

bool isCapsule(const fs::path& file) {
  return database::fileKind(file.u16string()) == database::FileKind::embedded;
}

// The lines of each process together, in the order of their files.
std::vector<TraceOfProcess> tracesIn(const Capsule& capsule) {
  std::vector<TraceOfProcess> traces;
  for (const CapsuleLine& line : capsule.trace) {
    if (traces.empty() || !ofOneProcess(traces.back().name, line.file)) traces.push_back({line.file, {}});
    traces.back().lines.push_back(line.text);
  }
  return traces;
}

// With the texts of the capsule; what it lacks of them comes from the suite of the programs.
void makeSuiteOfCapsule(const PlayPlace& place, const Options& given) {
  unpackDatabases(toPath(given.file), place.texts());
  const SuiteLayout suite{toPath(given.programs).parent_path()};
  const auto either = [&](const fs::path& other) {
    const fs::path own = place.texts() / other.filename();
    return fs::exists(own) ? own : other;
  };
  makePlaySuite(place, either(suite.texts()), either(suite.sharedTexts()));
}

void makeSuite(const PlayPlace& place, const Options& given) {
  const fs::path texts = place.texts() / places.texts().filename(),
                 shared = place.texts() / places.sharedTexts().filename();
  if (given.source.empty() && isCapsule(toPath(given.file))) return makeSuiteOfCapsule(place, given);
  if (given.source.empty()) {
    const SuiteLayout suite{toPath(given.programs).parent_path()};
    return makePlaySuite(place, suite.texts(), suite.sharedTexts());
  }
  Problems problems;
  const LanguageSource source =
      readLanguageSource(toPath(given.source) / "language" / toPath(given.language), problems);
  checkLanguage(source, problems);
  if (!problems.empty()) throw ToolError(problems.front());
  buildOwnLanguage(source, texts);
  buildCommonLanguage(source, shared);
  makePlaySuite(place, texts, shared);
}

std::string momentOf(const replay::Recording& recording) {
  return replay::wordOf(recording.events.front(), "at");
}

// Whether it came again.
bool playOne(const replay::Recording& recording, const PlayPlace& place, const Options& given) {
  const replay::Play play = replay::playOf(recording);
  writePlay(place, play);
  std::cout << "begun " << momentOf(recording) << (replay::hosted(recording) ? " by a host" : " by hand")
            << '\n'
            << replay::listed(play.notes);
  if (play.playedTo) std::cout << "it is played as far as line " << *play.playedTo << '\n';
  if (given.onlyWrite) return true;
  std::cout.flush();
  const auto difference = playHere(recording, play, place, programsOf(toPath(given.programs)),
                                   static_cast<int>(given.patience.value_or(60)));
  if (!difference) {
    std::cout << "the add-in did the same again\n";
    return true;
  }
  std::cout << "line " << difference->line << ": it went otherwise\n  then: " << difference->then
            << "\n  now:  " << (difference->now.empty() ? "nothing more" : difference->now) << '\n';
  return false;
}

int play(Options given) {
  const fs::path file = toPath(given.file);
  if (!fs::exists(file))
    throw ToolError(given.file + ": there is no such file. Name a capsule, a trace, or the folder of one");
  if (given.folder.empty()) given.folder = given.file + ".play";
  if (given.programs.empty()) given.programs = text::toUtf8(toText(fs::absolute(ownProgram()).parent_path()));
  const std::vector<TraceOfProcess> traces = isCapsule(file) ? tracesIn(readCapsule(file)) : readTraces(file);
  const PlayPlace place = takePlace(toPath(given.folder));
  makeSuite(place, given);
  long number = 0;
  for (const TraceOfProcess& trace : traces) {
    replay::Notes notes;
    const auto recordings = replay::readTrace(trace.lines, notes);
    std::cout << trace.name << '\n' << replay::listed(notes);
    for (const replay::Recording& recording : recordings)
      if (++number; given.run.value_or(number) == number && !playOne(recording, place, given)) return differs;
  }
  if (number < given.run.value_or(1))
    throw ToolError(given.file + ": it tells of fewer starts of the add-in: " + std::to_string(number));
  if (given.onlyWrite) std::cout << "written to " << text::toUtf8(toText(place.folder)) << '\n';
  return 0;
}

}  // namespace

void declareCapsulePlay(options::Command& command) {
  const auto given = std::make_shared<Options>();
  command.argument("FILE", given->file, "a capsule, a file of a trace, or the folder of one");
  command.option("--folder", "DIR", given->folder, "where the suite of the play is made, else FILE.play");
  command.option("--run", "NUMBER", given->run, "plays that start of the add-in alone, counted from 1");
  command.flag("--only-write", given->onlyWrite,
               "writes the suite, the scenario and the script, and plays nothing");
  command.option("--programs", "DIR", given->programs,
                 "where VORDANE.EXE, devhost.exe and Zulsim.exe stand, else where this program does");
  command.option("--source", "SOURCE", given->source,
                 "where texts stand that the suite's are made of, else they are those of the capsule, or of "
                 "the suite of "
                 "the programs");
  command.option("--language", "NAME", given->language, "the language of SOURCE, else en");
  command.option("--patience", "SECONDS", given->patience, "how long nothing may happen, else 60");
  command.notes(
      "An installed suite is not used. The window's settings of this user are put aside meanwhile, and put "
      "back.\n"
      "Exit code: 0 the add-in did the same again, 1 it could not be played, 2 wrong usage, 3 it did not do "
      "the same.");
  command.runs([given] { return play(*given); });
}

}  // namespace vordane::tools
