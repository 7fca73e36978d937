// An exchange that answers at once: whatever overtakes what, the host hears of every step of each request,
// and its flow is never left turned on.
#include "library/installed_suite.h"

namespace vordane::suite {
namespace {

class Immediate : public InstalledSuite {
 protected:
  void SetUp() override {
    InstalledSuite::SetUp();
    useScenario(L"immediate");
  }
};

// What a host was told of one request, from its log-in to its end.
struct Request {
  int told = 0, on = 0, done = 0, code = 0, off = 0;
};

std::vector<Request> requestsOf(const std::vector<std::string>& trace) {
  std::vector<Request> requests;
  bool ended = true;
  for (const std::string& line : trace) {
    const auto begins = [&](std::string_view beginning) { return line.starts_with(beginning); };
    if (begins("oPBX.Login = \"SIM-")) {
      requests.emplace_back();
      ended = false;
    }
    if (requests.empty()) continue;
    Request& now = requests.back();
    if (begins("oPBX.Login \"") || begins("EndProcess") || begins(">")) ended |= now.off > 0;
    if (ended) {
      EXPECT_FALSE(begins("TurnOnFlow")) << "request " << requests.size() << ": turned on behind its end";
      continue;
    }
    now.told += begins("ShowMessage ") && line.find("ACCEPTED-") != std::string::npos;
    EXPECT_FALSE(begins("TurnOnFlow") && now.off > 0) << "request " << requests.size() << ": turned on again";
    now.on += begins("TurnOnFlow");
    now.done += begins("ShowMessage \"Request done\"");
    now.code += begins("ShowCode 0");
    now.off += begins("TurnOffFlow");
  }
  return requests;
}

TEST_F(Immediate, AnAnswerThatOvertakesHasItsTurnBehindWhatTheHostIsTold) {
  const Host host("overtaken");
  EXPECT_TRUE(endsAsExpected(host, "overtaken"));
  awaitGone();
  EXPECT_EQ(stored(), 2);
}

TEST_F(Immediate, EveryRequestIsToldWholeWhateverComesFirst) {
  const Host host("immediate");
  ASSERT_EQ(host.wait(), 0) << host.trace();
  const auto requests = requestsOf(linesOf(host.trace()));
  EXPECT_EQ(requests.size(), 24U);
  for (std::size_t i = 0; i < requests.size(); ++i) {
    EXPECT_EQ(requests[i].told, 1) << "the acceptance of request " << i + 1;
    EXPECT_EQ(requests[i].done, 1) << "the answer of request " << i + 1;
    EXPECT_EQ(requests[i].code, 1) << "the answer of request " << i + 1;
    EXPECT_LE(requests[i].on, 1) << "request " << i + 1;
    EXPECT_EQ(requests[i].off, 1) << "request " << i + 1;
  }
  awaitGone();
  EXPECT_EQ(stored(), 1);
}

}  // namespace
}  // namespace vordane::suite
