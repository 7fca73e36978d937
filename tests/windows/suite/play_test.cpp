// Conversations that a trace has told of are played again, with the programs themselves: they come as they
// came, and a line that is changed by hand is found.
#include <algorithm>

#include "library/installed_suite.h"
#include "library/traced.h"

namespace vordane::suite {
namespace {

// The exchange answers when the call that told the host of the accepted request has come back: an answer in
// the middle of it can't be played.
const std::string answered = "wait TurnOnFlow within 90000\ngive heard\nwait TurnOffFlow within 60000\n";
const std::string begun = "pbx create\ncreate\n";

class Play : public InstalledSuite {
 protected:
  void SetUp() override {
    InstalledSuite::SetUp();
    keepTraces();
  }

  static testing::AssertionResult comesAgain(std::size_t starts, const Path& file = traceFolder()) {
    awaitGone();
    const Ended ended = playAgain(file);
    std::size_t same = 0;
    for (const std::string& line : linesOf(ended.output))
      same += line == "the add-in did the same again" ? 1 : 0;
    if (ended.code == 0 && same == starts) return testing::AssertionSuccess();
    const Path log = layout().elsewhere / L"PLAY" / L"stage" / L"host.log";
    return testing::AssertionFailure() << ended.code << "\n"
                                       << ended.output << (std::filesystem::exists(log) ? readText(log) : "");
  }
};

// The suite that is installed is as it was before, and so are the settings of the window.
TEST_F(Play, AFetchComesAgainAndAChangeByHandIsFound) {
  useScenario(L"host");
  {
    const Host host("play",
                    begun + "register PBX-1 1\nshow\nnote READY\n" + answered + answered + "release\n");
    host.pressRequest();
    ASSERT_EQ(host.wait(), 0);
    awaitGone();
  }
  const std::string before = readText(layout().faults());
  EXPECT_TRUE(comesAgain(1));
  EXPECT_EQ(readText(layout().faults()), before);
  EXPECT_EQ(
      sql(layout().elsewhere / L"PLAY" / L"QUILMAR32" / L"38000" / L"ADDINS" / L"DATABASE" / L"FAULT.MDB",
          "SELECT count(*) FROM FaultDisplay"),
      "80");
  EXPECT_EQ(traceSetting(L"Folder"), traceFolder().wstring());

  const Path capsule = layout().elsewhere / L"it.capsule";
  const Ended packed =
      run(layout().tools(), {L"capsule", L"make", layout().root.wstring(), capsule.wstring(), L"--exchange",
                             L"PBX-1", L"--trace", traceFolder().wstring(), L"--anonymous"});
  EXPECT_EQ(packed.code, 0) << packed.output;
  EXPECT_EQ(sql(capsule, "SELECT PBXName FROM \"PBXList in FAULT.MDB\""), "Exchange-1");
  EXPECT_TRUE(comesAgain(1, capsule)) << "under another name";

  const Path file = std::filesystem::directory_iterator(traceFolder())->path();
  std::vector<std::string> lines = linesOf(readText(file));
  const auto told = std::find_if(lines.begin(), lines.end(), [](const std::string& line) {
    return line.find("\"ShowCode\"") != std::string::npos;
  });
  ASSERT_NE(told, lines.end());
  told->replace(told->find("\"arguments\":[0]"), 15, "\"arguments\":[7]");
  writeText(file, joined(lines));
  const Ended changed = playAgain(traceFolder());
  EXPECT_EQ(changed.code, 3) << changed.output;
  EXPECT_NE(changed.output.find("line " + std::to_string(told - lines.begin() + 1) + ": it went otherwise\n"),
            std::string::npos)
      << changed.output;
}

TEST_F(Play, RequestsThatFailFailAgain) {
  useScenario(L"failures");
  {
    const Host host("play",
                    begun + "register BUSY 1\nshow\nnote READY BUSY\nwait ShowMessage within 90000\n" +
                        "register SEND-ERROR 1\nnote READY SEND-ERROR\nwait TurnOffFlow within 60000\n" +
                        "register CODE-61 1\nnote READY CODE-61\n" + answered +
                        "register CODE-200 1\nnote READY CODE-200\n" + answered + answered +
                        "register NO-ENTRIES 1\nnote READY NO-ENTRIES\n" + answered + answered + "release\n");
    for (const char* exchange : {"BUSY", "SEND-ERROR", "CODE-61", "CODE-200", "NO-ENTRIES"})
      host.pressRequest(exchange);
    Window(&host.program()).answerBox();
    ASSERT_EQ(host.wait(), 0);
  }
  EXPECT_TRUE(comesAgain(1));
}

TEST_F(Play, AnUnattendedRunRunsAgain) {
  useScenario(L"run-ends");
  {
    const Host host("play", begun + "register PBX-1 1\nbackground 2\nrun 1\n" + answered + answered +
                                "wait UnloadChild within 60000\nrelease\n");
    ASSERT_EQ(host.wait(), 0);
  }
  EXPECT_TRUE(comesAgain(1));
}

// A list, its lamps, a reset, and a second list without anything new.
TEST_F(Play, AStartByHandComesAgainWithItsBoxes) {
  keepLog();
  {
    StartedByHand addin;
    addin.fetch();
    addin.window.press(L"cmdReset");
    EXPECT_EQ(addin.window.answerBox().text, "The alarms of the exchange are reset.");
    addin.window.pressHeading(3);
    addin.window.press(L"cmdRequest");
    EXPECT_EQ(addin.window.answerBox().text, "The exchange has no new faults.");
    addin.window.awaitIdle();
    addin.window.press(L"cmdClose");
    ASSERT_EQ(addin.program.wait(), 0);
  }
  EXPECT_TRUE(comesAgain(1));
}

}  // namespace
}  // namespace vordane::suite
