#include "platform/call_filter.h"

#include <gtest/gtest.h>

#include <functional>

namespace vordane::platform {
namespace {

// A person (or nobody) in front of the questions.
class Questions : public CallQuestions {
 public:
  bool nobody = false;
  bool goOn = true;
  int busy = 0;
  int pending = 0;
  std::function<void()> meanwhile;  // runs while a question is up

  bool unattended() override { return nobody; }
  bool askWhileBusy() override {
    ++busy;
    if (meanwhile) meanwhile();
    return goOn;
  }
  void tellPending() override {
    ++pending;
    if (meanwhile) meanwhile();
  }
};

class Filter : public testing::Test {
 protected:
  Questions questions;
  CallFilter filter{questions};
};

TEST_F(Filter, RetriesARejectedCallForTwentySeconds) {
  EXPECT_EQ(filter.rejected(0), 250);
  EXPECT_EQ(filter.rejected(19999), 250);
  EXPECT_EQ(questions.busy, 0);
}

TEST_F(Filter, AsksThenAndGoesOnForAsLongAgain) {
  EXPECT_EQ(filter.rejected(20000), 250);
  EXPECT_EQ(questions.busy, 1);
  EXPECT_EQ(filter.rejected(39999), 250);
  EXPECT_EQ(questions.busy, 1);
  EXPECT_EQ(filter.rejected(40000), 250);
  EXPECT_EQ(questions.busy, 2);
}

TEST_F(Filter, CancellingFailsTheCall) {
  questions.goOn = false;
  EXPECT_EQ(filter.rejected(20000), -1);
}

TEST_F(Filter, EveryCallHasPatienceOfItsOwn) {
  filter.rejected(20000);
  EXPECT_EQ(filter.rejected(100), 250);  // a younger call
  EXPECT_EQ(filter.rejected(20000), 250);
  EXPECT_EQ(questions.busy, 2);
}

TEST_F(Filter, TellsAboutAPendingCallOnInputAfterTenSeconds) {
  filter.waiting(50000, 9999, true);
  EXPECT_EQ(questions.pending, 0);
  filter.waiting(50000, 10000, false);
  EXPECT_EQ(questions.pending, 0);
  filter.waiting(50000, 10000, true);
  EXPECT_EQ(questions.pending, 1);
}

TEST_F(Filter, NoQuestionStandsAboveAnother) {
  questions.meanwhile = [&] {
    filter.waiting(60000, 15000, true);
    EXPECT_EQ(filter.rejected(30000), 250);
  };
  filter.waiting(50000, 12000, true);
  EXPECT_EQ(questions.pending, 1);
  EXPECT_EQ(questions.busy, 0);
}

TEST_F(Filter, WithoutAPersonEachPendingCallIsNotedOnceAndNeedsNoInput) {
  questions.nobody = true;
  filter.waiting(50000, 9000, false);
  EXPECT_EQ(questions.pending, 0);
  filter.waiting(51000, 10000, false);
  filter.waiting(52000, 11000, false);
  EXPECT_EQ(questions.pending, 1);
  // The two clocks are not read at once: the same call seems to have begun a little earlier or later.
  filter.waiting(53000, 12100, false);
  filter.waiting(54000, 13000, false);
  EXPECT_EQ(questions.pending, 1);
  filter.waiting(80000, 10500, false);  // another call, made later
  EXPECT_EQ(questions.pending, 2);
}

TEST_F(Filter, TimesCanBeSet) {
  filter.setTimes({.pendingMilliseconds = 100, .busyMilliseconds = 300});
  questions.goOn = false;
  EXPECT_EQ(filter.rejected(299), 250);
  EXPECT_EQ(filter.rejected(300), -1);
  filter.waiting(1000, 100, true);
  EXPECT_EQ(questions.pending, 1);
}

}  // namespace
}  // namespace vordane::platform
