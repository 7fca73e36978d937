// A job of the host's scheduler, as what it is told and what it decides.
#include "startup/scheduled_job.h"

#include <gtest/gtest.h>

namespace vordane::startup {
namespace {

using Start = ScheduledJob::Start;

ScheduleState options(int count, int runState = 11, int kind = 2) {
  ScheduleState state;
  state.ScheduleCount = static_cast<std::int16_t>(count);
  state.RunState = static_cast<std::int16_t>(runState);
  state.JobKind = static_cast<std::int16_t>(kind);
  return state;
}

// How often the run goes on.
int iterations(const ScheduleState& state) {
  ScheduledJob job;
  job.beginRun();
  int times = 0;
  while (times < 40000 && job.nextIteration(state)) ++times;
  EXPECT_EQ(job.iteration(), times);
  return times;
}

TEST(ScheduledJob, RunsAsOftenAsItsOptionsSay) {
  EXPECT_EQ(iterations(options(1)), 1);
  EXPECT_EQ(iterations(options(3)), 3);
  EXPECT_EQ(iterations(options(0)), 0);
  EXPECT_EQ(iterations(options(-3)), 0);
  EXPECT_EQ(iterations(options(32767)), 32767);
}

TEST(ScheduledJob, AnotherRunStateStopsIt) {
  EXPECT_EQ(iterations(options(3, 0)), 0);
  EXPECT_EQ(iterations(options(3, 12)), 0) << "after the fatal exchange error";
}

TEST(ScheduledJob, RepetitionsThatAreCancelledMeanwhileDoNotCome) {
  ScheduledJob job;
  ScheduleState state = options(3);
  EXPECT_TRUE(job.nextIteration(state));
  state.ScheduleCount = 0;
  EXPECT_FALSE(job.nextIteration(state));
  EXPECT_EQ(job.iteration(), 1);
}

TEST(ScheduledJob, EveryRunCountsFromTheBeginning) {
  ScheduledJob job;
  EXPECT_TRUE(job.nextIteration(options(1)));
  EXPECT_FALSE(job.nextIteration(options(1)));
  job.beginRun();
  EXPECT_TRUE(job.nextIteration(options(1)));
}

TEST(ScheduledJob, TheResultTellsHowItsLastStartWent) {
  const struct {
    int kind;
    bool registered;
    Start start;
    int result;
  } rows[] = {
      {2, true, Start::request, 0},       {2, false, Start::noExchange, 10021},
      {9, true, Start::otherKind, 10020}, {9, false, Start::otherKind, 10020},
      {0, true, Start::otherKind, 10020},
  };
  ScheduledJob job;
  EXPECT_EQ(job.result(), 0);
  for (const auto& row : rows) {
    EXPECT_EQ(job.start(options(1, 11, row.kind), row.registered), row.start);
    EXPECT_EQ(job.result(), row.result);
  }
}

TEST(ScheduledJob, ACreationIsGivenUpUntilTheNextBegins) {
  ScheduledJob job;
  EXPECT_FALSE(job.cancelled());
  job.cancel();
  EXPECT_TRUE(job.cancelled());
  job.beginRun();
  EXPECT_TRUE(job.cancelled());
  job.beginCreation();
  EXPECT_FALSE(job.cancelled());
}

TEST(ScheduledJob, KeepsItsKey) {
  ScheduledJob job;
  EXPECT_EQ(job.Key(), u"");
  job.setKey(u"12");
  EXPECT_EQ(job.Key(), u"12");
}

}  // namespace
}  // namespace vordane::startup
