#include "devhost/core/interpreter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>

#include "devhost/fakes.h"
#include "places.h"

namespace vordane::devhost {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class InterpreterTest : public testing::Test {
 protected:
  InterpreterTest() {
    environment_.classes[u"Vordane10013.cOLELayer"] = [] { return std::make_shared<FakeLayer>(); };
    environment_.classes[u"Vordane10013.cListRequest"] = [] {
      return std::make_shared<zulsim::AnswerRecord>();
    };
    directory_ =
        std::filesystem::temp_directory_path() /
        ("vordane-devhost-" + std::string(testing::UnitTest::GetInstance()->current_test_info()->name()) +
         std::to_string(std::random_device()()));
    std::filesystem::create_directories(directory_);
  }
  ~InterpreterTest() override { std::filesystem::remove_all(directory_); }

  void scenario(std::string_view text) { std::ofstream(directory_ / "try.zul") << text; }

  Outcome run(std::string_view text) {
    ParsedScript parsed = parseScript(text);
    EXPECT_EQ(lines::listing(u"script", parsed.problems), u"");
    Interpreter interpreter(environment_, {{}, directory_.u16string(), nullptr});
    return interpreter.run(parsed.statements);
  }

  FakeEnvironment environment_;
  std::filesystem::path directory_;
};

TEST_F(InterpreterTest, AWholeRunInTheOrderItHappens) {
  scenario("exchange PBX-1\nanswer LEA0\nmessage ready\ndelay 400\n");
  EXPECT_EQ(run("pbx in-process try.zul\n"
                "create\n"
                "register PBX-1 7\n"
                "show\n"
                "visible\n"
                "run 12\n"
                "wait EndProcess within 2000\n"
                "wait UnloadChild within 10\n"
                "release\n"),
            Outcome::done);
  EXPECT_THAT(
      environment_.lines,
      ElementsAre("> pbx in-process try.zul", "> create", "> register PBX-1 7", "getsysinfo \"PBX-1\"",
                  "= False", "> show", "> visible", "= True", "> run 12", "oPBX.Login \"PBX-1\" object",
                  "oPBX.Login = \"SIM-1\"", "ShowMessage \"PBX SIM-1\"", "oPBX.SendRequest object",
                  "oPBX.SendRequest = \"ACCEPTED-1\"", "ShowMessage \"PBX ACCEPTED-1\"", "TurnOnFlow", "= 0",
                  "> wait EndProcess within 2000", "ShowMessage \"ready\"", "ShowCode 0",
                  "oPBX.LogOut \"PBX-1\" \"SIM-1\"", "TurnOffFlow", "EndProcess \"12\" 20000",
                  "UnloadChild 7", "> wait UnloadChild within 10", "> release",
                  "REGComData \"VORDANE\" \"MOVE\" \"1200,900\""));
}

TEST_F(InterpreterTest, AWaitThatIsNotMetEndsTheScript) {
  EXPECT_EQ(run("wait UnloadChild within 50\nnote never reached\n"), Outcome::waitFailed);
  EXPECT_THAT(environment_.lines, ElementsAre("> wait UnloadChild within 50", "! UnloadChild did not come"));
}

TEST_F(InterpreterTest, AWaitTakesEachNotificationOnce) {
  scenario("exchange PBX-1\n");
  EXPECT_EQ(run("pbx in-process try.zul\ncreate\nregister PBX-1\nrun 1\nwait EndProcess within 100\n"
                "wait EndProcess within 100\n"),
            Outcome::waitFailed);
}

TEST_F(InterpreterTest, NeverFailsWhenTheNotificationComes) {
  scenario("exchange PBX-1\nanswer LEA0\ndelay 100\n");
  EXPECT_EQ(run("pbx in-process try.zul\ncreate\nregister PBX-1\nrun 1\nnever EndProcess within 99\n"
                "never EndProcess within 1\n"),
            Outcome::waitFailed);
  EXPECT_THAT(environment_.lines, testing::Contains("! EndProcess came"));
}

TEST_F(InterpreterTest, AFailedCallEndsTheScriptUnlessItWasTried) {
  EXPECT_EQ(run("try create other No.Such\ncreate\nomit oZUL\ntry register PBX-1\nregister PBX-1\nnote not "
                "reached\n"),
            Outcome::callFailed);
  EXPECT_THAT(environment_.lines,
              ElementsAre("> create other No.Such", "! 0x800401F3 \"no such class\"", "> create",
                          "> omit oZUL", "> register PBX-1", "! 0x80020006", "> register PBX-1",
                          "! 0x80020006", "REGComData \"VORDANE\" \"MOVE\" \"1200,900\""));
}

TEST_F(InterpreterTest, FreeCallsOnAnyObject) {
  EXPECT_EQ(
      run("create record Vordane10013.cListRequest\ncall record AddToList \"LEA0\"\nput record Tag \"10\"\n"
          "get record Tag\nget record Count\nget record CMD 0\nget record CMD 5\nrelease record\n"
          "try get record Count\n"),
      Outcome::done);
  EXPECT_THAT(
      environment_.lines,
      ElementsAre("> create record Vordane10013.cListRequest", "> call record AddToList \"LEA0\"",
                  "> put record Tag \"10\"", "> get record Tag", "= \"10\"", "> get record Count", "= 1",
                  "> get record CMD 0", "= \"LEA0\"", "> get record CMD 5", "= \"\"", "> release record",
                  "> get record Count", "! 0x800A005B \"there is no object \\\"record\\\"\""));
}

TEST_F(InterpreterTest, MembersCanBeTakenAwayAndGivenBack) {
  scenario("exchange PBX-1\n");
  EXPECT_EQ(run("quiet\npbx in-process try.zul\ncreate\nregister PBX-1\nomit ShowMessage\nraise ShowCode 5 "
                "no code\n"
                "slow TurnOnFlow 300\nloud\nrun 1\nwait UnloadChild within 100\nrestore ShowMessage\nrestore "
                "ShowCode\n"
                "run 2\nquiet\n"),
            Outcome::done);
  EXPECT_EQ(environment_.timers.paused, 600);
  EXPECT_THAT(environment_.lines, testing::Not(testing::Contains("ShowMessage \"PBX SIM-1\"")));
  EXPECT_THAT(environment_.lines, testing::Contains("ShowMessage \"PBX SIM-2\""));
}

TEST_F(InterpreterTest, WordsAreGivenAtOnceOrAtACallAndHoldOthers) {
  scenario("exchange PBX-1\nanswer LEA0\nwhen heard\nthen answered\n");
  const std::string begin = "pbx in-process try.zul\ncreate\nregister PBX-1\n",
                    wait = "wait UnloadChild within 1000\n";
  EXPECT_EQ(run(begin + "run 1\n" + wait), Outcome::waitFailed) << "nobody gives the word";
  EXPECT_EQ(run(begin + "run 1\ngive heard\n" + wait), Outcome::done);
  EXPECT_TRUE(environment_.timers.taken(u"answered"));
  EXPECT_EQ(run(begin + "give heard on TurnOnFlow\nhold TurnOnFlow until answered\nrun 1\n" + wait),
            Outcome::done);
  EXPECT_THAT(environment_.timers.words, ElementsAre()) << "taken by the call that it held";
  environment_.timers.give(u"heard");
  EXPECT_EQ(run(begin + "give heard on TurnOnFlow\nrestore TurnOnFlow\nrun 1\n" + wait), Outcome::done);
  EXPECT_FALSE(environment_.timers.taken(u"heard")) << "a member given back gives no word";
}

TEST_F(InterpreterTest, NextCallsBringWhatIsLaidDownForThemOneByOne) {
  EXPECT_EQ(run("create\nnext getsysinfo\nnext getsysinfo raise 0x800A0005 no\nregister A\nregister A\n"),
            Outcome::callFailed);
  EXPECT_THAT(environment_.lines, testing::Contains("! 0x800A0005 \"no\""));
  EXPECT_THAT(environment_.lines, testing::Contains("= False").Times(1)) << "the first call was as usual";
  EXPECT_EQ(run("create\nnext getsysinfo raise\ntry register A\nregister A\n"), Outcome::done)
      << "only the next call";
}

TEST_F(InterpreterTest, AScriptGoesOnWhenItsWordIsGiven) {
  environment_.after(500, [this] { environment_.give(u"go"); });
  EXPECT_EQ(run("when go\nnote went\n"), Outcome::done);
  EXPECT_EQ(environment_.lines.back(), "# went");
  EXPECT_FALSE(environment_.timers.taken(u"go"));
}

TEST_F(InterpreterTest, RepetitionsAndQuiet) {
  EXPECT_EQ(run("quiet\ncreate keeper\nloud\nrepeat 3\nnote round\nquiet\ncreate\nrelease\nloud\nend\n"),
            Outcome::done);
  EXPECT_EQ(std::count(environment_.lines.begin(), environment_.lines.end(), "# round"), 3);
}

TEST_F(InterpreterTest, AWrongScenarioIsToldWithItsLine) {
  scenario("exchange PBX-1\nlogon\n");
  EXPECT_EQ(run("pbx in-process try.zul\n"), Outcome::scriptWrong);
  EXPECT_THAT(environment_.lines.back(), HasSubstr("try.zul:2: \"logon\" is no word of a scenario"));
  EXPECT_EQ(run("pbx in-process none.zul\n"), Outcome::scriptWrong);
  EXPECT_THAT(environment_.lines.back(), HasSubstr("none.zul can't be read"));
}

TEST_F(InterpreterTest, AHostThatOutlivesItsScriptIsClosed) {
  std::weak_ptr<FakeLayer> layer;
  environment_.classes[u"Vordane10013.cOLELayer"] = [&] {
    const auto made = std::make_shared<FakeLayer>();
    layer = made;
    return made;
  };
  scenario("exchange PBX-1\nanswer LEA0\nnever\n");
  run("pbx in-process try.zul\ncreate\nregister PBX-1\nrun 1\n");
  EXPECT_TRUE(layer.expired());  // neither the waiting request nor the log-in holds it any more
}

TEST_F(InterpreterTest, CanEndWithoutAWord) {
  run("die\n");
  EXPECT_EQ(environment_.timers.vanished, 1);
}

TEST_F(InterpreterTest, TheShippedScriptsAreWellFormed) {
  const auto folder = test::sourceFolder() / "examples" / "devhost";
  int files = 0;
  for (const auto& file : std::filesystem::directory_iterator(folder)) {
    std::ifstream in(file.path(), std::ios::binary);
    const std::string text(std::istreambuf_iterator<char>(in), {});
    EXPECT_EQ(lines::listing(file.path().filename().u16string(), parseScript(text).problems), u"");
    ++files;
  }
  EXPECT_GE(files, 3);
}

}  // namespace
}  // namespace vordane::devhost
