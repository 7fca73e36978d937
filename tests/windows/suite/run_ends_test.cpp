// Jobs that are given up: a run cancelled by its host, whether the exchange server heeds it or not, a run
// whose window a person closes, and the creation of a job that is cancelled, closed or finished.
#include "library/installed_suite.h"
#include "library/run_log.h"

namespace vordane::suite {
namespace {

class RunEnds : public InstalledSuite {};

TEST_F(RunEnds, CancelledClosedAndFinished) {
  useScenario(L"run-ends");
  for (const int key : {21, 22, 23}) addJob({.key = key, .runs = 3});
  const Host host("run-cancelled");
  const Window window(&host.program());
  host.awaitLine("# READY to be closed");
  window.askToClose();
  host.awaitLine("# READY for the job to be closed");
  window.askToClose();
  host.awaitLine("# READY for the job to be chosen");
  window.press(L"cmdRequest");
  EXPECT_TRUE(endsAsExpected(host, "run-cancelled"));
  awaitGone();
  for (const char* log : {"ENDS21", "ENDS22", "ENDS23"})
    EXPECT_TRUE(isExpected(timeless(log), log + std::string(".log")));
}

}  // namespace
}  // namespace vordane::suite
