// Reference counts balance: objects created and let go of beside one that is held, and add-ins created and
// released to the end of their processes, leave no process, handle or memory behind. The short version; the
// long one: VORDANE_KEEPER_ROUNDS=10000 VORDANE_ENDINGS=200 VORDANE_SUITE_PATIENCE=5000
// VORDANE_TEST_TIMEOUT=5000.
#include <iostream>

#include "library/installed_suite.h"

namespace vordane::suite {
namespace {

class Rounds : public InstalledSuite {
 protected:
  static void expectRounds(const std::wstring& kind, const wchar_t* name, const std::wstring& usual) {
    const std::wstring wanted = variable(name);
    const Ended ended =
        run(layout().helpers / L"rounds" / L"rounds.exe", {kind, wanted.empty() ? usual : wanted});
    std::cout << ended.output;
    EXPECT_EQ(ended.code, 0);
    awaitGone();
    EXPECT_EQ(stored(), 0) << "in a fault database that can be read";
  }
};

TEST_F(Rounds, BesideAnObjectThatIsHeld) {
  expectRounds(L"keeper", L"VORDANE_KEEPER_ROUNDS", L"200");
}

TEST_F(Rounds, ToTheEndOfTheProcess) {
  expectRounds(L"endings", L"VORDANE_ENDINGS", L"10");
}

}  // namespace
}  // namespace vordane::suite
