// Jobs of the host's scheduler: creation, runs, result codes, the run log.
#include "startup/story.h"

namespace vordane::startup {
namespace {

using Schedule = Story;
using namespace std::string_literals;

// One list, taken in and acknowledged, from the run's step on.
class ScheduledRuns : public Story {
 protected:
  void fetchOnce() {
    tick();  // the step: presses the request button
    tick();  // the request
    exchange().answer(0, oneFault());
    tick();  // the ingestion, then the acknowledgement
    exchange().answerLamps(u"00");
    tick();  // the lamps, then the next step
  }
};

TEST_F(ScheduledRuns, ASingleRunFetchesTheListAndEnds) {
  startWithHost();
  EXPECT_EQ(runSchedule(u"1"), 0);
  EXPECT_EQ(state.schedule.RunState, 11);
  EXPECT_EQ(runSchedule(u"1"), 10001) << "busy from start to end";
  tick();
  taken();
  tick();
  EXPECT_THAT(taken(), ElementsAre("(hourglass)", "Login PBX-1&", "ShowMessage PBX L1",
                                   "SendRequest LEA0// tag 10 for PBX-1 as L1 busy True mode 2 key 1",
                                   "ShowMessage PBX ACCEPTED", "(disabled)", "TurnOnFlow"));
  exchange().answer(0, oneFault());
  tick();
  exchange().answerLamps(u"00");
  taken();
  tick();
  EXPECT_THAT(taken(), ElementsAre("(stops serving)", "EndProcess 1& 0&", "(window gone)", "UnloadChild 7&"));
  EXPECT_FALSE(process.ended);
  EXPECT_EQ(state.schedule.RunState, 0);
  EXPECT_THAT(log(), ElementsAre("ErrCode = 0", "Response(0) = LEA0 > 15 MJ MP000 :  - ",
                                 "Response(1) = LEA0 > 26/11/20 10:15 :  - ", "Response(2) = LEA0 > 00 :  - ",
                                 "Response(3) = LEA0 >  :  - ", "1 received, 1 new, 0 stored, 0 refused",
                                 "ErrCode = 0", "Response(0) = EA1 > 00 : 00 - ", "..."));
}

TEST_F(ScheduledRuns, ThreeRunsAreNumberedAndShowNoBox) {
  startWithHost();
  runSchedule(u"3");
  for (int i = 0; i < 3; ++i) {
    EXPECT_FALSE(process.ended);
    fetchOnce();
  }
  Lines numbered, own;
  for (const auto& line : log())
    if (line.starts_with("Run")) numbered.push_back(line);
  EXPECT_THAT(numbered, ElementsAre("Run 1", "Run 2", "Run 3"));
  EXPECT_THAT(trace, testing::Not(testing::Contains(testing::StartsWith("Box"))));
  EXPECT_THAT(log(), testing::Contains("104  ")) << "what a box would have said stands in the log";
  EXPECT_THAT(trace, testing::Contains("EndProcess 3& 0&"));
}

TEST_F(Schedule, AWaitComesBeforeTheRequest) {
  startWithHost();
  runSchedule(u"7");
  const double before = clock.seconds;
  tick();
  EXPECT_GE(clock.seconds - before, 30);
  EXPECT_EQ(view.timer, 100);
}

TEST_F(Schedule, ARunIsNumberedBeforeItsWait) {
  startWithHost();
  runSchedule(u"10");
  std::optional<Lines> atFirst;
  clock.duringSleep = [&] {
    if (!atFirst) atFirst = log();
  };
  tick();
  ASSERT_TRUE(atFirst);
  EXPECT_THAT(*atFirst, ElementsAre("Run 1"));
}

TEST_F(Schedule, AnotherKindIsToldBeforeAMissingExchange) {
  startWithHost(u"");
  runSchedule(u"6");
  for (int i = 0; i < 3; ++i) tick();
  EXPECT_THAT(trace, testing::Contains("EndProcess 6& 10020&"));
  EXPECT_THAT(log(), ElementsAre("Run 1", "another kind", "Run 2", "another kind", "..."));
}

TEST_F(Schedule, WithoutAnExchangeTheRunEndsAtOnce) {
  startWithHost(u"");
  runSchedule(u"1");
  taken();
  tick();
  EXPECT_THAT(taken(),
              ElementsAre("(stops serving)", "EndProcess 1& 10021&", "(window gone)", "UnloadChild 7&"));
  EXPECT_THAT(log(), ElementsAre("failed: no exchange", "..."));
}

TEST_F(Schedule, AnotherKindOfJobRequestsNothing) {
  startWithHost();
  runSchedule(u"6");
  EXPECT_THAT(taken(), ElementsAre("(hourglass)", "(pointer)")) << "while its options are read";
  tick();
  EXPECT_THAT(taken(), IsEmpty());
  tick();
  EXPECT_THAT(taken(), IsEmpty());
  tick();
  EXPECT_THAT(taken(),
              ElementsAre("(stops serving)", "EndProcess 6& 10020&", "(window gone)", "UnloadChild 7&"));
  EXPECT_THAT(log(), ElementsAre("Run 1", "another kind", "Run 2", "another kind", "..."));
}

TEST_F(Schedule, AJobOfNoRunsEndsAtOnceAsOneThatWasStarted) {
  for (const char16_t* key : {u"8", u"9"}) {
    startWithHost();
    runSchedule(key);
    taken();
    tick();
    EXPECT_THAT(taken(), testing::Contains("EndProcess " + text::toUtf8(key) + "& 0&"));
    EXPECT_THAT(log(), ElementsAre("..."));
    files.content.clear();
    layer.reset();
  }
}

TEST_F(Schedule, TheEndMarkIsWrittenAndTheRunOverBeforeTheHostHearsOfIt) {
  startWithHost(u"");
  runSchedule(u"1");
  bool told = false;
  host->meanwhile[u"EndProcess"] = [&] {
    told = true;
    EXPECT_EQ(log().back(), "...");
    EXPECT_EQ(state.schedule.RunState, 0);
    EXPECT_EQ(state.runMode, RunMode::interactive);
  };
  tick();
  EXPECT_TRUE(told);
}

TEST_F(Schedule, AnAnswerIsLoggedBetweenItsTextsAndTheLogOut) {
  for (const bool early : {false, true}) {
    SCOPED_TRACE(early);
    startWithHost();
    runSchedule(u"1");
    tick();
    std::map<std::string, Lines> logged;
    for (const char16_t* name : {u"ShowMessage", u"ShowCode", u"TurnOffFlow"})
      host->meanwhile[name] = [&] { logged[trace.back()] = log(); };
    if (early) host->meanwhile[u"TurnOnFlow"] = [&] { exchange().answer(0); };
    tick();
    if (!early) exchange().answer(0);
    EXPECT_THAT(logged["ShowMessage Done"], IsEmpty());
    EXPECT_THAT(logged["ShowCode 0"], IsEmpty());
    EXPECT_THAT(logged["TurnOffFlow"], ElementsAre("ErrCode = 0"));
    host->meanwhile.clear();
    layer.reset();
    files.content.clear();
    view.timer = 0;
  }
}

TEST_F(Schedule, TheLogReadsNothingOfTheServersRecord) {
  startWithHost();
  runSchedule(u"1");
  tick();
  tick();
  const auto answer = exchange().record(0, oneFault());
  std::map<std::u16string, int> reads;
  answer->broken = [&](std::u16string_view member) {
    ++reads[std::u16string(member)];
    return false;
  };
  exchange().callBack(answer);
  for (const char16_t* member : {u"CMD", u"FirstData", u"SecondData", u"ExtraData"})
    EXPECT_EQ(reads[member], 4);
  EXPECT_EQ(reads[u"Count"], 1);
  EXPECT_EQ(reads[u"ErrCode"], 1);
  EXPECT_EQ(log().size(), 5U);
}

TEST_F(Schedule, EntriesThatAreNotTakenOverAreNotLogged) {
  startWithHost();
  runSchedule(u"1");
  tick();
  tick();
  state.schedule.LogLimited = false;
  const auto answer = exchange().record(0, oneFault());
  answer->count = std::int32_t{32766};
  exchange().callBack(answer);
  EXPECT_EQ(log().back(), "Response(32763) =  >  :  - ");
}

TEST_F(Schedule, AServerThatVanishesIsLoggedAsFarAsItWasRead) {
  startWithHost();
  runSchedule(u"2");
  tick();
  tick();
  const auto answer = exchange().record(0, oneFault());
  int firsts = 0;
  answer->broken = [&](std::u16string_view member) {
    return firsts > 2 || (member == u"FirstData" && ++firsts > 2);
  };
  answer->brokenWith = static_cast<std::int32_t>(0x800706BA);
  exchange().callBack(answer);
  EXPECT_THAT(log(), ElementsAre("ErrCode = ", "Response(0) = LEA0 > 15 MJ MP000 :  - ",
                                 "Response(1) = LEA0 > 26/11/20 10:15 :  - ", "failed: gone"));
}

// The host cancels while one value after the other is read.
TEST_F(Schedule, NoLineOfARunFollowsItsEndMark) {
  constexpr int readings = 1 + 1 + 16 + 1 + 1 + 2;  // of an answer with one fault
  for (int n = 1; n <= readings; n += 3) {
    SCOPED_TRACE(n);
    startWithHost();
    runSchedule(u"1");
    tick();
    tick();
    const auto answer = exchange().record(0, oneFault());
    int reads = 0;
    answer->broken = [&](std::u16string_view) {
      if (++reads == n) callInteger(u"CancelSchedule");
      return false;
    };
    exchange().callBack(answer);
    EXPECT_GE(reads, n);
    EXPECT_THAT(log(), ElementsAre("cancelled", "..."));
    layer.reset();
    files.content.clear();
  }
}

TEST_F(Schedule, ARunsStepFollowsItsJobsChoiceToo) {
  startWithHost();
  form().actions().dispatch(Action::followUp);
  EXPECT_THAT(taken(), IsEmpty()) << "nothing to end";
  runSchedule(u"3");
  taken();
  form().actions().dispatch(Action::followUp);
  EXPECT_THAT(log(), ElementsAre("Run 1"));
  EXPECT_EQ(state.runMode, RunMode::scheduledRun);
  tick();
  EXPECT_THAT(taken(), testing::Contains("Login PBX-1&"));
}

TEST_F(Schedule, CodesThatAreNoActionDoNothing) {
  startWithHost();
  automation::put(*layer, u"Visible", true);
  for (const std::int16_t code : {6, 7, 8, 9, 13, 98, 101, -1})
    form().actions().dispatch(static_cast<Action>(code));
  EXPECT_THAT(taken(), IsEmpty());
  EXPECT_TRUE(view.shown);
  EXPECT_EQ(view.timer, 0);
  EXPECT_FALSE(state.busy);
}

// --- what waits when a job begins

TEST_F(ScheduledRuns, APressThatWaitsIsDroppedByACreation) {
  startWithHost();
  press(0);
  fetchOnce();
  boxes.answer = 6;
  taken();
  press(3);
  createSchedule();
  EXPECT_FALSE(tick());
  EXPECT_THAT(taken(), IsEmpty());
  EXPECT_EQ(view.rows->size(), 1U) << "and nothing is deleted";
  pressAndTick(0);
  EXPECT_THAT(taken(), testing::Contains("EndCreateSchedule False&")) << "a new one counts";
}

TEST_F(ScheduledRuns, APressThatWaitsIsDroppedByARun) {
  startWithHost();
  press(0);
  fetchOnce();
  taken();
  press(3);
  EXPECT_EQ(runSchedule(u"1"), 0);
  tick();
  tick();
  EXPECT_EQ(view.rows->size(), 1U) << "no question, no Yes, nothing deleted";
  EXPECT_THAT(taken(), testing::Contains("Login PBX-1&"));
}

TEST_F(ScheduledRuns, AnAnswerThatHasComeIsWorkedOffWhateverBegins) {
  startWithHost();
  pressAndTick(0);
  exchange().answer(0, oneFault());
  createSchedule();
  EXPECT_EQ(runSchedule(u"1"), 10001);
  tick();
  EXPECT_EQ(view.rows->size(), 1U);
  exchange().answerLamps(u"10");
  createSchedule();
  tick();
  EXPECT_TRUE(view.majorLit);
  EXPECT_FALSE(state.busy);

  layer.reset();
  startWithHost();
  pressAndTick(0);
  exchange().answer(0, oneFault());
  form().job().setKey(u"1");
  form().runs().RunSchedule();
  taken();
  tick();
  EXPECT_THAT(taken(), testing::Contains(testing::StartsWith("SendRequest EA1/00/ tag 12")));
  exchange().answerLamps(u"00");
  tick();
  tick();
  EXPECT_THAT(taken(), testing::Contains(testing::StartsWith("SendRequest LEA0// tag 10")))
      << "the run's own";
}

TEST_F(Schedule, AnErrorStopsAllRepetitions) {
  startWithHost();
  runSchedule(u"3");
  tick();
  tick();
  exchange().answer(5);
  EXPECT_EQ(view.timer, 100) << "the next step waits for the timer";
  taken();
  tick();
  EXPECT_THAT(taken(), testing::Contains("EndProcess 3& 0&"));
}

TEST_F(Schedule, WithoutErrorStopTheNextRunFollows) {
  startWithHost();
  runSchedule(u"4");
  tick();
  tick();
  taken();
  exchange().answer(5);
  EXPECT_THAT(taken(), testing::Not(testing::Contains("Login PBX-1&"))) << "not inside the call back";
  EXPECT_THAT(log(), testing::Not(testing::Contains("Run 2")));
  tick();
  EXPECT_THAT(log(), testing::Contains("Run 2"));
  tick();
  EXPECT_THAT(taken(), testing::Contains("Login PBX-1&"));
}

TEST_F(Schedule, TheFatalCodeStopsEveryRun) {
  startWithHost();
  runSchedule(u"4");
  tick();
  tick();
  exchange().answer(61);
  EXPECT_EQ(state.schedule.RunState, 12);
  taken();
  tick();
  EXPECT_THAT(taken(), testing::Contains("EndProcess 4& 0&"));
  EXPECT_THAT(log(), testing::Not(testing::Contains("Run 2")));
  EXPECT_THAT(log(), testing::Contains("failed: code 61")) << "never called a success";
}

TEST_F(Schedule, ARefusedLogInGoesOnToTheNextRun) {
  startWithHost();
  exchange().loginAnswer = u"BUSY"s;
  runSchedule(u"3");
  for (int i = 0; i < 3; ++i) {
    EXPECT_TRUE(view.attached);
    if (i == 0) tick();
    tick();
  }
  EXPECT_THAT(trace, testing::Contains("EndProcess 3& 0&"));
  EXPECT_THAT(log(),
              ElementsAre("Run 1", "failed: busy", "Run 2", "failed: busy", "Run 3", "failed: busy", "..."));
}

TEST_F(Schedule, WithoutLoggingNoLogIsWritten) {
  startWithHost();
  runSchedule(u"5");
  tick();
  tick();
  exchange().answer(61);
  tick();
  EXPECT_THAT(trace, testing::Contains("EndProcess 5& 0&"));
  EXPECT_THAT(log(), IsEmpty());
}

TEST_F(Schedule, AQuestionIsAnsweredWithYesInARun) {
  host->sysInfo = std::int16_t{12};
  startWithHost();
  boxes.answer = 7;
  runSchedule(u"1");
  tick();
  taken();
  tick();
  EXPECT_THAT(taken(), testing::Contains("Login PBX-1&"));
  EXPECT_THAT(log(), testing::Contains("109  "));
}

TEST_F(Schedule, TheUsersButtonsLookDeadInARun) {
  startWithHost();
  fetchOneFault();
  const auto enabled = [&](const char16_t* name) { return form().form().control(name).flag(u"Enabled"); };
  EXPECT_TRUE(enabled(u"cmdClear"));
  runSchedule(u"3");
  const auto expectDead = [&] {
    for (const char16_t* name :
         {u"cmdRequest", u"cmdReset", u"cmdPrint", u"cmdClear", u"cmdLookUp", u"cmdFilter", u"cmdClose"})
      EXPECT_FALSE(enabled(name)) << text::toUtf8(name);
  };
  expectDead();
  tick();
  tick();
  exchange().answer(0, oneFault());
  tick();
  expectDead();
  exchange().answerLamps(u"00");
  expectDead();
}

TEST_F(Schedule, AListThatIsNotAcknowledgedWasReceivedAllTheSame) {
  startWithHost();
  runSchedule(u"1");
  tick();
  tick();
  exchange().answer(0, oneFault());
  exchange().loginAnswer = u"BUSY"s;
  tick();
  EXPECT_THAT(log(), testing::Contains("1 received, 1 new, 0 stored, 0 refused"));
  EXPECT_THAT(log(), testing::Contains("not acknowledged: busy"));
  EXPECT_THAT(log(), testing::Not(testing::Contains("failed: busy")));
}

TEST_F(Schedule, ACancelledRunSaysSoInItsLog) {
  startWithHost();
  runSchedule(u"1");
  tick();
  tick();
  EXPECT_EQ(callInteger(u"CancelSchedule"), 0);
  EXPECT_THAT(log(), ElementsAre("cancelled", "..."));
}

TEST_F(Schedule, ARunThatNobodyHoldsSaysSoInItsLog) {
  startWithHost();
  runSchedule(u"1");
  tick();
  tick();
  layer.reset();
  EXPECT_THAT(log(), ElementsAre("let go"));
}

TEST_F(Schedule, TheUsersButtonsAreDeadInARun) {
  startWithHost();
  runSchedule(u"1");
  tick();
  view.timer = 0;
  for (int action = 0; action <= 4; ++action) press(action);
  EXPECT_EQ(view.timer, 0);
}

// Looking up has no action that could be ignored, so its button itself is dead.
TEST_F(ScheduledRuns, LookingUpIsDeadInARunToo) {
  startWithHost();
  press(0);
  fetchOnce();
  const window::Control& lookUp = form().form().control(u"cmdLookUp");
  ASSERT_TRUE(lookUp.flag(u"Enabled"));
  runSchedule(u"3");
  EXPECT_FALSE(lookUp.flag(u"Enabled"));
  fetchOnce();
  EXPECT_FALSE(lookUp.flag(u"Enabled"));
}

TEST_F(Schedule, RunScheduleTellsBusyAndErrors) {
  startWithHost();
  pressAndTick(0);
  form().job().setKey(u"9");
  EXPECT_EQ(runSchedule(u"1"), 10001);
  EXPECT_EQ(form().job().Key(), u"9") << "unchanged";
  exchange().answer(61);
  EXPECT_EQ(runSchedule(u"night"), 10000);
  EXPECT_EQ(runSchedule(u" 1.4 "), 0);
  EXPECT_EQ(form().job().Key(), u"1") << "the decimal text of the converted number";
}

TEST_F(ScheduledRuns, CreationKeepsTheKeyAndTheButtons) {
  startWithHost();
  press(0);
  fetchOnce();
  for (const char16_t* name : {u"cmdReset", u"cmdPrint", u"cmdClear", u"cmdLookUp", u"cmdFilter"})
    ASSERT_TRUE(form().form().control(name).flag(u"Enabled"));
  for (const char16_t* name : {u"cmdRequest", u"cmdClose"})
    form().form().control(name).set(u"Enabled", false);
  createSchedule();
  EXPECT_EQ(form().job().Key(), u"5");
  EXPECT_EQ(state.RAction, 3);
  EXPECT_EQ(state.runMode, RunMode::creatingSchedule);
  for (const char16_t* name : {u"cmdReset", u"cmdPrint", u"cmdClear", u"cmdLookUp", u"cmdFilter"})
    EXPECT_FALSE(form().form().control(name).flag(u"Enabled"));
  for (const char16_t* name : {u"cmdRequest", u"cmdClose"})
    EXPECT_TRUE(form().form().control(name).flag(u"Enabled"));
}

TEST_F(Schedule, ChoosingTheJobEndsTheCreation) {
  startWithHost();
  createSchedule();
  pressAndTick(0);
  EXPECT_THAT(taken(),
              ElementsAre("(stops serving)", "EndCreateSchedule False&", "UnloadChild2 7&", "(window gone)"));
}

TEST_F(Schedule, CloseCancelsTheCreation) {
  startWithHost();
  createSchedule();
  press(4);
  EXPECT_THAT(taken(),
              ElementsAre("(stops serving)", "(window gone)", "EndCreateSchedule True&", "UnloadChild2 7&"));
}

TEST_F(Schedule, ARunTakesOverFromACreation) {
  startWithHost();
  EXPECT_TRUE(createSchedule());
  EXPECT_EQ(runSchedule(u"1"), 0);
  EXPECT_TRUE(createSchedule()) << "it answers True even where it does nothing";
  EXPECT_EQ(state.runMode, RunMode::scheduledRun);
  EXPECT_EQ(form().job().Key(), u"1");
  EXPECT_THAT(taken(), ElementsAre("(hourglass)", "(pointer)")) << "and the creation is not reported";
}

TEST_F(Schedule, WithoutAHostTheRunEndsInSilence) {
  start();
  layer = createLayer();
  runSchedule(u"1");
  taken();
  tick();
  EXPECT_THAT(taken(), ElementsAre("(stops serving)", "(window gone)"));
}

TEST_F(Schedule, JobParametersComeFromTheHost) {
  startWithHost();
  host->data[u"MOVE"] = u"a,b,c";
  EXPECT_THAT(GetJobParameter(application->station(), host, u"MOVE"), ElementsAre(u"a", u"b", u"c"));
  host->data[u"MOVE"] = u"";
  EXPECT_THAT(GetJobParameter(application->station(), host, u"MOVE"), IsEmpty());
  host->data[u"Other"] = u"a,b";
  host->data[u"move"] = u"a,b";
  for (const char16_t* other : {u"Other", u"move", u""})
    EXPECT_THAT(GetJobParameter(application->station(), host, other), IsEmpty());
  EXPECT_THAT(GetJobParameter(application->station(), host, u"FilePath"),
              ElementsAre(u"C:\\QUILMAR32\\30000\\ADDINS"));
  files.directories.insert(u"C:\\Jobs\\");
  host->data[u"FilePath"] = u"C:\\Jobs\\Night.csv,night.CSV";
  EXPECT_THAT(GetJobParameter(application->station(), host, u"FilePath"),
              ElementsAre(u"C:\\Jobs\\", u"night.CSV"));
  host->data[u"FilePath"] = u"C:\\Gone\\Night.csv,night.csv";
  EXPECT_THAT(GetJobParameter(application->station(), host, u"FilePath"), IsEmpty());
  host->data[u"FilePath"] = u"C:\\Jobs\\Night.txt,night.txt";
  EXPECT_THAT(GetJobParameter(application->station(), host, u"FilePath"), IsEmpty());
  host->remove(u"GetComData");
  EXPECT_THAT(GetJobParameter(application->station(), host, u"MOVE"), IsEmpty());
}

TEST_F(Schedule, WaitingCallsAreNotedInARunAndAskedOtherwise) {
  startWithHost();
  boxes.answer = 4;
  EXPECT_TRUE(application->askWhileBusy());
  boxes.answer = 2;
  EXPECT_FALSE(application->askWhileBusy());
  application->tellPending();
  EXPECT_THAT(taken(), ElementsAre("Box It is busy", "Box It is busy", "Box No answer yet"));
  boxes.answer = 4;
  runSchedule(u"1");
  taken();
  EXPECT_FALSE(application->askWhileBusy());
  application->tellPending();
  EXPECT_THAT(taken(), IsEmpty());
  EXPECT_THAT(log(), ElementsAre("It is busy", "No answer yet"));
}

}  // namespace
}  // namespace vordane::startup
