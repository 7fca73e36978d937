// What the report says of a run.
#include "kit/core/report.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vordane::kit {
namespace {

using testing::HasSubstr;
using testing::Not;

Report goodReport() {
  Report report{.version = "1.0.12", .begun = "2026-11-22 10:00:00", .ended = "2026-11-22 10:05:00"};
  report.system = {{"System", "Windows 11"}, {"Rights", "administrator"}};
  report.programs.push_back({.program = {"x64", "com_tests", "p", 300}});
  report.programs[0].tests = {{"A.Good", Result::passed, 12, ""},
                              {"A.Left", Result::skipped, 0, "a.cpp:3\nno <screen>\n"}};
  report.programs[0].held = {{"A.Held", "changes rights"}};
  report.programs[0].milliseconds = 4250;
  report.checklist = {{"7", "Press `F1`", "the help opens & stays"}};
  report.putBack = "as it was";
  report.putBackDone = true;
  return report;
}

TEST(Report, AllPassedWhenWhatRanPassedAndEverythingIsAsItWas) {
  EXPECT_TRUE(allPassed(goodReport()));
  EXPECT_EQ(summaryOf(goodReport()), "1 tests: 1 passed, 0 failed; 1 skipped, 1 left out");
  Report report = goodReport();
  report.putBackDone = false;
  EXPECT_FALSE(allPassed(report));
  report = goodReport();
  report.brokenOff = true;
  EXPECT_FALSE(allPassed(report));
  report = goodReport();
  report.programs[0].tests[0].result = Result::broken;
  EXPECT_FALSE(allPassed(report));
  report = goodReport();
  report.programs[0].problem = "it did not start";
  EXPECT_FALSE(allPassed(report));
  EXPECT_THAT(summaryOf(report), HasSubstr("1 programs with a problem"));
  report.programs[0].notHere = true;
  EXPECT_TRUE(allPassed(report));
}

TEST(Report, NothingRunIsNoPass) {
  Report report = goodReport();
  report.programs[0].tests.clear();
  EXPECT_FALSE(allPassed(report));
}

TEST(Report, TheJsonHasEveryTestWithItsOutputAndDifferences) {
  Report report = goodReport();
  report.programs[0].tests.push_back(
      {"A.Bad", Result::failed, 3, "differs \xFF\n--- expected\n+++ came\n-Login P\n+Login Q\n"});
  const std::string json = jsonText(report);
  for (const char* part :
       {"\"allPassed\": false", "\"version\": \"1.0.12\"", "\"System\": \"Windows 11\"",
        "\"name\": \"A.Good\"", "\"milliseconds\": 12", "\"result\": \"failed\"",
        "\"output\": \"differs \xEF\xBF\xBD\\n--- expected", "\"-Login P\",", "\"+Login Q\"",
        "\"name\": \"A.Held\"", "\"reason\": \"changes rights\"", "\"number\": \"7\"", "\"putBack\": true"})
    EXPECT_THAT(json, HasSubstr(part));
}

TEST(Report, ThePageTellsItToPeople) {
  Report report = goodReport();
  const std::string good = htmlText(report);
  for (const char* part :
       {"Everything passed.", "1 tests: 1 passed, 0 failed; 1 skipped, 1 left out.", "Windows 11",
        "no &lt;screen&gt;", "changes rights", "4.2 s", "Press <code>F1</code>", "the help opens &amp; stays",
        "contenteditable", "as it was"})
    EXPECT_THAT(good, HasSubstr(part));
  EXPECT_THAT(good, Not(HasSubstr("What failed")));
  report.programs[0].tests.push_back(
      {"A.Bad", Result::failed, 3, "a.cpp:9: Failure\n-Login <P>\n+Login Q\n"});
  const std::string bad = htmlText(report);
  for (const char* part : {"Not everything passed.", "What failed", "x64 com_tests: A.Bad",
                           "<span class=minus>-Login &lt;P&gt;</span>", "<span class=plus>+Login Q</span>"})
    EXPECT_THAT(bad, HasSubstr(part));
  report.brokenOff = true;
  EXPECT_THAT(htmlText(report), HasSubstr("Broken off."));
}

}  // namespace
}  // namespace vordane::kit
