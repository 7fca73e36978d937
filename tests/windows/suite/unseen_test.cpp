// On a window station that nobody sees, as in a service's session: no box waits for an answer that can't
// come, and unattended runs do their work.
#include "library/installed_suite.h"

namespace vordane::suite {
namespace {

class Unseen : public InstalledSuite {
 protected:
  void SetUp() override {
    InstalledSuite::SetUp();
    useScenario(L"run-ends");
  }
};

TEST_F(Unseen, ARunDoesItsWork) {
  const Host host("unseen-run", Program::Station::unseen);
  EXPECT_TRUE(endsAsExpected(host, "unseen-run"));
  awaitGone();
  EXPECT_EQ(stored(), 1);
}

// A database without faults is told in a box when an exchange is registered, which a person sees, and which
// nobody waits for where nobody is.
TEST_F(Unseen, NoBoxWaits) {
  sql(layout().faults(), "DROP TABLE FaultDisplay");
  {
    const Host host("unseen-box");
    EXPECT_NE(Window(&host.program()).answerBox().text.find("faultdisplay"), std::string::npos);
    EXPECT_TRUE(endsAsExpected(host, "unseen-box"));
    awaitGone();
  }
  const Host host("unseen-box", Program::Station::unseen);
  EXPECT_TRUE(endsAsExpected(host, "unseen-box"));
  awaitGone();
}

}  // namespace
}  // namespace vordane::suite
