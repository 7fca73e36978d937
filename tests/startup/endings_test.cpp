// How it ends: the last release, the unload in each run mode, and what comes too late.
#include <stdexcept>

#include "fakes/watched_database.h"
#include "startup/story.h"

namespace vordane::startup {
namespace {

using Endings = Story;
using namespace std::string_literals;

TEST_F(Endings, TheLastReleaseSavesThePlaceAndEndsTheProcess) {
  startWithHost();
  const auto second = createLayer();
  layer.reset();
  EXPECT_THAT(taken(), IsEmpty());
  EXPECT_TRUE(view.attached);
  view.place = {1200, 900};
  auto last = second;
  const_cast<automation::ObjectRef&>(second).reset();
  EXPECT_THAT(taken(), IsEmpty());
  last.reset();
  EXPECT_THAT(taken(), ElementsAre("(stops serving)", "REGComData VORDANE MOVE& 1200,900&", "(window gone)",
                                   "(process ends)"));
  EXPECT_EQ(host.use_count(), 2) << "the add-in holds the host no more (the watch of this test does)";
}

TEST_F(Endings, CancelWhileNothingRunsUnloadsAndTellsTheHost) {
  startWithHost();
  EXPECT_EQ(callInteger(u"CancelSchedule"), 0);
  EXPECT_THAT(taken(), ElementsAre("(stops serving)", "(window gone)", "UnloadChild 7&"));
  EXPECT_FALSE(process.ended) << "the host still holds its layer";
}

TEST_F(Endings, TheDatabasesAreClosedBeforeTheHostIsTold) {
  startWithHost();
  const std::filesystem::path log(engine.file(u"FAULT.MDB") + u"-wal");
  EXPECT_TRUE(std::filesystem::exists(log)) << "as long as somebody has it open";
  bool open = true;
  host->meanwhile[u"UnloadChild"] = [&] { open = std::filesystem::exists(log); };
  callInteger(u"CancelSchedule");
  EXPECT_THAT(taken(), testing::Contains("UnloadChild 7&"));
  EXPECT_FALSE(open) << "the host may copy or move the file at once";
}

TEST_F(Endings, TextsAndFaultsAreClosedBeforeTheHostIsTold) {
  engine.between = [this](std::u16string_view path, auto file) -> std::unique_ptr<database::Database> {
    auto watched = std::make_unique<fakes::WatchedDatabase>(std::move(file));
    if (path.ends_with(u"VORDANE.LNG")) watched->closed = [this] { trace.push_back("(texts closed)"); };
    if (path.ends_with(u"FAULT.MDB")) watched->closed = [this] { trace.push_back("(faults closed)"); };
    return watched;
  };
  startWithHost();
  callInteger(u"CancelSchedule");
  EXPECT_THAT(taken(), ElementsAre("(stops serving)", "(window gone)", "(texts closed)", "(faults closed)",
                                   "UnloadChild 7&"));
  EXPECT_EQ(application->LangDB, nullptr);
  EXPECT_EQ(form().faults().faultDatabase(), nullptr);
  EXPECT_NE(application->CommonLangDB, nullptr) << "the common texts live as long as the process";
}

TEST_F(Endings, TheDecoderGoesWithTheUnload) {
  startWithHost();
  const auto line = [&] {
    return form().faults().faultDecoder(true).GetFaultMessage(u"15 MJ MP000", u"00", u"");
  };
  const std::u16string before = line();
  for (auto& text : state.Messages) text += u"!";
  EXPECT_EQ(line(), before) << "its texts are read once";
  callInteger(u"CancelSchedule");
  EXPECT_NE(line(), before);
}

TEST_F(Endings, AStepThatFailsHindersNoOther) {
  startWithHost();
  runSchedule(u"1");
  tick();
  tick();
  taken();
  view.duringDetach = [&] {
    files.outOfMemory = true;
    throw std::runtime_error("the window can't go");
  };
  for (const char16_t* member : {u"REGComData", u"EndProcess", u"UnloadChild"})
    host->meanwhile[member] = [] { throw std::runtime_error("the host fails"); };
  callInteger(u"CancelSchedule");
  EXPECT_THAT(taken(), ElementsAre("CancelRequest PBX-1& L1&", "(stops serving)", "(window gone)",
                                   "EndProcess 1& 20000&", "UnloadChild 7&"));
  EXPECT_EQ(application->LangDB, nullptr);
  layer.reset();
  EXPECT_THAT(taken(), ElementsAre("REGComData VORDANE MOVE& 5100,2400&", "(process ends)"));
}

TEST_F(Endings, TheLastReleaseInARunGoesOnWhateverFails) {
  startWithHost();
  runSchedule(u"1");
  tick();
  tick();
  taken();
  files.outOfMemory = true;
  view.duringDetach = [] { throw std::runtime_error("the window can't go"); };
  host->meanwhile[u"REGComData"] = [] { throw std::runtime_error("the host fails"); };
  layer.reset();
  EXPECT_THAT(taken(), ElementsAre("(stops serving)", "REGComData VORDANE MOVE& 5100,2400&", "(window gone)",
                                   "(process ends)"));
}

TEST_F(Endings, AfterTheUnloadTheLayerAnswersAndDoesNothing) {
  startWithHost();
  view.place = {30, 40};
  callInteger(u"CancelSchedule");
  taken();
  EXPECT_FALSE(automation::toBoolean(automation::get(*layer, u"Visible")));
  automation::put(*layer, u"Visible", true);
  EXPECT_FALSE(view.shown);
  EXPECT_EQ(runSchedule(u"1"), 10000);
  EXPECT_TRUE(registerPbx(u"PBX-2"));
  createSchedule();
  EXPECT_EQ(callInteger(u"CancelSchedule"), 0);
  automation::call(*layer, u"SetBackGround", {automation::byVal(std::int16_t{1})});
  EXPECT_THAT(taken(), IsEmpty());
  layer.reset();
  EXPECT_THAT(taken(), ElementsAre("REGComData VORDANE MOVE& 30,40&", "(process ends)"));
}

TEST_F(Endings, AnUnloadWhileAJobIsMadeReportsTheCreation) {
  startWithHost();
  createSchedule();
  EXPECT_EQ(callInteger(u"CancelSchedule"), 0);
  EXPECT_THAT(taken(),
              ElementsAre("(stops serving)", "(window gone)", "EndCreateSchedule True&", "UnloadChild2 7&"));
}

TEST_F(Endings, AnUnloadDuringARunReportsItsStepBeforeTheUnload) {
  startWithHost();
  runSchedule(u"1");
  tick();
  tick();
  taken();
  EXPECT_EQ(callInteger(u"CancelSchedule"), 0);
  EXPECT_THAT(taken(), ElementsAre("CancelRequest PBX-1& L1&", "(stops serving)", "(window gone)",
                                   "EndProcess 1& 20000&", "UnloadChild 7&"));
  EXPECT_EQ(log().back(), "...");
  EXPECT_EQ(state.schedule.RunState, 0);
}

TEST_F(Endings, TheLateAnswerOfACancelledRequestOnlyLogsOut) {
  startWithHost();
  runSchedule(u"1");
  tick();
  tick();
  const auto answer = exchange().record(0, oneFault());
  callInteger(u"CancelSchedule");
  taken();
  exchange().callBack(answer);
  EXPECT_THAT(taken(), ElementsAre("LogOut PBX-1& L1&", "TurnOffFlow"));
  exchange().callBack(answer);
  EXPECT_THAT(taken(), IsEmpty());
}

TEST_F(Endings, ALateAnswerOfSomebodyElsesLogInIsIgnored) {
  startWithHost();
  pressAndTick(0);
  const auto answer = exchange().record(0, oneFault());
  callInteger(u"CancelSchedule");
  taken();
  answer->loginId = u"L2"s;
  exchange().callBack(answer);
  EXPECT_THAT(taken(), IsEmpty());
  answer->loginId = u"L1"s;
  exchange().callBack(answer);
  EXPECT_THAT(taken(), ElementsAre("LogOut PBX-1& L1&", "TurnOffFlow"));
}

TEST_F(Endings, ARunIsOverBeforeTheHostHearsOfItsUnload) {
  startWithHost();
  runSchedule(u"1");
  bool told = false;
  host->meanwhile[u"EndProcess"] = [&] {
    told = true;
    EXPECT_EQ(state.runMode, RunMode::interactive);
    EXPECT_EQ(state.schedule.RunState, 0);
    EXPECT_THAT(log(), ElementsAre("cancelled", "..."));
  };
  callInteger(u"CancelSchedule");
  EXPECT_TRUE(told);
}

// On a station without a person a call that lasts is noted in the log of the run that waits for it.
TEST_F(Endings, NothingStandsBehindTheEndMark) {
  program.interactive = false;
  for (const bool cancelled : {false, true}) {
    SCOPED_TRACE(cancelled);
    startWithHost(cancelled ? u"PBX-1" : u"");
    runSchedule(u"1");
    host->meanwhile[u"EndProcess"] = [&] { application->tellPending(); };
    host->meanwhile[u"UnloadChild"] = [&] { application->askWhileBusy(); };
    if (cancelled)
      callInteger(u"CancelSchedule");
    else
      tick();
    EXPECT_EQ(log().back(), "...");
    layer.reset();
    files.content.clear();
  }
}

TEST_F(Endings, AHostThatCancelsWhileItHearsOfAnEndIsToldOnce) {
  startWithHost(u"");
  runSchedule(u"1");
  taken();
  host->meanwhile[u"EndProcess"] = [&] { callInteger(u"CancelSchedule"); };
  tick();
  EXPECT_THAT(taken(),
              ElementsAre("(stops serving)", "EndProcess 1& 10021&", "(window gone)", "UnloadChild 7&"));
  layer.reset();

  process.serving = true;
  startWithHost();
  createSchedule();
  host->meanwhile[u"EndCreateSchedule"] = [&] { callInteger(u"CancelSchedule"); };
  pressAndTick(0);
  EXPECT_THAT(taken(),
              ElementsAre("(stops serving)", "EndCreateSchedule False&", "UnloadChild2 7&", "(window gone)"));
}

TEST_F(Endings, AHostThatLetsGoWhileItHearsOfAnEndIsToldNoMore) {
  startWithHost(u"");
  runSchedule(u"1");
  taken();
  host->meanwhile[u"EndProcess"] = [&] { layer.reset(); };
  tick();
  EXPECT_THAT(taken(), ElementsAre("(stops serving)", "EndProcess 1& 10021&",
                                   "REGComData VORDANE MOVE& 5100,2400&", "(window gone)", "(process ends)"));
}

TEST_F(Endings, ACancelNamesTheRequestThatWaits) {
  startWithHost();
  runSchedule(u"4");
  tick();
  tick();
  registerPbx(u"PBX-2");
  taken();
  form().input().closeAsked();
  EXPECT_THAT(taken(), ElementsAre("CancelRequest PBX-1& L1&"));
  exchange().answer(5);
  taken();
  form().input().closeAsked();
  EXPECT_THAT(taken(), ElementsAre("CancelRequest PBX-1& L1&")) << "none waits: the last one";
  tick();
  exchange().loginAnswer = u"L2"s;
  exchange().duringLogin = [&] { form().input().closeAsked(); };
  tick();
  EXPECT_THAT(taken(), testing::Contains("CancelRequest PBX-1& L1&")) << "the new one has no identifier yet";
  form().input().closeAsked();
  EXPECT_THAT(taken(), ElementsAre("CancelRequest PBX-2& L2&"));
}

TEST_F(Endings, ARequestWhoseHostLetsGoTouchesNothingMore) {
  startWithHost();
  exchange().duringLogin = [&] { layer.reset(); };
  pressAndTick(0);
  EXPECT_THAT(taken(), ElementsAre("(hourglass)", "Login PBX-1&", "(stops serving)",
                                   "REGComData VORDANE MOVE& 5100,2400&", "(window gone)", "(process ends)"));
  EXPECT_FALSE(tick());
}

TEST_F(Endings, ACancelDuringTheLogInLogsOutAndSendsNothing) {
  startWithHost();
  exchange().duringLogin = [&] { callInteger(u"CancelSchedule"); };
  pressAndTick(0);
  EXPECT_THAT(taken(), ElementsAre("(hourglass)", "Login PBX-1&", "(stops serving)", "(window gone)",
                                   "UnloadChild 7&", "LogOut PBX-1& L1&", "TurnOffFlow"));
}

TEST_F(Endings, ACancelWhileTheHostHearsOfTheLogInLogsOutAndSendsNothing) {
  startWithHost();
  host->meanwhile[u"ShowMessage"] = [&] { callInteger(u"CancelSchedule"); };
  pressAndTick(0);
  EXPECT_THAT(taken(), ElementsAre("(hourglass)", "Login PBX-1&", "ShowMessage PBX L1", "(stops serving)",
                                   "(window gone)", "UnloadChild 7&", "LogOut PBX-1& L1&", "TurnOffFlow"));
}

TEST_F(Endings, ACancelDuringARefusedLogInLogsNothingOut) {
  startWithHost();
  exchange().loginAnswer = u"BUSY"s;
  exchange().duringLogin = [&] { callInteger(u"CancelSchedule"); };
  pressAndTick(0);
  EXPECT_EQ(taken().back(), "UnloadChild 7&");
}

TEST_F(Endings, ACancelDuringARefusedSendingLogsOutOnce) {
  startWithHost();
  exchange().sendAnswer = u"ERROR"s;
  exchange().duringSend = [&] { callInteger(u"CancelSchedule"); };
  pressAndTick(0);
  const Lines lines = taken();
  EXPECT_EQ(Lines(lines.end() - 3, lines.end()),
            (Lines{"UnloadChild 7&", "LogOut PBX-1& L1&", "TurnOffFlow"}));
  exchange().answer(0, oneFault());
  EXPECT_THAT(taken(), IsEmpty());
}

TEST_F(Endings, ACancelWhileTheHostHearsOfARefusalLogsOut) {
  startWithHost();
  exchange().sendAnswer = u"BUSY"s;
  host->meanwhile[u"ShowMessage"] = [&] {
    if (trace.back() == "ShowMessage PBX BUSY") callInteger(u"CancelSchedule");
  };
  pressAndTick(0);
  const Lines lines = taken();
  EXPECT_EQ(Lines(lines.end() - 3, lines.end()),
            (Lines{"UnloadChild 7&", "LogOut PBX-1& L1&", "TurnOffFlow"}));
}

TEST_F(Endings, ACancelDuringAnAcceptedSendingWaitsForTheAnswerToLogOut) {
  startWithHost();
  exchange().duringSend = [&] { callInteger(u"CancelSchedule"); };
  pressAndTick(0);
  EXPECT_EQ(taken().back(), "UnloadChild 7&");
  exchange().answer(0, oneFault());
  EXPECT_THAT(taken(), ElementsAre("LogOut PBX-1& L1&", "TurnOffFlow"));
}

TEST_F(Endings, AnEndingInsideAnIngestionsBoxLosesNothing) {
  startWithHost();
  pressAndTick(0);
  exchange().answer(0);
  boxes.meanwhile = [&] { layer.reset(); };
  taken();
  tick();
  const Lines lines = taken();
  EXPECT_THAT(lines, testing::Contains("Box 104  "));
  EXPECT_EQ(lines.back(), "(process ends)") << "no acknowledgement, no box behind it";
}

TEST_F(Endings, ACancelWhileTheAnswerIsCopiedLogsOutAndDoesNoMore) {
  startWithHost();
  pressAndTick(0);
  const auto answer = exchange().record(0, oneFault());
  bool once = false;
  answer->broken = [&](std::u16string_view member) {
    if (member == u"SecondData" && !std::exchange(once, true)) callInteger(u"CancelSchedule");
    return false;
  };
  taken();
  exchange().callBack(answer);
  EXPECT_THAT(taken(), ElementsAre("(stops serving)", "(window gone)", "UnloadChild 7&", "LogOut PBX-1& L1&",
                                   "TurnOffFlow"));
  EXPECT_FALSE(tick());
}

TEST_F(Endings, ACancelBehindAnAnswerThatHadToWaitLogsOutAndDoesNoMore) {
  startWithHost();
  host->meanwhile[u"TurnOnFlow"] = [&] {
    exchange().answer(0, oneFault());
    callInteger(u"CancelSchedule");
  };
  press(0);
  taken();
  tick();
  const Lines lines = taken();
  EXPECT_EQ(Lines(lines.end() - 6, lines.end()),
            (Lines{"TurnOnFlow", "(stops serving)", "(window gone)", "UnloadChild 7&", "LogOut PBX-1& L1&",
                   "TurnOffFlow"}));
  EXPECT_FALSE(tick());
}

TEST_F(Endings, AHostThatLetsGoWhileItIsToldEndsTheProcessOnce) {
  startWithHost();
  host->meanwhile[u"UnloadChild"] = [&] { layer.reset(); };
  automation::call(*layer, u"CancelSchedule");
  EXPECT_THAT(taken(), ElementsAre("(stops serving)", "(window gone)", "UnloadChild 7&",
                                   "REGComData VORDANE MOVE& 5100,2400&", "(process ends)"));
}

TEST_F(Endings, AHostThatRaisesIsToldEverythingAllTheSame) {
  startWithHost();
  createSchedule();
  host->remove(u"EndCreateSchedule");
  callInteger(u"CancelSchedule");
  EXPECT_THAT(taken(), ElementsAre("(stops serving)", "(window gone)", "UnloadChild2 7&"));
}

TEST_F(Endings, ADeadHostCountsAsOneRelease) {
  startWithHost();
  auto* const held = dynamic_cast<cOLELayer*>(layer.get());
  if (held == nullptr) GTEST_SKIP() << "something stands in front of it";
  held->released();
  EXPECT_TRUE(process.ended);
  taken();
  held->released();
  layer.reset();
  EXPECT_THAT(taken(), IsEmpty());
}

TEST_F(Endings, TheTitleBarHidesInHostMode) {
  startWithHost();
  automation::put(*layer, u"Visible", true);
  form().input().closeAsked();
  EXPECT_FALSE(view.shown);
  EXPECT_TRUE(view.attached);
}

TEST_F(Endings, TheTitleBarCancelsTheRequestOfARun) {
  startWithHost();
  runSchedule(u"1");
  tick();
  tick();
  taken();
  form().input().closeAsked();
  EXPECT_THAT(taken(), ElementsAre("CancelRequest PBX-1& L1&"));
  EXPECT_TRUE(view.attached);
}

TEST_F(Endings, TheTitleBarCancelsNothingWithoutAnIdentifier) {
  for (const char16_t* answer : {u"BUSY", u"ERROR", u""}) {
    exchange().loginAnswer = std::u16string(answer);
    startWithHost();
    runSchedule(u"3");
    form().input().closeAsked();
    tick();
    tick();  // the first run's log-in fails and the second is due
    taken();
    form().input().closeAsked();
    EXPECT_THAT(taken(), IsEmpty()) << text::toUtf8(answer);
    EXPECT_TRUE(view.attached);
    layer.reset();
    view.timer = 0;
  }
}

TEST_F(Endings, AHostThatKeepsNoDataIsLeftAllTheSame) {
  startWithHost();
  host->remove(u"REGComData");
  layer.reset();
  EXPECT_THAT(taken(), ElementsAre("(stops serving)", "(window gone)", "(process ends)"));
}

TEST_F(Endings, ARequestGivenUpIsCalledCancelledInTheLog) {
  startWithHost();
  runSchedule(u"1");
  tick();
  tick();
  form().input().closeAsked();
  exchange().answer(61);
  tick();
  EXPECT_THAT(log(), testing::Contains("failed: cancelled"));
  EXPECT_THAT(log(), testing::Not(testing::Contains("failed: code 61")));
}

TEST_F(Endings, TheTitleBarWhileAJobIsMadeCancelsIt) {
  startWithHost();
  createSchedule();
  form().input().closeAsked();
  EXPECT_THAT(taken(),
              ElementsAre("(stops serving)", "(window gone)", "EndCreateSchedule True&", "UnloadChild2 7&"));
}

}  // namespace
}  // namespace vordane::startup
