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
  pressAndTick(0);
  exchange().answer(0, oneFault());
  tick();
  exchange().answerLamps(u"00");
  tick();
  const auto enabled = [&](const char16_t* name) { return form().form().control(name).flag(u"Enabled"); };
  EXPECT_TRUE(enabled(u"cmdClear"));
  runSchedule(u"3");
  const auto expectDead = [&] {
    for (const char16_t* name :
         {u"cmdRequest", u"cmdReset", u"cmdPrint", u"cmdClear", u"cmdLookUp", u"cmdClose"})
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
  form().setKey(u"9");
  EXPECT_EQ(runSchedule(u"1"), 10001);
  EXPECT_EQ(form().Key(), u"9") << "unchanged";
  exchange().answer(61);
  EXPECT_EQ(runSchedule(u"night"), 10000);
  EXPECT_EQ(runSchedule(u" 1.4 "), 0);
  EXPECT_EQ(form().Key(), u"1") << "the decimal text of the converted number";
}

TEST_F(Schedule, CreationKeepsTheKeyAndTheButtons) {
  startWithHost();
  createSchedule();
  EXPECT_EQ(form().Key(), u"5");
  EXPECT_EQ(state.RAction, 3);
  EXPECT_EQ(state.runMode, RunMode::creatingSchedule);
  for (const char16_t* name : {u"cmdReset", u"cmdPrint", u"cmdClear", u"cmdLookUp"})
    EXPECT_FALSE(form().form().control(name).flag(u"Enabled"));
  EXPECT_TRUE(form().form().control(u"cmdRequest").flag(u"Enabled"));
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
  createSchedule();
  EXPECT_EQ(runSchedule(u"1"), 0);
  createSchedule();
  EXPECT_EQ(state.runMode, RunMode::scheduledRun);
  EXPECT_EQ(form().Key(), u"1");
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
  EXPECT_THAT(form().GetJobParameter(host, u"MOVE"), ElementsAre(u"a", u"b", u"c"));
  host->data[u"MOVE"] = u"";
  EXPECT_THAT(form().GetJobParameter(host, u"MOVE"), IsEmpty());
  EXPECT_THAT(form().GetJobParameter(host, u"Other"), IsEmpty());
  EXPECT_THAT(form().GetJobParameter(host, u"FilePath"), ElementsAre(u"C:\\QUILMAR32\\30000\\ADDINS"));
  files.directories.insert(u"C:\\Jobs\\");
  host->data[u"FilePath"] = u"C:\\Jobs\\Night.csv,night.CSV";
  EXPECT_THAT(form().GetJobParameter(host, u"FilePath"), ElementsAre(u"C:\\Jobs\\", u"night.CSV"));
  host->data[u"FilePath"] = u"C:\\Gone\\Night.csv,night.csv";
  EXPECT_THAT(form().GetJobParameter(host, u"FilePath"), IsEmpty());
  host->data[u"FilePath"] = u"C:\\Jobs\\Night.txt,night.txt";
  EXPECT_THAT(form().GetJobParameter(host, u"FilePath"), IsEmpty());
  host->remove(u"GetComData");
  EXPECT_THAT(form().GetJobParameter(host, u"MOVE"), IsEmpty());
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
