// Unattended runs of a host's scheduler: the codes that come back, how often the list is fetched, and what
// each job's log says.
#include <algorithm>

#include "library/installed_suite.h"
#include "library/run_log.h"

namespace vordane::suite {
namespace {

class Schedule : public InstalledSuite {};

// Each run of a job waits before its request: the runs between whose line "Run N" and the next one lie so
// many seconds.
int runsThatWaited(const std::string& log, int seconds) {
  const auto lines = runLog(log);
  const auto times = runLogSeconds(log);
  int waited = 0;
  for (std::size_t i = 0; i + 1 < lines.size(); ++i)
    waited += lines[i].starts_with("Run ") && (times[i + 1] - times[i] + 86400) % 86400 >= seconds;
  return waited;
}

TEST_F(Schedule, EveryJobEndsWithItsCodeAndItsLog) {
  useScenario(L"jobs");
  const Host host("jobs");
  EXPECT_TRUE(endsAsExpected(host, "jobs"));
  awaitGone();
  EXPECT_EQ(stored(), 2) << "by three runs over the same list";
  for (const char* log : {"FAULT2", "FAULT3"}) {
    EXPECT_TRUE(isExpected(timeless(log), log + std::string(".log")));
    EXPECT_EQ(runsThatWaited(log, 2), 4) << log;
  }
}

}  // namespace
}  // namespace vordane::suite
