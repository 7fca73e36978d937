// The window's life, the calls under way in it, and the timer that both hold back.
#include "startup/window_life.h"

#include <gtest/gtest.h>

#include "fakes/memory_view.h"
#include "startup/action_timer.h"

namespace vordane::startup {
namespace {

using Stage = WindowLife::Stage;

// A life brought to a stage in the way the window does.
WindowLife at(Stage stage) {
  WindowLife life;
  if (stage >= Stage::loading) life.beginLoad();
  if (stage >= Stage::loaded) life.endLoad();
  if (stage >= Stage::ending) life.beginEnding();
  if (stage >= Stage::told) life.hostTold();
  if (stage >= Stage::unloaded) life.beginUnload();
  if (stage >= Stage::over) life.endProcess();
  return life;
}

TEST(WindowLife, EveryStageAnswersForItself) {
  const struct {
    Stage stage;
    bool alive, loading, drawn;
  } stages[] = {
      {Stage::unborn, true, false, false}, {Stage::loading, true, true, true},
      {Stage::loaded, true, false, true},  {Stage::ending, false, false, true},
      {Stage::told, false, false, true},   {Stage::unloaded, false, false, false},
      {Stage::over, false, false, false},
  };
  for (const auto& row : stages) {
    const WindowLife life = at(row.stage);
    SCOPED_TRACE(static_cast<int>(row.stage));
    EXPECT_EQ(life.stage(), row.stage);
    EXPECT_EQ(life.alive(), row.alive);
    EXPECT_EQ(life.CheckLoadError(), row.loading);
    EXPECT_EQ(life.drawn(), row.drawn);
  }
}

TEST(WindowLife, EveryStepIsTakenOnceAndNeverBack) {
  WindowLife life;
  EXPECT_TRUE(life.beginLoad());
  EXPECT_FALSE(life.beginLoad());
  life.endLoad();
  EXPECT_FALSE(life.beginLoad());
  EXPECT_TRUE(life.beginEnding());
  EXPECT_FALSE(life.beginEnding());
  life.endLoad();
  EXPECT_FALSE(life.beginLoad());
  EXPECT_EQ(life.stage(), Stage::ending) << "a load that returns late changes nothing";
  EXPECT_TRUE(life.beginUnload().begins);
  EXPECT_FALSE(life.beginUnload().begins);
  life.hostTold();
  EXPECT_EQ(life.stage(), Stage::unloaded);
  EXPECT_TRUE(life.endProcess());
  EXPECT_FALSE(life.endProcess());
  EXPECT_FALSE(life.beginEnding());
  EXPECT_FALSE(life.beginUnload().begins);
  EXPECT_EQ(life.stage(), Stage::over);
}

TEST(WindowLife, AnUnloadSaysWhatCameBeforeIt) {
  const struct {
    Stage before;
    bool begins, endingBegins, hostKnows;
  } rows[] = {
      {Stage::unborn, false, false, false}, {Stage::loading, true, true, false},
      {Stage::loaded, true, true, false},   {Stage::ending, true, false, false},
      {Stage::told, true, false, true},     {Stage::unloaded, false, false, false},
      {Stage::over, false, false, false},
  };
  for (const auto& row : rows) {
    WindowLife life = at(row.before);
    SCOPED_TRACE(static_cast<int>(row.before));
    const auto unloading = life.beginUnload();
    EXPECT_EQ(unloading.begins, row.begins);
    EXPECT_EQ(unloading.endingBegins, row.endingBegins);
    EXPECT_EQ(unloading.hostKnows, row.hostKnows);
  }
}

TEST(WindowLife, AWindowThatWasNeverLoadedHasNothingToUnload) {
  WindowLife life;
  EXPECT_TRUE(life.beginEnding());
  EXPECT_FALSE(life.alive());
  EXPECT_FALSE(life.beginUnload().begins);
  EXPECT_FALSE(life.beginLoad());
}

TEST(WindowLife, CountsItsUsers) {
  WindowLife life;
  EXPECT_FALSE(life.hasUsers());
  EXPECT_EQ(life.IncrementCount(), 1);
  EXPECT_TRUE(life.hasUsers());
  EXPECT_EQ(life.IncrementCount(), 2);
  EXPECT_EQ(life.DecrementCount(), 1);
  EXPECT_TRUE(life.hasUsers());
  EXPECT_EQ(life.DecrementCount(), 0);
  EXPECT_FALSE(life.hasUsers());
  life.IncrementCount();
  life.forgetUsers();
  EXPECT_FALSE(life.hasUsers());
}

TEST(WindowLife, WhatIsLetGoLivesUntilTheLastCallHasReturned) {
  WindowLife life;
  auto thing = std::make_shared<int>(1);
  const std::weak_ptr<int> watch = thing;
  {
    const WindowLife::Entry outer(life);
    {
      const WindowLife::Entry inner(life);
      life.retire(std::move(thing));
      EXPECT_TRUE(life.callUnderWay());
    }
    EXPECT_TRUE(life.callUnderWay());
    EXPECT_FALSE(watch.expired()) << "the outer call may name it";
  }
  EXPECT_FALSE(life.callUnderWay());
  EXPECT_TRUE(watch.expired());
}

class Timer : public testing::Test {
 protected:
  Timer() {
    life.beginLoad();
    life.endLoad();
  }
  WindowLife life;
  fakes::MemoryView view;
  ActionTimer timer{life, view};
};

TEST_F(Timer, EachEnablingYieldsOneTickOfTheLastAction) {
  EXPECT_EQ(timer.tick(), std::nullopt);
  timer.enable(Action::print);
  timer.enable(Action::runStep);
  EXPECT_TRUE(timer.enabled());
  EXPECT_EQ(view.timer, 100);
  EXPECT_EQ(timer.tick(), Action::runStep);
  EXPECT_EQ(view.timer, 0);
  EXPECT_FALSE(timer.enabled());
  EXPECT_EQ(timer.tick(), std::nullopt);
}

TEST_F(Timer, ATickInsideACallComesAgainBehindIt) {
  timer.enable(Action::request);
  view.timer = 0;
  {
    const WindowLife::Entry entry(life);
    EXPECT_EQ(timer.tick(), std::nullopt);
    EXPECT_EQ(view.timer, 100);
    EXPECT_TRUE(timer.enabled());
  }
  EXPECT_EQ(timer.tick(), Action::request);
}

TEST_F(Timer, TellsWhatTheNextTickWillDo) {
  EXPECT_EQ(timer.due(), std::nullopt);
  timer.enable(Action::print);
  EXPECT_EQ(timer.due(), Action::print);
  {
    const WindowLife::Entry entry(life);
    EXPECT_EQ(timer.due(), std::nullopt);
  }
  EXPECT_EQ(timer.due(), Action::print) << "asking changes nothing";
  timer.tick();
  EXPECT_EQ(timer.due(), std::nullopt);
  timer.enable(Action::print);
  life.beginEnding();
  EXPECT_EQ(timer.due(), std::nullopt);
}

TEST_F(Timer, APressIsDroppedAndAnAnswerIsNot) {
  timer.enable(Action::request);
  EXPECT_FALSE(timer.answerWaits());
  timer.dropPress();
  EXPECT_FALSE(timer.enabled());
  EXPECT_EQ(view.timer, 0);
  for (const Action answer : {Action::ingest, Action::alarmsCleared, Action::alarmState}) {
    timer.enable(answer);
    EXPECT_TRUE(timer.answerWaits());
    timer.dropPress();
    EXPECT_EQ(view.timer, 100);
    EXPECT_EQ(timer.tick(), answer);
    EXPECT_FALSE(timer.answerWaits());
  }
}

TEST_F(Timer, NothingTicksOnceAnEndingHasBegun) {
  timer.enable(Action::request);
  life.beginEnding();
  EXPECT_EQ(timer.tick(), std::nullopt);
  timer.disable();
  view.timer = 0;
  timer.enable(Action::request);
  EXPECT_FALSE(timer.enabled());
  EXPECT_EQ(view.timer, 0);
}

TEST(Actions, HaveTheirNumbers) {
  const std::pair<Action, int> numbers[] = {
      {Action::request, 0},     {Action::reset, 1},    {Action::print, 2},     {Action::clear, 3},
      {Action::close, 4},       {Action::followUp, 5}, {Action::ingest, 10},   {Action::alarmsCleared, 11},
      {Action::alarmState, 12}, {Action::runStep, 99}, {Action::stopRun, 100},
  };
  for (const auto& [action, number] : numbers) {
    EXPECT_EQ(static_cast<int>(action), number);
    EXPECT_EQ(isAnswer(action), number >= 10 && number <= 12);
  }
}

}  // namespace
}  // namespace vordane::startup
