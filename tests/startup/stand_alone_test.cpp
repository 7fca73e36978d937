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
  EXPECT_EQ(form().PBXName(), u"PBX-9");
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
}

TEST_F(StandAlone, TheSettingNamesTheServer) {
  settings.write(u"Quilmar32", u"30000", u"ZUL", u"40002");
  startStandAlone(u"P");
  EXPECT_THAT(creator.asked, ElementsAre("CalderinProj40002.cPBXOle"));
  EXPECT_FALSE(form().CheckLoadError()) << "a server that can't be created doesn't stop the load";
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
  form().closeAsked();
  EXPECT_TRUE(process.ended);
}

TEST_F(StandAlone, WithoutTheFaultDatabaseTheProcessEnds) {
  std::filesystem::remove(engine.file(u"FAULT.MDB"));
  startStandAlone(u"P");
  EXPECT_TRUE(process.ended);
  EXPECT_FALSE(view.shown);
}

TEST_F(StandAlone, F1OpensNothingHere) {
  startStandAlone(u"P");
  form().keyPressed(112);
  EXPECT_THAT(taken(), IsEmpty());
}

}  // namespace
}  // namespace vordane::startup
