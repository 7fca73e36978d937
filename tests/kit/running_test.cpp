// Programs that pass, fail, die, hang and can't be started.
#include "kit/core/running.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

namespace vordane::kit {
namespace {

using testing::ElementsAre;

// A program whose tests behave as they are named: Good, Bad, Dies, Hangs, Skips, Stops.
class FakeProcesses : public Processes {
 public:
  Ended run(const Program&, const std::vector<std::string>& arguments, int seconds) override {
    if (arguments[0] == "--gtest_list_tests") return list;
    filters.push_back(arguments[0].substr(std::string("--gtest_filter=").size()));
    limit = seconds;
    Ended ended{.milliseconds = 100};
    std::string names = filters.back() + ':';
    for (std::size_t at = 0; at < names.size(); at = names.find(':', at) + 1) {
      const std::string name = names.substr(at, names.find(':', at) - at);
      if (names.find(':', at) == names.npos) break;
      if (!runTest(name, ended)) break;
    }
    return ended;
  }
  void cleanUp() override { ++cleaned; }

  Ended list;
  std::vector<std::string> filters;
  int limit = 0, cleaned = 0;

 private:
  static bool runTest(const std::string& name, Ended& ended) {
    const auto is = [&](const char* word) { return name.find(word) != name.npos; };
    ended.output += "[ RUN      ] " + name + "\n";
    if (is("Dies")) return ended.exitCode = 0xC0000005, false;
    if (is("Hangs")) return ended.inTime = false;
    if (is("Stops")) return ended.brokenOff = true, false;
    if (is("Bad")) ended.exitCode = 1;
    const char* mark = is("Bad") ? "[  FAILED  ] " : is("Skips") ? "[  SKIPPED ] " : "[       OK ] ";
    ended.output += mark + name + " (7 ms)\n";
    return true;
  }
};

std::vector<std::string> told(const ProgramResult& result) {
  std::vector<std::string> lines;
  for (const TestResult& test : result.tests)
    lines.push_back(test.name + " " + std::string(nameOf(test.result)));
  return lines;
}

const Program program{"x64", "some", "x64/some.exe", 300, false};

TEST(Running, OneProcessRunsAllOfThem) {
  FakeProcesses processes;
  processes.list.output = "A.\n  Good\n  Bad\n  Skips\n";
  const ProgramResult result = runProgram(program, {}, {}, processes);
  EXPECT_THAT(told(result), ElementsAre("A.Good passed", "A.Bad failed", "A.Skips skipped"));
  EXPECT_THAT(processes.filters, ElementsAre("A.Good:A.Bad:A.Skips"));
  EXPECT_EQ(processes.limit, 300);
  EXPECT_EQ(processes.cleaned, 1);
  EXPECT_EQ(result.failures(), 1);
  EXPECT_EQ(result.milliseconds, 100);
}

TEST(Running, WhatDiesOrHangsCostsThatTestAlone) {
  FakeProcesses processes;
  processes.list.output = "A.\n  Good\n  Dies\n  Good2\n  Hangs\n  Good3\n";
  const ProgramResult result = runProgram(program, {}, {}, processes);
  EXPECT_THAT(told(result), ElementsAre("A.Good passed", "A.Dies broken", "A.Good2 passed", "A.Hangs broken",
                                        "A.Good3 passed"));
  EXPECT_THAT(processes.filters,
              ElementsAre("A.Good:A.Dies:A.Good2:A.Hangs:A.Good3", "A.Good2:A.Hangs:A.Good3", "A.Good3"));
  EXPECT_EQ(result.tests[1].output, "The program ended inside it with 0xC0000005.");
  EXPECT_EQ(result.tests[3].output, "It was ended after 300 seconds.");
  EXPECT_EQ(result.failures(), 2);
  EXPECT_EQ(result.problem, "");
}

TEST(Running, EachAloneHasAProcessOfItsOwn) {
  FakeProcesses processes;
  processes.list.output = "A.\n  Good\n  Bad\n";
  Program alone = program;
  alone.alone = true;
  EXPECT_THAT(told(runProgram(alone, {}, {}, processes)), ElementsAre("A.Good passed", "A.Bad failed"));
  EXPECT_THAT(processes.filters, ElementsAre("A.Good", "A.Bad"));
  EXPECT_EQ(processes.cleaned, 2);
}

TEST(Running, WhatIsHeldBackOrNotChosenIsNotRun) {
  FakeProcesses processes;
  processes.list.output = "A.\n  Good\n  Good2\n  DISABLED_Bad\nB.\n  Good\n";
  const ProgramResult result =
      runProgram(program, Choice({"some:A.*"}), {{"some", "A.Good2", "not here"}}, processes);
  EXPECT_THAT(told(result), ElementsAre("A.Good passed"));
  EXPECT_THAT(result.held, ElementsAre(HeldTest{"A.Good2", "not here"}));
  EXPECT_EQ(result.failures(), 0);
}

TEST(Running, AProgramThatCantBeStartedIsAFailureUnlessItsWordSizeIsNotOfThisSystem) {
  FakeProcesses processes;
  processes.list = {.started = false, .notHere = false, .output = "access denied"};
  ProgramResult result = runProgram(program, {}, {}, processes);
  EXPECT_EQ(result.problem, "access denied");
  EXPECT_EQ(result.failures(), 1);
  processes.list.notHere = true;
  result = runProgram(program, {}, {}, processes);
  EXPECT_EQ(result.failures(), 0);
  EXPECT_TRUE(result.notHere);
}

TEST(Running, AProgramThatListsNothingIsAFailure) {
  FakeProcesses processes;
  processes.list = {.exitCode = 3, .output = "no library\n"};
  const ProgramResult result = runProgram(program, {}, {}, processes);
  EXPECT_EQ(result.problem, "The program did not list its tests (0x00000003).\nno library\n");
  EXPECT_EQ(result.failures(), 1);
}

// It passes each test and fails when it clears up.
TEST(Running, AFailureOutsideOfTheTestsCounts) {
  class Untidy : public FakeProcesses {
   public:
    Ended run(const Program& which, const std::vector<std::string>& arguments, int seconds) override {
      Ended ended = FakeProcesses::run(which, arguments, seconds);
      if (arguments[0] != "--gtest_list_tests") ended.exitCode = 1;
      return ended;
    }
  } processes;
  processes.list.output = "A.\n  Good\n";
  const ProgramResult result = runProgram(program, {}, {}, processes);
  EXPECT_EQ(result.failures(), 1);
  EXPECT_EQ(result.problem.substr(0, 60), "The program ended with 0x00000001 outside of its tests.\n[ RU");
}

TEST(Running, ARunThatIsBrokenOffStopsThere) {
  FakeProcesses processes;
  processes.list.output = "A.\n  Good\n  Stops\n  Good2\n";
  const ProgramResult result = runProgram(program, {}, {}, processes);
  EXPECT_THAT(told(result), ElementsAre("A.Good passed", "A.Stops broken"));
  EXPECT_TRUE(result.brokenOff);
  EXPECT_EQ(processes.filters.size(), 1U);
  EXPECT_EQ(processes.cleaned, 1);
}

}  // namespace
}  // namespace vordane::kit
