// A technician starts the add-in by hand.
#include "library/installed_suite.h"

namespace vordane::suite {
namespace {

class StandAlone : public InstalledSuite {};

constexpr int everyKind = 52;

// The exchange's list is fetched through the simulator's process, decoded, stored and shown; a second fetch
// adds nothing and says so; a killed and restarted program still shows what was stored.
TEST_F(StandAlone, AListIsFetchedStoredAndShownAlsoAfterAKill) {
  EXPECT_EQ(stored(), 0);
  keepLog();
  int first = 0;
  {
    StartedByHand addin;
    addin.fetch();
    first = stored();
    EXPECT_GE(first, everyKind);
    EXPECT_EQ(tools({L"list", layout().faults().wstring(), L"--count"}), std::to_string(first) + "\n");
    EXPECT_EQ(addin.window.rows(), first);
    EXPECT_EQ(addin.window.textOf(L"drpPBXList"), "PBX-1");
    EXPECT_NE(addin.window.textOf(L"txtTimeTag"), "") << "when the list was received";

    addin.window.press(L"cmdRequest");
    EXPECT_EQ(addin.window.answerBox().text, "The exchange has no new faults.");
    awaitLogged("LogOut", 4);
    addin.window.awaitIdle();
    EXPECT_EQ(stored(), first);
    addin.program.kill();
  }
  StartedByHand again;
  again.window.awaitShown();
  EXPECT_EQ(again.window.textOf(L"drpPBXList"), "PBX-1");
  EXPECT_EQ(again.window.rows(), first);
  EXPECT_EQ(stored(), first);
  again.window.press(L"cmdClose");
  EXPECT_EQ(again.program.wait(), 0);
}

TEST_F(StandAlone, ClosedWhileAnAnswerIsWaitedForItLetsTheExchangeGoOnce) {
  useScenario(L"silent");
  keepLog();
  StartedByHand addin;
  addin.window.press(L"cmdRequest");
  awaitLogged("SendRequest", 1);
  EXPECT_EQ(logged("LogOut"), 0U);
  addin.window.askToClose();
  EXPECT_EQ(addin.program.wait(), 0);
  EXPECT_EQ(logged("LogOut"), 1U);
}

}  // namespace
}  // namespace vordane::suite
