// Started by hand.
#include "startup/story.h"

namespace vordane::startup {
namespace {

using StandAlone = Story;

TEST_F(StandAlone, ANameShowsTheWindow) {
  startStandAlone(u"PBX-9");
  EXPECT_EQ(started, basMain::Start::window);
  EXPECT_TRUE(state.StandAlone);
  EXPECT_TRUE(view.shown);
  EXPECT_EQ(form().host().PBXName(), u"PBX-9");
  EXPECT_TRUE(state.WideFaultFields);
  EXPECT_EQ(form().form().self().text(u"Caption"), u"Fault list") << "localised after the name was set";
}

TEST_F(StandAlone, NoNameShowsNothing) {
  startStandAlone(u"");
  EXPECT_EQ(started, basMain::Start::nothing);
  EXPECT_FALSE(view.attached);
}

TEST_F(StandAlone, TheSimulatorBesideUsIsTakenWithoutAskingTheSettings) {
  files.content[u"Zulsim.exe"] = "";
  settings.write(u"Quilmar32", u"30000", u"ZUL", u"30001");
  startStandAlone(u"P");
  EXPECT_THAT(creator.asked, ElementsAre("CalderinProj30001.cPBXOLE"));
  EXPECT_THAT(settings.asked, testing::Not(testing::Contains(u"ZUL")));
}

TEST_F(StandAlone, TheSettingNamesTheServer) {
  settings.write(u"Quilmar32", u"30000", u"ZUL", u"40002");
  startStandAlone(u"P");
  EXPECT_THAT(creator.asked, ElementsAre("CalderinProj40002.cPBXOle"));
  EXPECT_THAT(settings.asked, testing::Contains(u"ZUL"));
  EXPECT_FALSE(form().life().CheckLoadError()) << "a server that can't be created doesn't stop the load";
}

TEST_F(StandAlone, WithoutAServerTheRequestSaysSo) {
  startStandAlone(u"P");
  EXPECT_THAT(creator.asked, ElementsAre("CalderinProj.cPBXOle"));
  pressAndTick(0);
  EXPECT_THAT(taken(), ElementsAre("(hourglass)", "(pointer)"));
  EXPECT_EQ(view.notice, u"P: no server");
  EXPECT_FALSE(state.busy);
}

TEST_F(StandAlone, TheConversationNeedsNoHost) {
  auto server = std::make_shared<fakes::MemoryExchange>(trace);
  creator.server = server;
  startStandAlone(u"P");
  pressAndTick(0);
  server->answer(0, oneFault());
  EXPECT_THAT(taken(), ElementsAre("(hourglass)", "Login P&",
                                   "SendRequest LEA0// tag 10 for P as L1 busy True mode 0 key ",
                                   "(disabled)", "LogOut P& L1&", "(enabled)", "(pointer)"));
  tick();
  server->answerLamps(u"01");
  tick();
  EXPECT_EQ(view.rows->size(), 1U);
  EXPECT_TRUE(view.minorLit);
}

TEST_F(StandAlone, CloseUnloadsAndEndsTheProcess) {
  startStandAlone(u"P");
  press(4);
  EXPECT_TRUE(view.attached);
  tick();
  EXPECT_THAT(taken(), ElementsAre("(stops serving)", "(window gone)", "(process ends)"));
}

TEST_F(StandAlone, TheTitleBarClosesAtOnce) {
  startStandAlone(u"P");
  form().input().closeAsked();
  EXPECT_TRUE(process.ended);
}

// Closed in the middle of a conversation: the exchange is let go before its server is, and once.
class StandAloneClosed : public Story {
 protected:
  StandAloneClosed() { creator.server = server; }
  ~StandAloneClosed() override { EXPECT_EQ(server.use_count(), 1) << "the server is let go"; }
  // What follows the request, whose caller lets go of the server object too.
  Lines ended() {
    creator.server.reset();
    Lines lines = taken();
    return {std::find(lines.begin(), lines.end(), "(stops serving)"), lines.end()};
  }
  std::shared_ptr<fakes::MemoryExchange> server = std::make_shared<fakes::MemoryExchange>(trace);
};

TEST_F(StandAloneClosed, WhileAnAnswerIsWaitedFor) {
  startStandAlone(u"P");
  pressAndTick(0);
  const auto late = server->record(0, oneFault());
  bool held = false;
  server->on(u"LogOut", [&](auto) {
    held = server.use_count() > 2;
    trace.push_back("LogOut");
    return automation::Value{};
  });
  form().input().closeAsked();
  EXPECT_TRUE(held) << "the server is still there";
  EXPECT_THAT(ended(), ElementsAre("(stops serving)", "(window gone)", "LogOut", "(process ends)"));
  server->callBack(late);
  EXPECT_THAT(taken(), IsEmpty()) << "logged out once";
}

TEST_F(StandAloneClosed, WhileTheLogInIsUnderWay) {
  startStandAlone(u"P");
  server->duringLogin = [&] { form().input().closeAsked(); };
  pressAndTick(0);
  EXPECT_THAT(ended(), ElementsAre("(stops serving)", "(window gone)", "(process ends)", "LogOut P& L1&"));
}

TEST_F(StandAloneClosed, WhileARefusedLogInIsUnderWay) {
  startStandAlone(u"P");
  server->loginAnswer = std::u16string(u"BUSY");
  server->duringLogin = [&] { form().input().closeAsked(); };
  pressAndTick(0);
  EXPECT_THAT(ended(), ElementsAre("(stops serving)", "(window gone)", "(process ends)"));
}

TEST_F(StandAloneClosed, WhileTheRequestIsSent) {
  for (const char16_t* answer : {u"ACCEPTED", u"ERROR"}) {
    creator.server = server;
    startStandAlone(u"P");
    server->sendAnswer = std::u16string(answer);
    server->duringSend = [&] { form().input().closeAsked(); };
    pressAndTick(0);
    EXPECT_THAT(ended(), ElementsAre("(stops serving)", "(window gone)", "(process ends)", "LogOut P& L1&"));
    server->answer(0, oneFault());
    EXPECT_THAT(taken(), IsEmpty());
    view.timer = 0;
    process.ended = false;
    process.serving = true;
  }
}

TEST_F(StandAloneClosed, WhileTheAnswerIsRead) {
  for (const char16_t* member : {u"LoginID", u"FirstData", u"Message"}) {
    SCOPED_TRACE(text::toUtf8(member));
    creator.server = server;
    startStandAlone(u"P");
    pressAndTick(0);
    const auto answer = server->record(0, oneFault());
    answer->broken = [&](std::u16string_view asked) {
      if (asked == member) form().input().closeAsked();
      return false;
    };
    server->callBack(answer);
    EXPECT_THAT(ended(), ElementsAre("(stops serving)", "(window gone)", "(process ends)", "LogOut P& L1&"));
    EXPECT_FALSE(tick());
    process.ended = false;
    process.serving = true;
  }
}

TEST_F(StandAloneClosed, BetweenRequestsLogsNothingOut) {
  startStandAlone(u"P");
  pressAndTick(0);
  server->answer(61);
  taken();
  form().input().closeAsked();
  EXPECT_THAT(ended(), ElementsAre("(stops serving)", "(window gone)", "(process ends)"));
}

TEST_F(StandAlone, WithoutTheFaultDatabaseTheProcessEnds) {
  std::filesystem::remove(engine.file(u"FAULT.MDB"));
  startStandAlone(u"P");
  EXPECT_TRUE(process.ended);
  EXPECT_FALSE(view.shown);
}

TEST_F(StandAlone, F1OpensNothingHere) {
  startStandAlone(u"P");
  form().input().keyPressed(112);
  EXPECT_THAT(taken(), IsEmpty());
}

}  // namespace
}  // namespace vordane::startup
