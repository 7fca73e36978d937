// Hosts that are killed in the middle of an unattended job. The add-in goes too, the database stays whole,
// and the log says what happened and no more.
#include <regex>

#include "library/installed_suite.h"
#include "library/run_log.h"

namespace vordane::suite {
namespace {

const std::string brokenOff = "The run was broken off: no program uses the fault display any more";

std::string script(const std::string& lines) {
  return "pbx create\ngive heard on TurnOnFlow\ncreate\n" + lines + "\nwait UnloadChild within 60000\n";
}

void expectGone(const Host& host, const std::string& name) {
  for (const std::string& line : linesOf(host.trace()))
    EXPECT_FALSE(line.starts_with("EndProcess") || line.starts_with("UnloadChild"))
        << "the host " << name << " lived on: " << line;
  awaitGone();
  EXPECT_EQ(integrity(layout().faults()), "ok") << name;
}

class HostGone : public InstalledSuite {
 protected:
  // All of them on one suite, each behind the other's death.
  static void SetUpTestSuite() {
    install("en");
    useScenario(L"run-ends");
    for (const int key : {31, 33, 34, 36}) addJob({.key = key});
    addJob({.key = 32, .wait = 5, .errorStop = false, .runs = 1000});
  }
  // What was left behind hinders nobody; the trace is that of a list that is stored already.
  static void TearDownTestSuite() {
    if (stored() == 0) {
      EXPECT_EQ(Host("before-deaths", script("register PBX-1 1\nrun 36")).wait(), 0);
    }
    const Host host("after-deaths");
    EXPECT_TRUE(endsAsExpected(host, "after-deaths"));
    awaitGone();
  }
  void SetUp() override {}
};

TEST_F(HostGone, WhileTheAnswerIsWaitedFor) {
  const Host host("waiting", script("register SLOW 1\nrun 31\nwait TurnOnFlow within 60000\ndie"));
  expectGone(host, "waiting");
  EXPECT_EQ(joined(runLog("ENDS31")), brokenOff + "\n");
}

TEST_F(HostGone, InThePauseBeforeARequest) {
  const Host host("pausing", script("register SLOW 1\nrun 32\nsleep 600000"));
  await("the first run's number", [] {
    const auto log = findRunLog("ENDS32");
    return log && std::filesystem::file_size(*log) > 0;
  });
  host.kill();
  expectGone(host, "pausing");
  const auto lines = runLog("ENDS32");
  ASSERT_FALSE(lines.empty());
  EXPECT_EQ(lines.front(), "Run 1");
  EXPECT_EQ(lines.back(), brokenOff);
  // Runs that the host's death has met go on until it is noticed.
  const std::regex other(
      "Run [0-9]+|No list received: the exchange server can't be reached \\(error 0x[0-9A-F]*\\)");
  for (std::size_t i = 0; i + 1 < lines.size(); ++i)
    EXPECT_TRUE(std::regex_match(lines[i], other)) << lines[i];
}

TEST_F(HostGone, InsideACallOfIts) {
  const Host host("calling", script("register SLOW 1\ndie SendRequest\nrun 33"));
  expectGone(host, "calling");
  EXPECT_EQ(joined(runLog("ENDS33")),
            "No list received: the exchange server did not take the request\n...\n");
}

TEST_F(HostGone, InTheMiddleOfTheAnswer) {
  const Host host("answering", script("register PBX-1 1\ndie ShowCode\nrun 34"));
  expectGone(host, "answering");
  bool listed = false, unacknowledged = false;
  for (const std::string& line : runLog("ENDS34")) {
    listed |= line == "List complete: 1 received, 1 new, 0 already stored, 0 refused";
    unacknowledged |= line.starts_with("List not acknowledged: the exchange server can't be reached");
    EXPECT_FALSE(line.starts_with("No list received")) << "a list that came is called not received";
  }
  EXPECT_TRUE(listed) << joined(runLog("ENDS34"));
  EXPECT_TRUE(unacknowledged) << joined(runLog("ENDS34"));
  EXPECT_EQ(stored(), 1) << "of the list that came";
}

TEST_F(HostGone, WhileAJobIsBeingMade) {
  const Host host("creating", script("register SLOW 1\ncreate-schedule 35 3\ndie"));
  expectGone(host, "creating");
}

}  // namespace
}  // namespace vordane::suite
