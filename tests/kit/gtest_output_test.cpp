// What test programs print.
#include "kit/core/gtest_output.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vordane::kit {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(TestList, NamesStandBelowTheirSuite) {
  EXPECT_THAT(parseTestList("Running main() from somewhere.cc\n"
                            "Registrar.\n"
                            "  WritesBothViews\n"
                            "  TakesAway\n"
                            "Shipped/ProgramResources.\r\n"
                            "  TheVersion/0  # GetParam() = 8-byte object\r\n"),
              ElementsAre("Registrar.WritesBothViews", "Registrar.TakesAway",
                          "Shipped/ProgramResources.TheVersion/0"));
  EXPECT_THAT(parseTestList(""), IsEmpty());
  EXPECT_THAT(parseTestList("  indented words of a program that lists nothing\n"), IsEmpty());
}

TEST(TestRun, EachTestHasItsResultTimeAndWords) {
  const auto run = parseRun(
      "[==========] Running 3 tests\n"
      "[ RUN      ] A.Good\n"
      "[       OK ] A.Good (12 ms)\n"
      "[ RUN      ] A.Bad\n"
      "file.cpp:7: Failure\n"
      "Expected equality\r\n"
      "[  FAILED  ] A.Bad, where GetParam() = 4 (3 ms)\n"
      "[ RUN      ] A.Left\n"
      "no screen\n"
      "[  SKIPPED ] A.Left (0 ms)\n"
      "[  PASSED  ] 1 test.\n"
      "[  SKIPPED ] 1 test, listed below:\n"
      "[  SKIPPED ] A.Left\n"
      "[  FAILED  ] 1 test, listed below:\n"
      "[  FAILED  ] A.Bad, where GetParam() = 4\n");
  EXPECT_THAT(run,
              ElementsAre(TestResult{"A.Good", Result::passed, 12, ""},
                          TestResult{"A.Bad", Result::failed, 3, "file.cpp:7: Failure\nExpected equality\n"},
                          TestResult{"A.Left", Result::skipped, 0, "no screen\n"}));
}

TEST(TestRun, ATestThatDoesNotEndIsBroken) {
  EXPECT_THAT(parseRun("[ RUN      ] A.Dies\nabout to\n"),
              ElementsAre(TestResult{"A.Dies", Result::broken, 0, "about to\n"}));
}

// Another process may have printed half a line.
TEST(TestRun, AMarkMayStandBehindOtherWords) {
  EXPECT_THAT(parseRun("[ RUN      ] A.B\nserver says[       OK ] A.B (5 ms)\n"),
              ElementsAre(TestResult{"A.B", Result::passed, 5, "server says\n"}));
}

TEST(TestRun, WordsOfAnotherTestsEndDoNotEndThisOne) {
  EXPECT_THAT(parseRun("[ RUN      ] A.B\n[       OK ] X.Y (5 ms)\n[       OK ] A.B (6 ms)\n"),
              ElementsAre(TestResult{"A.B", Result::passed, 6, "[       OK ] X.Y (5 ms)\n"}));
}

TEST(TraceDifferences, AreTheLinesBelowTheHeads) {
  EXPECT_THAT(
      traceDifferences(
          "suite.cpp:9: Failure\nthe trace differs\n"
          "--- expected\n+++ came\n@@ -1,3 +1,3 @@\n GetComData\n-RegisterPBX False\n+RegisterPBX True\n"
          "code -1\n- not one\n"),
      ElementsAre("--- expected", "+++ came", "@@ -1,3 +1,3 @@", "-RegisterPBX False", "+RegisterPBX True"));
  EXPECT_THAT(traceDifferences("- a line of a list\n"), IsEmpty());
  EXPECT_THAT(traceDifferences("fetch.expected, line 3: expected \"TurnOnFlow\", got the end in\nLogin\n"),
              ElementsAre("fetch.expected, line 3: expected \"TurnOnFlow\", got the end in"));
}

}  // namespace
}  // namespace vordane::kit
