// A host in its own process drives the add-in in its own, which talks to the exchange server in a third.
#include "library/installed_suite.h"

namespace vordane::suite {
namespace {

class DrivenByAHost : public InstalledSuite {};

// Every notification comes in its order, the last release ends the add-in, and the faults are in the
// database.
TEST_F(DrivenByAHost, AListIsFetchedThroughItsWindow) {
  useScenario(L"host");
  const Host host("fetch");
  host.pressRequest();
  EXPECT_EQ(suitePrograms(L"VORDANE.EXE").size(), 1U);
  EXPECT_TRUE(endsAsExpected(host, "fetch"));
  awaitGone();
  EXPECT_EQ(stored(), 80);
}

}  // namespace
}  // namespace vordane::suite
