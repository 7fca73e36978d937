// Whole starts of the program with one piece missing or damaged, each followed by one with everything in its
// place. What the host, the person and the run's log are told, and how each process ends, stands in
// host\starts-*.expected; docs/reliability.md holds the same as a table.
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

bool aboutFaults(const std::string& name) {
  return name.starts_with("FAULT.MDB ");
}

class Starts : public InstalledSuite {
 protected:
  void SetUp() override {
    InstalledSuite::SetUp();
    keepLog();
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
      say(line);
      start(name);
      restore();
    }
    EXPECT_TRUE(isExpected(got_, expected));
  }

  void say(const std::string& line) { got_ += line + "\n"; }
  void sayBox(const std::string& before, const Box& box) {
    std::string text = box.whole();
    text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
    std::replace(text.begin(), text.end(), '\n', ' ');
    say(before + text);
  }

  void sayRunLog() {
    const auto file = findRunLog("*");
    if (!file) return say("no run log");
    say("the run log:");
    for (const std::string& line : runLog("*")) say("  " + line);
    std::filesystem::remove(*file);
  }

 private:
  void restore() {
    endSuitePrograms();
    emptyFolder(layout().ownDatabases());
    emptyFolder(layout().sharedDatabases());
    copyFolder(kept_ / L"own", layout().ownDatabases());
    copyFolder(kept_ / L"shared", layout().sharedDatabases());
  }

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

// A technician starts it and asks for the list.
TEST_F(Starts, ByHand) {
  useScenario(L"by-hand");
  eachStart("starts-hand.expected", [this](const std::string& name) {
    StartedByHand addin;
    std::vector<Box> boxes;
    const bool shown = addin.window.shownAfterBoxes(boxes);
    for (const Box& box : boxes) sayBox("a box: ", box);
    if (shown) {
      say("the window");
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
