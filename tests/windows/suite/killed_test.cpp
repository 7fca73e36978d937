// A host dies: idle, inside a call of its own, inside one of the add-in's, in the middle of an answer, during
// the last release. No add-in stays, the database is whole and holds what it held, and the next host finds
// everything as ever.
#include "library/installed_suite.h"

namespace vordane::suite {
namespace {

void storeTheList() {
  const Host host("store-first");
  EXPECT_EQ(host.wait(), 0) << host.trace();
  awaitGone();
  EXPECT_EQ(stored(), 20);
}

class Killed : public InstalledSuite {
 protected:
  // All of them on one suite, each behind the other's death.
  static void SetUpTestSuite() {
    install("en");
    useScenario(L"killed");
    copyFile(layout().exchange / L"Zulsim.zul", layout().exchange / L"killed.zul");
    storeTheList();
  }
  static void TearDownTestSuite() { storeTheList(); }
  void SetUp() override {}

  // `last` is the beginning of the last line that the dead host printed.
  static void expectDead(const Host& host, const std::string& last) {
    EXPECT_NE(host.wait(), 0) << "the host ended by itself";
    const auto lines = linesOf(host.trace());
    ASSERT_FALSE(lines.empty());
    EXPECT_TRUE(lines.back().starts_with(last)) << "it died behind '" << lines.back() << "'";
    awaitGone();
    EXPECT_EQ(stored(), 20);
    EXPECT_EQ(integrity(layout().faults()), "ok");
  }
  static void killWhenReady(const Host& host) {
    host.awaitLine("> sleep");
    EXPECT_EQ(suitePrograms(L"VORDANE.EXE").size(), 1U);
    host.kill();
  }
};

TEST_F(Killed, Idle) {
  const Host host("killed-idle");
  killWhenReady(host);
  expectDead(host, "> sleep");
}

TEST_F(Killed, InACallWhileItRegistersAnExchange) {
  expectDead(Host("killed-registering"), "GetComData");
}

TEST_F(Killed, InACallThatTellsItOfAnAcceptance) {
  expectDead(Host("killed-told"), "TurnOnFlow");
}

TEST_F(Killed, WhileTheAnswerIsWaitedFor) {
  const Host host("killed-waiting");
  killWhenReady(host);
  expectDead(host, "> sleep");
}

TEST_F(Killed, InTheMiddleOfTheAnswer) {
  expectDead(Host("killed-answering"), "TurnOnFlow");
}

TEST_F(Killed, InTheLastRelease) {
  expectDead(Host("killed-releasing"), "REGComData");
}

}  // namespace
}  // namespace vordane::suite
