// What the system's event log is told: each cause of a silent end, and each run that failed, is one entry
// that names the file and what to do. The causes are the rows of two tables in docs/reliability.md.
#include <fstream>
#include <map>
#include <regex>
#include <set>

#include "fakes/watched_database.h"
#include "places.h"
#include "startup/story.h"
#include "text/fill.h"

namespace vordane::startup {
namespace {

using platform::Event;

enum class Begun { byHost, asJob, byHand };

class Causes;

struct Cause {
  const char* row;  // of docs/reliability.md, its first cell
  const char* what;
  Begun begun;
  void (Causes::*damage)();  // before the start
  Lines entries;
  void (Causes::*run)() = nullptr;  // of a job; null: all goes well
};

void PrintTo(const Cause& cause, std::ostream* out) {
  *out << cause.row << ": " << cause.what;
}

class Causes : public Story, public testing::WithParamInterface<Cause> {
 public:
  // --- damages
  void nothing() {}
  void missCommon() { remove(u"Common.LNG"); }
  void spoilCommon() { spoil(u"Common.LNG"); }
  void missTexts() { remove(u"VORDANE.LNG"); }
  void spoilTexts() { spoil(u"VORDANE.LNG"); }
  void missMessages() {
    remakeTexts({fakes::tableNamed(language::ownTables, u"tProject"),
                 {{u"VORDANE"_v, u"T"_v, u""_v, u""_v, u""_v, u""_v}}});
  }
  void missProject() {
    remakeTexts({fakes::tableNamed(language::ownTables, u"tMessages"), {{std::int32_t{0}, u"F"_v}}});
  }
  void spoilControls() {
    badControl = true;
    remove(u"VORDANE.LNG");
    makeLanguage();
  }
  void missRegistry() { remove(u"Register.mdb"); }
  void spoilRegistry() { spoil(u"Register.mdb"); }
  void lockRegistry() { engine.unwritable = u"Register.mdb"; }
  void missFaults() { remove(u"FAULT.MDB"); }
  void spoilFaults() { spoil(u"FAULT.MDB"); }
  void lockFaults() { engine.unwritable = u"FAULT.MDB"; }
  void missExchanges() { failSteps(u"PBXList"); }
  void missFaultTable() { failSteps(u"FaultDisplay"); }
  void missOptions() { remove(u"Schedule.mdb"); }
  void spoilOptions() { spoil(u"Schedule.mdb"); }

  // --- runs
  void goesWell() { brings(oneFault()); }
  void isBusy() { turnedDown(u"1"); }
  void isBusyThreeTimes() { turnedDown(u"3"); }
  void answersWithCode() { answered(u"1", 61, {}); }
  void answersWithCodeUnlogged() { answered(u"5", 61, {}); }
  void answersCutShort() {
    auto entries = oneFault();
    entries.push_back(u"15 MJ MP001");
    brings(entries);
  }
  void isNotAcknowledged() {
    runSchedule(u"1");
    tick();
    tick();
    exchange().answer(0, oneFault());
    exchange().loginAnswer = std::u16string(u"BUSY");
    restOfRun();
  }
  void isOfAnotherKind() {
    runSchedule(u"6");
    restOfRun();
  }
  void hasNoExchange() {
    registerPbx(u"");
    runSchedule(u"1");
    restOfRun();
  }
  void isLetGo() {
    runSchedule(u"1");
    tick();
    layer.reset();
  }
  void isCancelled() {
    runSchedule(u"1");
    tick();
    tick();
    callInteger(u"CancelSchedule");
  }
  void isCancelledBehindAFailure() {
    exchange().loginAnswer = std::u16string(u"BUSY");
    runSchedule(u"3");
    tick();
    tick();
    callInteger(u"CancelSchedule");
  }
  void canNotStart() {
    for (int i = 0; i < 3; ++i) EXPECT_EQ(runSchedule(u"night"), 10000);
  }

 protected:
  void begin(const Cause& cause) {
    (this->*cause.damage)();
    try {
      if (cause.begun == Begun::byHand) return startStandAlone(u"P");
      start();
      layer = createLayer();
      registerPbx(u"PBX-1");
    } catch (const ProcessEnded&) {
      return;
    }
    if (cause.begun == Begun::asJob) (this->*(cause.run != nullptr ? cause.run : &Causes::goesWell))();
  }

  // The folder of the test stands for whatever folder the engine speaks of.
  Lines told() const {
    Lines lines = events.lines();
    const std::string folder = engine.folder().string() + "/";
    for (std::string& line : lines)
      for (std::size_t at; (at = line.find(folder)) != line.npos;) line.erase(at, folder.size());
    return lines;
  }

 private:
  void remove(std::u16string_view name) { std::filesystem::remove(engine.file(name)); }
  void remakeTexts(fakes::NewTable table) {
    remove(u"VORDANE.LNG");
    fakes::makeDatabase(engine, u"VORDANE.LNG", {std::move(table)});
  }
  void spoil(std::u16string_view name) {
    std::ofstream(std::filesystem::path(engine.file(name)), std::ios::binary) << std::string(8192, 'x');
  }
  // Each step that names the table.
  void failSteps(std::u16string table) {
    engine.between = [table](std::u16string_view path, auto file) -> std::unique_ptr<database::Database> {
      if (!path.ends_with(u"FAULT.MDB")) return file;
      auto watched = std::make_unique<fakes::WatchedDatabase>(std::move(file));
      watched->before = [table](std::u16string_view step) {
        if (step.find(table) != step.npos) throw database::DatabaseError(3078, u"no " + table);
      };
      return watched;
    };
  }
  void brings(const std::vector<std::u16string>& entries) {
    runSchedule(u"1");
    tick();
    tick();
    exchange().answer(0, entries);
    trace.clear();
    tick();
    const bool acknowledges = std::any_of(trace.begin(), trace.end(), [](const std::string& line) {
      return line.starts_with("SendRequest EA1");
    });
    if (acknowledges) exchange().answerLamps(u"00");
    restOfRun();
  }
  void restOfRun() {
    while (tick()) {
    }
  }
  void turnedDown(std::u16string key) {
    exchange().loginAnswer = std::u16string(u"BUSY");
    runSchedule(std::move(key));
    restOfRun();
  }
  void answered(std::u16string key, std::int32_t code, const std::vector<std::u16string>& entries) {
    runSchedule(std::move(key));
    tick();
    tick();
    exchange().answer(code, entries);
    restOfRun();
  }
};

#define ADDINS "C:\\QUILMAR32\\30000\\ADDINS\\"
#define SHARED ADDINS "..\\QUIL32\\DATABASE\\"
#define OPTIONS ADDINS "Quil32\\Database\\"  // without the setting that names the suite's directory
#define NO_DATABASE "Not a database of a known format."
#define COMMON "11 " SHARED "Common.LNG | "
#define TEXTS "12 " ADDINS "DATABASE\\VORDANE.LNG | "
#define REGISTRY "13 " SHARED "Register.mdb | "
#define FAULTS "14 " ADDINS "DATABASE\\FAULT.MDB | "
#define UNREADABLE "15 " ADDINS "DATABASE\\FAULT.MDB | "
#define JOBS "17 " OPTIONS "Schedule.mdb | "

// Of docs/reliability.md, where they are long.
namespace row {
constexpr const char* ownTexts = "`VORDANE.LNG`, its `tMessages` or its row in `tProject`";
constexpr const char* windowTexts = "`VORDANE.LNG` without `tControls`";
constexpr const char* registry = "`Register.mdb` or its table, or it may not be written";
constexpr const char* faults = "`FAULT.MDB`, or it may not be written";
constexpr const char* exchanges = "`FAULT.MDB` opens, and its `PBXList` is missing or can't be read";
constexpr const char* faultTable = "`FAULT.MDB` opens, and its `FaultDisplay` is missing or can't be read";
constexpr const char* turnedDown = "is turned down by the exchange, or answered with an error";
constexpr const char* noWork = "has no exchange, or is a job of another kind";
constexpr const char* letGo = "is let go by its host, or its host dies";
constexpr const char* notStarted = "can't be started (`RunSchedule` 10000)";
}  // namespace row

// In the order of the two tables.
const Cause causes[] = {
    {"nothing", "all is there, by a host", Begun::byHost, &Causes::nothing, {}},
    {"nothing", "all is there, a job", Begun::asJob, &Causes::nothing, {}},
    {"nothing", "all is there, by hand", Begun::byHand, &Causes::nothing, {}},
    {"`Common.LNG`",
     "missing, by a host",
     Begun::byHost,
     &Causes::missCommon,
     {COMMON "Could not find file 'Common.LNG'."}},
    {"`Common.LNG`",
     "missing, a job",
     Begun::asJob,
     &Causes::missCommon,
     {COMMON "Could not find file 'Common.LNG'."}},
    {"`Common.LNG`",
     "missing, by hand",
     Begun::byHand,
     &Causes::missCommon,
     {COMMON "Could not find file 'Common.LNG'."}},
    {"`Common.LNG`", "no database, by a host", Begun::byHost, &Causes::spoilCommon, {COMMON NO_DATABASE}},
    {"`Common.LNG`", "no database, a job", Begun::asJob, &Causes::spoilCommon, {COMMON NO_DATABASE}},
    {"`Common.LNG`", "no database, by hand", Begun::byHand, &Causes::spoilCommon, {COMMON NO_DATABASE}},
    {row::ownTexts,
     "missing, by a host",
     Begun::byHost,
     &Causes::missTexts,
     {TEXTS "Could not find file 'VORDANE.LNG'."}},
    {row::ownTexts,
     "missing, a job",
     Begun::asJob,
     &Causes::missTexts,
     {TEXTS "Could not find file 'VORDANE.LNG'."}},
    {row::ownTexts,
     "missing, by hand",
     Begun::byHand,
     &Causes::missTexts,
     {TEXTS "Could not find file 'VORDANE.LNG'."}},
    {row::ownTexts, "no database, by a host", Begun::byHost, &Causes::spoilTexts, {TEXTS NO_DATABASE}},
    {row::ownTexts, "no database, a job", Begun::asJob, &Causes::spoilTexts, {TEXTS NO_DATABASE}},
    {row::ownTexts, "no database, by hand", Begun::byHand, &Causes::spoilTexts, {TEXTS NO_DATABASE}},
    {row::ownTexts, "without messages, by a host", Begun::byHost, &Causes::missMessages, {TEXTS "tMessages"}},
    {row::ownTexts, "without messages, a job", Begun::asJob, &Causes::missMessages, {TEXTS "tMessages"}},
    {row::ownTexts, "without messages, by hand", Begun::byHand, &Causes::missMessages, {TEXTS "tMessages"}},
    {row::ownTexts,
     "without project texts, by a host",
     Begun::byHost,
     &Causes::missProject,
     {TEXTS "tProject"}},
    {row::ownTexts, "without project texts, a job", Begun::asJob, &Causes::missProject, {TEXTS "tProject"}},
    {row::ownTexts,
     "without project texts, by hand",
     Begun::byHand,
     &Causes::missProject,
     {TEXTS "tProject"}},
    {row::windowTexts,
     "unreadable, by a host",
     Begun::byHost,
     &Causes::spoilControls,
     {"16 " ADDINS "DATABASE\\VORDANE.LNG | tControls"}},
    {row::windowTexts,
     "unreadable, a job",
     Begun::asJob,
     &Causes::spoilControls,
     {"16 " ADDINS "DATABASE\\VORDANE.LNG | tControls"}},
    {row::windowTexts,
     "unreadable, by hand",
     Begun::byHand,
     &Causes::spoilControls,
     {"16 " ADDINS "DATABASE\\VORDANE.LNG | tControls"}},
    {row::registry,
     "missing, by a host",
     Begun::byHost,
     &Causes::missRegistry,
     {REGISTRY "Could not find file 'Register.mdb'."}},
    {row::registry,
     "missing, a job",
     Begun::asJob,
     &Causes::missRegistry,
     {REGISTRY "Could not find file 'Register.mdb'."}},
    {row::registry, "missing, by hand", Begun::byHand, &Causes::missRegistry, {}},
    {row::registry, "no database, by a host", Begun::byHost, &Causes::spoilRegistry, {REGISTRY NO_DATABASE}},
    {row::registry, "no database, a job", Begun::asJob, &Causes::spoilRegistry, {REGISTRY NO_DATABASE}},
    {row::registry, "no database, by hand", Begun::byHand, &Causes::spoilRegistry, {}},
    {row::registry,
     "not to be written, by a host",
     Begun::byHost,
     &Causes::lockRegistry,
     {REGISTRY SHARED "Register.mdb"}},
    {row::registry,
     "not to be written, a job",
     Begun::asJob,
     &Causes::lockRegistry,
     {REGISTRY SHARED "Register.mdb"}},
    {row::registry, "not to be written, by hand", Begun::byHand, &Causes::lockRegistry, {}},
    {row::faults,
     "missing, by a host",
     Begun::byHost,
     &Causes::missFaults,
     {FAULTS "Could not find file 'FAULT.MDB'."}},
    {row::faults,
     "missing, a job",
     Begun::asJob,
     &Causes::missFaults,
     {FAULTS "Could not find file 'FAULT.MDB'."}},
    {row::faults,
     "missing, by hand",
     Begun::byHand,
     &Causes::missFaults,
     {FAULTS "Could not find file 'FAULT.MDB'."}},
    {row::faults, "no database, by a host", Begun::byHost, &Causes::spoilFaults, {FAULTS NO_DATABASE}},
    {row::faults, "no database, a job", Begun::asJob, &Causes::spoilFaults, {FAULTS NO_DATABASE}},
    {row::faults, "no database, by hand", Begun::byHand, &Causes::spoilFaults, {FAULTS NO_DATABASE}},
    {row::faults,
     "not to be written, by a host",
     Begun::byHost,
     &Causes::lockFaults,
     {FAULTS ADDINS "DATABASE\\FAULT.MDB"}},
    {row::faults,
     "not to be written, a job",
     Begun::asJob,
     &Causes::lockFaults,
     {FAULTS ADDINS "DATABASE\\FAULT.MDB"}},
    {row::faults,
     "not to be written, by hand",
     Begun::byHand,
     &Causes::lockFaults,
     {FAULTS ADDINS "DATABASE\\FAULT.MDB"}},
    {row::exchanges,
     "unreadable, by a host",
     Begun::byHost,
     &Causes::missExchanges,
     {UNREADABLE "no PBXList"}},
    {row::exchanges, "unreadable, a job", Begun::asJob, &Causes::missExchanges, {UNREADABLE "no PBXList"}},
    {row::exchanges, "unreadable, by hand", Begun::byHand, &Causes::missExchanges, {UNREADABLE "no PBXList"}},
    {row::faultTable,
     "unreadable, by a host",
     Begun::byHost,
     &Causes::missFaultTable,
     {UNREADABLE "no FaultDisplay"}},
    {row::faultTable,
     "unreadable, a job",
     Begun::asJob,
     &Causes::missFaultTable,
     {UNREADABLE "no FaultDisplay"}},
    {row::faultTable,
     "unreadable, by hand",
     Begun::byHand,
     &Causes::missFaultTable,
     {UNREADABLE "no FaultDisplay"}},
    {"`Schedule.mdb`", "missing, by a host", Begun::byHost, &Causes::missOptions, {}},
    {"`Schedule.mdb`",
     "missing, a job",
     Begun::asJob,
     &Causes::missOptions,
     {JOBS "Could not find file 'Schedule.mdb'. | job 1"}},
    {"`Schedule.mdb`", "missing, by hand", Begun::byHand, &Causes::missOptions, {}},
    {"`Schedule.mdb`", "no database, by a host", Begun::byHost, &Causes::spoilOptions, {}},
    {"`Schedule.mdb`",
     "no database, a job",
     Begun::asJob,
     &Causes::spoilOptions,
     {JOBS NO_DATABASE " | job 1"}},
    {"`Schedule.mdb`", "no database, by hand", Begun::byHand, &Causes::spoilOptions, {}},
    {"does its work", "its list is stored", Begun::asJob, &Causes::nothing, {}, &Causes::goesWell},
    {row::turnedDown,
     "BUSY",
     Begun::asJob,
     &Causes::nothing,
     {"18 " OPTIONS "night1.tlg | busy | job 1"},
     &Causes::isBusy},
    {row::turnedDown,
     "BUSY each time",
     Begun::asJob,
     &Causes::nothing,
     {"18 " OPTIONS "night3.tlg | busy | job 3"},
     &Causes::isBusyThreeTimes},
    {row::turnedDown,
     "code 61",
     Begun::asJob,
     &Causes::nothing,
     {"18 " OPTIONS "night1.tlg | code 61 | job 1"},
     &Causes::answersWithCode},
    {row::turnedDown,
     "code 61, no log kept",
     Begun::asJob,
     &Causes::nothing,
     {"18 " OPTIONS "Schedule.mdb | code 61 | job 5"},
     &Causes::answersWithCodeUnlogged},
    {"brings a list that is not whole",
     "half a group",
     Begun::asJob,
     &Causes::nothing,
     {"18 " OPTIONS "night1.tlg | cut short | job 1"},
     &Causes::answersCutShort},
    {"can't acknowledge its list",
     "BUSY",
     Begun::asJob,
     &Causes::nothing,
     {"18 " OPTIONS "night1.tlg | busy | job 1"},
     &Causes::isNotAcknowledged},
    {row::noWork,
     "no exchange",
     Begun::asJob,
     &Causes::nothing,
     {"18 " OPTIONS "night1.tlg | no exchange | job 1"},
     &Causes::hasNoExchange},
    {row::noWork,
     "another kind",
     Begun::asJob,
     &Causes::nothing,
     {"18 " OPTIONS "night6.tlg | another kind | job 6"},
     &Causes::isOfAnotherKind},
    {row::letGo,
     "let go",
     Begun::asJob,
     &Causes::nothing,
     {"18 " OPTIONS "night1.tlg | let go | job 1"},
     &Causes::isLetGo},
    {"is cancelled by its host", "at once", Begun::asJob, &Causes::nothing, {}, &Causes::isCancelled},
    {"is cancelled behind a failure",
     "at the second repetition",
     Begun::asJob,
     &Causes::nothing,
     {"18 " OPTIONS "night3.tlg | busy | job 3"},
     &Causes::isCancelledBehindAFailure},
    {row::notStarted,
     "a key that is no number",
     Begun::asJob,
     &Causes::nothing,
     {"18 " OPTIONS "Schedule.mdb | RunSchedule = 10000 | job night"},
     &Causes::canNotStart},
};

TEST_P(Causes, EachIsOneEntry) {
  begin(GetParam());
  EXPECT_EQ(told(), GetParam().entries);
}

INSTANTIATE_TEST_SUITE_P(Reliability, Causes, testing::ValuesIn(causes));

// --- what the entries say

struct Texts {
  std::u16string event, remedy;
};

// data/language/LANGUAGE/events.tsv by number.
std::map<int, Texts> textsIn(const std::string& language) {
  std::ifstream in(test::sourceFolder() / "data/language" / language / "events.tsv");
  std::map<int, Texts> texts;
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line[0] == '#') continue;
    const std::size_t first = line.find('\t'), second = line.find('\t', first + 1);
    EXPECT_TRUE(
        texts
            .emplace(std::stoi(line), Texts{text::fromUtf8(line.substr(first + 1, second - first - 1)),
                                            text::fromUtf8(line.substr(second + 1))})
            .second)
        << line;
  }
  return texts;
}

class EventTexts : public testing::TestWithParam<const char*> {};

TEST_P(EventTexts, EachEntryNamesFileAndReasonAndHasItsRemedy) {
  const auto texts = textsIn(GetParam());
  std::set<int> numbers;
  for (const auto& kind : platform::eventKinds) {
    const int number = static_cast<int>(kind.event);
    numbers.insert(number);
    SCOPED_TRACE(number);
    ASSERT_TRUE(texts.contains(number));
    const auto& [event, remedy] = texts.at(number);
    const bool ofAJob = kind.event == Event::runFailed || kind.event == Event::jobOptionsUnusable;
    const std::u16string filled = fillText(event, {u"FILE", u"REASON", u"JOB"});
    EXPECT_NE(filled.find(u"FILE"), filled.npos);
    EXPECT_NE(filled.find(u"REASON"), filled.npos);
    EXPECT_EQ(filled.find(u"JOB") != filled.npos, ofAJob);
    EXPECT_EQ(filled.find(u'{'), filled.npos);
    EXPECT_GE(remedy.size(), 20U);
    EXPECT_EQ(remedy.find(u'{'), remedy.npos);
  }
  EXPECT_EQ(texts.size(), numbers.size()) << "a number twice, or a text without a number";
}

INSTANTIATE_TEST_SUITE_P(Languages, EventTexts, testing::Values("en", "ru", "ja"));

// --- the tables of docs/reliability.md

// First cell to last cell of each row of the tables whose last heading is "Event log".
std::map<std::string, std::string> documentedEntries() {
  std::ifstream in(test::sourceFolder() / "docs/reliability.md");
  std::map<std::string, std::string> entries;
  bool inTable = false;
  for (std::string line; std::getline(in, line);) {
    if (line.ends_with("| Event log |"))
      inTable = true;
    else if (!line.starts_with("|"))
      inTable = false;
    else if (inTable && !line.starts_with("|-")) {
      const std::size_t last = line.rfind('|', line.size() - 2);
      entries.emplace(line.substr(2, line.find(" |") - 2), line.substr(last + 2, line.size() - last - 4));
    }
  }
  return entries;
}

// What a cell says before any words: "14", "13" of "13, for a host"; "none" else.
std::string numberIn(const std::string& cell) {
  static const std::regex number("^[0-9]+");
  std::smatch found;
  return std::regex_search(cell, found, number) ? found.str() : "none";
}

TEST(EventTables, EachRowHasItsCausesAndNamesTheirEntry) {
  std::map<std::string, std::set<std::string>> walked;
  for (const Cause& cause : causes) {
    auto& numbers = walked[cause.row];
    for (const std::string& entry : cause.entries) numbers.insert(numberIn(entry));
  }
  std::map<std::string, std::set<std::string>> documented;
  for (const auto& [row, cell] : documentedEntries()) {
    auto& numbers = documented[row];
    if (numberIn(cell) != "none") numbers.insert(numberIn(cell));
  }
  EXPECT_EQ(walked, documented);
}

// --- what else holds

// What everybody else notices of a cause: host, exchange and person, the run's log, the process.
struct Noticed {
  Lines trace, log;
  bool ended, shown;
  bool operator==(const Noticed&) const = default;
};

class OneMore : public Causes {
 public:
  Noticed noticed(const Cause& cause, fakes::MemoryEventLog::State logState) {
    events.state = logState;
    begin(cause);
    EXPECT_EQ(events.asked, static_cast<int>(cause.entries.size()));
    return {taken(), log(), process.ended, view.shown};
  }
  void TestBody() override {}
};

TEST_P(Causes, ALogThatCanNotBeWrittenChangesNothingForAnybody) {
  using State = fakes::MemoryEventLog::State;
  const Noticed usual = OneMore().noticed(GetParam(), State::works);
  EXPECT_TRUE(OneMore().noticed(GetParam(), State::refuses) == usual);
  EXPECT_TRUE(OneMore().noticed(GetParam(), State::starves) == usual);
}

// --- several in one process

class Repeated : public Causes {};

TEST_F(Repeated, AFileIsToldOfOnceHoweverOftenAStepMeetsIt) {
  start();
  missFaultTable();
  layer = createLayer();
  for (int i = 0; i < 3; ++i) registerPbx(u"PBX-1");
  EXPECT_EQ(told(), (Lines{"15 " ADDINS "DATABASE\\FAULT.MDB | no FaultDisplay"}));
}

TEST_F(Repeated, TheFirstFailureOfARunIsTheOneThatIsTold) {
  startWithHost();
  runSchedule(u"4");  // goes on behind an error
  tick();
  tick();
  exchange().answer(5);
  exchange().loginAnswer = std::u16string(u"BUSY");
  while (tick()) {
  }
  EXPECT_EQ(told(), (Lines{"18 " OPTIONS "night4.tlg | code 5 | job 4"}));
}

// What fails outside a run is seen on the screen.
TEST_F(Repeated, AFailureBeforeARunIsNotTheRuns) {
  startWithHost();
  exchange().loginAnswer = std::u16string(u"BUSY");
  pressAndTick(0);
  exchange().loginAnswer = std::u16string(u"L1");
  goesWell();
  EXPECT_EQ(told(), Lines{});
}

// The exchange answers a cancellation with an error, as it does.
TEST_F(Repeated, WhatACancellationBringsIsNoFailure) {
  startWithHost();
  runSchedule(u"1");
  tick();
  tick();
  bool answered = false;
  exchange().on(u"CancelRequest", [&](auto) {
    answered = true;
    exchange().answer(61);
    return automation::Value();
  });
  callInteger(u"CancelSchedule");
  EXPECT_TRUE(answered);
  EXPECT_EQ(told(), Lines{});
}

// Damage that is met in the middle of a run is its cause.
TEST_F(Repeated, AStoreThatFailsInARunIsItsOnlyEntry) {
  bool damaged = false;
  engine.between = [&damaged](std::u16string_view path, auto file) -> std::unique_ptr<database::Database> {
    if (!path.ends_with(u"FAULT.MDB")) return file;
    auto watched = std::make_unique<fakes::WatchedDatabase>(std::move(file));
    watched->before = [&damaged](std::u16string_view) {
      if (damaged) throw database::DatabaseError(3049, u"damaged");
    };
    return watched;
  };
  startWithHost();
  runSchedule(u"1");
  tick();
  tick();
  damaged = true;
  exchange().answer(0, oneFault());
  while (tick()) {
  }
  EXPECT_EQ(told(), (Lines{"15 " ADDINS "DATABASE\\FAULT.MDB | damaged"}));
}

// A write that fails in a run, of a store that can be shown all the same.
TEST_F(Repeated, AStepThatTheStoreRefusesIsTheRunsOwnFailure) {
  bool full = false;
  engine.between = [&full](std::u16string_view path, auto file) -> std::unique_ptr<database::Database> {
    if (!path.ends_with(u"FAULT.MDB")) return file;
    auto watched = std::make_unique<fakes::WatchedDatabase>(std::move(file));
    watched->before = [&full](std::u16string_view step) {
      if (full && step == u"update") throw database::DatabaseError(3026, u"no room");
    };
    return watched;
  };
  startWithHost();
  runSchedule(u"1");
  tick();
  tick();
  full = true;
  exchange().answer(0, oneFault());
  while (tick()) {
  }
  EXPECT_EQ(told(), (Lines{"18 " OPTIONS "night1.tlg | database: no room | job 1"}));
}

// The store has its entry; that the exchange is busy besides is another cause.
TEST_F(Repeated, ARunThatFailsForAnotherReasonThanTheStoreHasItsOwnEntry) {
  missFaults();
  startWithHost();
  isBusy();
  EXPECT_EQ(told(), (Lines{"14 " ADDINS "DATABASE\\FAULT.MDB | Could not find file 'FAULT.MDB'.",
                           "18 " OPTIONS "night1.tlg | busy | job 1"}));
}

// The exchange's names and texts reach the log: none of them may look like the place of another value.
TEST(EventValues, AreOneLineEachOfBearableLengthAndNoPlaces) {
  const auto values = platform::valuesOf(
      {Event::runFailed, u"C:\\A%1\\%23", u"100 %\r\nsecond\tline \x7F", std::u16string(300000, u'7')});
  EXPECT_EQ(values[0], u"C:\\A% 1\\% 23");
  EXPECT_EQ(values[1], u"100 %  second line  ");
  EXPECT_EQ(values[2], std::u16string(1000, u'7') + u"...");
}

TEST(EventNumbers, CarryTheirWeight) {
  EXPECT_EQ(platform::eventIdentifier(Event::runFailed), 0xC0000012U);
  EXPECT_EQ(platform::eventIdentifier(Event::textsIncomplete), 0x80000010U);
}

}  // namespace
}  // namespace vordane::startup
