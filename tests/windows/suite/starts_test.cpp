// Whole starts of the program with one piece missing or damaged: each on a suite that was whole
// before. What the host, the person and the run's log are told, and how each process ends, stands in
// host\starts-*.expected; docs/reliability.md holds the same as a table. Of a process that the workstation
// starts for a host, only who watches it sees the code that it ends with.
#include <algorithm>
#include <regex>

#include "library/installed_suite.h"
#include "library/run_log.h"

namespace vordane::suite {
namespace {

struct Damage {
  const char* name;
  const wchar_t* file;  // in the own databases, or the shared ones
  bool shared;
  const char* statement;  // nothing: see `missing`
  bool missing;           // else no database any more
};

constexpr Damage damages[] = {
    {"Common.LNG is missing", L"Common.LNG", true, nullptr, true},
    {"Common.LNG is no database", L"Common.LNG", true, nullptr, false},
    {"VORDANE.LNG is missing", L"VORDANE.LNG", false, nullptr, true},
    {"VORDANE.LNG is no database", L"VORDANE.LNG", false, nullptr, false},
    {"VORDANE.LNG without its messages", L"VORDANE.LNG", false, "DROP TABLE tMessages", false},
    {"VORDANE.LNG without its project texts", L"VORDANE.LNG", false, "DELETE FROM tProject", false},
    {"VORDANE.LNG without texts of controls", L"VORDANE.LNG", false, "DROP TABLE tControls", false},
    {"Register.mdb is missing", L"Register.mdb", true, nullptr, true},
    {"Register.mdb is no database", L"Register.mdb", true, nullptr, false},
    {"Register.mdb without its table", L"Register.mdb", true, "DROP TABLE Registry", false},
    {"FAULT.MDB is missing", L"FAULT.MDB", false, nullptr, true},
    {"FAULT.MDB is no database", L"FAULT.MDB", false, nullptr, false},
    {"FAULT.MDB without exchanges", L"FAULT.MDB", false, "DROP TABLE PBXList", false},
    {"FAULT.MDB without faults", L"FAULT.MDB", false, "DROP TABLE FaultDisplay", false},
    {"Schedule.mdb is missing", L"Schedule.mdb", true, nullptr, true},
    {"Schedule.mdb is no database", L"Schedule.mdb", true, nullptr, false},
};

void damage(const std::string& name) {
  if (name == "nothing") return;
  const auto* found = std::find_if(std::begin(damages), std::end(damages),
                                   [&](const Damage& entry) { return name == entry.name; });
  if (found == std::end(damages)) throw Failure("no such damage: " + name);
  const Path file = (found->shared ? layout().sharedDatabases() : layout().ownDatabases()) / found->file;
  if (found->statement != nullptr)
    sql(file, found->statement);
  else if (found->missing)
    std::filesystem::remove(file);
  else
    writeText(file, "no database at all\n");
}

// What ends a process at its start, and what in its first creation of a layer.
constexpr const char* endingAtOnce[] = {"Common.LNG is missing",
                                        "Common.LNG is no database",
                                        "VORDANE.LNG is missing",
                                        "VORDANE.LNG is no database",
                                        "VORDANE.LNG without its messages",
                                        "VORDANE.LNG without its project texts"};
constexpr const char* endingInACreation[] = {"Register.mdb is missing", "Register.mdb is no database",
                                             "Register.mdb without its table"};

bool aboutFaults(const std::string& name) {
  return name.starts_with("FAULT.MDB ");
}

std::string inOneLine(std::string text) {
  text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
  std::replace(text.begin(), text.end(), '\n', ' ');
  return text;
}

class Starts : public InstalledSuite {
 protected:
  void SetUp() override {
    InstalledSuite::SetUp();
    addJob({.key = 41});
    sql(layout().sharedDatabases() / L"Register.mdb", "UPDATE Registry SET Version = '0.0.0'");
    copyFolder(layout().ownDatabases(), kept_ / L"own");
    copyFolder(layout().sharedDatabases(), kept_ / L"shared");
  }

  // Each start that the expected file names, one after the other on the same suite.
  void eachStart(const std::string& expected, const std::function<void(const std::string&)>& start) {
    for (const std::string& line : linesOf(readText(layout().tests() / "host" / expected))) {
      if (!line.starts_with("## ")) continue;
      const std::string name = line.substr(3);
      damage(name);
      keepLog();  // what the exchange of the start before has logged counts no more
      say(line);
      start(name);
      restore();
    }
    EXPECT_TRUE(isExpected(got_, expected));
  }

  void say(const std::string& line) { got_ += line + "\n"; }
  void sayBox(const std::string& before, const Box& box) { say(before + inOneLine(box.whole())); }

  void sayRunLog() {
    const auto file = findRunLog("*");
    if (!file) return say("no run log");
    say("the run log:");
    for (const std::string& line : runLog("*")) say("  " + line);
    std::filesystem::remove(*file);
  }

  void restore() {
    endSuitePrograms();
    putBack();
  }
  void putBack() {
    emptyFolder(layout().ownDatabases());
    emptyFolder(layout().sharedDatabases());
    copyFolder(kept_ / L"own", layout().ownDatabases());
    copyFolder(kept_ / L"shared", layout().sharedDatabases());
  }

 private:
  Path kept_ = layout().elsewhere / L"kept";
  std::string got_;
};

// What the host does of its own and what is told it, without the conversation. Which error a creation ends
// with when the program goes is the workstation's affair.
std::string hostLines(const std::string& trace) {
  static const std::regex left(
      "oPBX.*|TurnO.*|GetComData.*|REGComData.*|GetMPVersion.*|getsysinfo.*|ShowMessage \"Exchange.*");
  static const std::regex error("! 0x.*");
  std::string kept;
  for (const std::string& line : linesOf(masked(trace)))
    if (!std::regex_match(line, left)) kept += std::regex_replace(line, error, "! an error") + "\n";
  return kept;
}

TEST_F(Starts, ByAHost) {
  useScenario(L"run-ends");
  eachStart("starts-host.expected", [this](const std::string& name) {
    const Host host("starts");
    if (name == "FAULT.MDB without faults") sayBox("a box: ", Window(&host.program()).answerBox());
    for (const std::string& line : linesOf(hostLines(host.trace()))) say(line);
    say("the host ends with " + std::to_string(host.wait()));
    awaitGone();
    sayRunLog();
    if (name == "nothing") {
      EXPECT_EQ(sql(layout().sharedDatabases() / L"Register.mdb",
                    "SELECT Version FROM Registry WHERE AppName = 'VORDANE.WRX'"),
                VORDANE_VERSION);
    }
  });
}

// As the workstation starts it for a host.
TEST_F(Starts, ByAHostEndAtOnceWithACode) {
  for (const char* name : endingAtOnce) {
    damage(name);
    const Program addin(layout().addin(), {L"-Embedding"}, layout().programs);
    EXPECT_EQ(addin.wait(), 1) << name;
    restore();
  }
}

// A record needs no registration: it keeps the process there to be looked at until a layer is asked of it.
TEST_F(Starts, ByAHostEndInTheCreationWithACodeAndTheNextOneWorks) {
  for (const char* name : endingInACreation) {
    SCOPED_TRACE(name);
    damage(name);
    const Host holding(
        "holding", "create record Vordane10013.cListRequest\nnote HELD\nwait UnloadChild within 600000\n");
    holding.awaitLine("# HELD");
    const auto running = suitePrograms(L"VORDANE.EXE");
    ASSERT_EQ(running.size(), 1U);
    const com::Handle addin(OpenProcess(SYNCHRONIZE | PROCESS_QUERY_INFORMATION, FALSE, running.front()));
    ASSERT_TRUE(addin);
    const Host refused("creating", "create\n");
    EXPECT_EQ(refused.wait(), 3) << refused.trace();
    ASSERT_EQ(WaitForSingleObject(addin.get(), patience()), WAIT_OBJECT_0);
    DWORD code = 0;
    EXPECT_TRUE(GetExitCodeProcess(addin.get(), &code));
    EXPECT_EQ(code, 1U);
    putBack();
    const Host next("creating", "create\nrelease\n");
    EXPECT_EQ(next.wait(), 0) << next.trace();
    awaitGone();
    restore();
  }
}

// A technician starts it and asks for the list.
TEST_F(Starts, ByHand) {
  useScenario(L"by-hand");
  eachStart("starts-hand.expected", [this](const std::string& name) {
    StartedByHand addin;
    std::vector<Box> boxes;
    const bool shown = addin.window.shownAfterBoxes(boxes);
    for (const Box& box : boxes) sayBox("a box: ", box);
    if (shown) {
      say("the window: " + inOneLine(addin.window.textOf(L"account")));
      say("in the place of the faults: " + inOneLine(addin.window.notice()));
      const std::size_t before = logged("LogOut");
      if (aboutFaults(name)) {
        addin.window.press(L"cmdRequest");
        sayBox("the list is asked for, a box: ", addin.window.answerBox());
        awaitLogged("LogOut", before + 1);
      } else {
        addin.fetch();
        say("the list is asked for: " + std::to_string(stored()) + " stored");
      }
      addin.window.press(L"cmdClose");
    }
    say("the program ends with " + std::to_string(addin.program.wait()));
  });
}

}  // namespace
}  // namespace vordane::suite
