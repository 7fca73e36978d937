// What a host is told when a log-in is refused, a request is not taken, an answer carries an error code or no
// entry at all, and when the host itself lacks members or fails in them. Each leaves the window usable: the
// next request goes through the same window.
#include "library/installed_suite.h"

namespace vordane::suite {
namespace {

class HostFailures : public InstalledSuite {
 protected:
  void SetUp() override {
    InstalledSuite::SetUp();
    useScenario(L"failures");
  }
};

TEST_F(HostFailures, EachExchangeThatFailsLeavesTheWindowUsable) {
  const Host host("failures");
  for (const char* exchange : {"BUSY", "SEND-ERROR", "CODE-61", "CODE-200", "NO-ENTRIES"})
    host.pressRequest(exchange);
  EXPECT_EQ(Window(&host.program()).answerBox().text, "The exchange has no new faults.");
  EXPECT_TRUE(endsAsExpected(host, "failures"));
  awaitGone();
  EXPECT_EQ(stored(), 2) << "of the code 200";
}

TEST_F(HostFailures, AHostWithoutMembersAndOneThatFailsInThem) {
  const Host host("poor-host");
  host.pressRequest("PLAIN");
  EXPECT_TRUE(endsAsExpected(host, "poor-host"));
  awaitGone();
  EXPECT_EQ(stored(), 1);
}

}  // namespace
}  // namespace vordane::suite
