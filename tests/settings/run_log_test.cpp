#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "fakes/folder_engine.h"
#include "fakes/memory_files.h"
#include "fakes/memory_settings.h"
#include "fakes/scripted_object.h"
#include "fakes/set_clock.h"
#include "pbx/cListRequest.h"
#include "settings/comSchedule.h"

namespace vordane {
namespace {

class RunLog : public testing::Test {
 protected:
  RunLog() { state.LogName = u"NIGHT7"; }

  fakes::MemorySettings settings;
  comRegQuil32::Installation installation{settings, u"D:\\QUILMAR32\\30000\\ADDINS"};
  fakes::FolderEngine engine;
  fakes::SetClock clock;
  fakes::MemoryFiles files;
  ScheduleState state;
  comSchedule::Environment environment{installation, engine, clock, files, state};

  void write(std::u16string_view text, bool forced = true, bool ignoreLimit = false) {
    comSchedule::WriteRunLog(environment, text, forced, ignoreLimit);
  }
  std::string& log() { return files.content[comSchedule::LogPath(environment)]; }
};

TEST_F(RunLog, ALineHasDateTimeAndText) {
  write(u"Прогон 1");
  EXPECT_EQ(log(), "2026-11-20 21:14:05 Прогон 1\r\n");
  EXPECT_EQ(files.content.begin()->first, u"D:\\QUILMAR32\\30000\\ADDINS\\Quil32\\Database\\NIGHT7.tlg");
}

TEST_F(RunLog, AnEmptyTextIsAnEmptyLine) {
  write(u"");
  EXPECT_EQ(log(), "\r\n");
}

TEST_F(RunLog, LineBreaksBecomeBlanks) {
  write(u"a\rb\r\nc\nd");
  EXPECT_EQ(log(), "2026-11-20 21:14:05 a b c d\r\n");
}

TEST_F(RunLog, OrdinaryLinesNeedLogAlways) {
  write(u"quiet", false);
  EXPECT_EQ(log(), "");
  state.LogAlways = 2;  // only 1 switches it on
  write(u"quiet", false);
  EXPECT_EQ(log(), "");
  state.LogAlways = 1;
  write(u"heard", false);
  EXPECT_EQ(log(), "2026-11-20 21:14:05 heard\r\n");
}

TEST_F(RunLog, WithoutNameOrWithLoggingOffNothingIsWritten) {
  state.LogEnabled = false;
  write(u"lost");
  state.LogEnabled = true;
  state.LogName.clear();
  write(u"lost", true, true);
  EXPECT_TRUE(files.content.empty());
}

TEST_F(RunLog, LinesAreDroppedOnceTheFileExceedsItsLimit) {
  state.LogLimitKB = 100;
  log() = std::string(100'000, 'x');
  write(u"last");  // exactly at the limit is not above it
  EXPECT_EQ(log().size(), 100'000U + 26);
  EXPECT_FALSE(state.LogFull);
  write(u"dropped");
  EXPECT_EQ(log().size(), 100'000U + 26);
  EXPECT_TRUE(state.LogFull);
  write(u"kept", true, true);
  EXPECT_EQ(log().size(), 100'000U + 26 + 26);
}

TEST_F(RunLog, AnUnlimitedLogGrowsOn) {
  state.LogLimited = false;
  log() = std::string(200'000, 'x');
  write(u"more");
  EXPECT_EQ(log().size(), 200'026U);
  EXPECT_FALSE(state.LogFull);
}

TEST_F(RunLog, TheLargestLimitIsNoSmallOne) {
  state.LogLimitKB = 2'147'483'647;  // thousands of bytes: more than 32 bits hold
  log() = std::string(3'000'000, 'x');
  write(u"more");
  EXPECT_EQ(log().size(), 3'000'026U);
  EXPECT_FALSE(state.LogFull);
}

TEST_F(RunLog, ALogThatCantBeWrittenStopsNothing) {
  files.locked = true;
  write(u"lost");
  files.locked = false;
  files.capacity = 10;
  write(u"disk full");
  EXPECT_EQ(log(), "");
  EXPECT_FALSE(state.LogFull);
  files.capacity = 1000;
  write(u"room again");
  EXPECT_EQ(log(), "2026-11-20 21:14:05 room again\r\n");
}

void fill(cListRequest& record, std::int32_t code) {
  record.AddToList(u"LEA0", u"first", u"second", u"extra");
  record.AddToList(u"LEA0");
  record.ErrCode = code;
}

TEST_F(RunLog, AResponseIsLoggedWithItsEntries) {
  cListRequest record;
  fill(record, 0);
  EXPECT_FALSE(comSchedule::LogResponse(environment, record));
  EXPECT_EQ(log(),
            "2026-11-20 21:14:05 ErrCode = 0\r\n"
            "2026-11-20 21:14:05 Response(0) = LEA0 > first : second - extra\r\n"
            "2026-11-20 21:14:05 Response(1) = LEA0 >  :  - \r\n");
  EXPECT_EQ(state.LastErrCode, 0);
}

TEST_F(RunLog, ASuccessIsTheLastCodeToo) {
  state.LastErrCode = 61;
  cListRequest record;
  fill(record, 0);
  EXPECT_FALSE(comSchedule::LogResponse(environment, record));
  EXPECT_EQ(state.LastErrCode, 0);
}

TEST_F(RunLog, AnErrorStopsTheRunWhenTheOptionsSaySo) {
  cListRequest record;
  fill(record, 200);
  EXPECT_TRUE(comSchedule::LogResponse(environment, record));
  EXPECT_EQ(state.LastErrCode, 200);
  state.ScheduleErrorStop = u"False";
  EXPECT_FALSE(comSchedule::LogResponse(environment, record));
  EXPECT_EQ(state.RunState, 0);
}

TEST_F(RunLog, ACodeBeyond16BitsIsKeptAsItsLimit) {
  cListRequest record;
  fill(record, 70000);
  EXPECT_TRUE(comSchedule::LogResponse(environment, record));
  EXPECT_THAT(log(), testing::StartsWith("2026-11-20 21:14:05 ErrCode = 70000\r\n"));
  EXPECT_EQ(state.LastErrCode, 32767);
}

TEST_F(RunLog, Code61AlwaysStopsTheRun) {
  state.ScheduleErrorStop = u"False";
  state.RunState = 11;
  cListRequest record;
  fill(record, 61);
  EXPECT_TRUE(comSchedule::LogResponse(environment, record));
  EXPECT_EQ(state.RunState, 12);
  EXPECT_EQ(state.LastErrCode, 61);
}

TEST_F(RunLog, ARecordThatCantBeReadCountsAsAnError) {
  fakes::ScriptedObject gone;
  EXPECT_TRUE(comSchedule::LogResponse(environment, gone));
  EXPECT_EQ(log(), "2026-11-20 21:14:05 ErrCode = \r\n");
  gone.on(u"ErrCode", [](auto) { return automation::Value{std::int32_t{0}}; });
  gone.on(u"Count", [](auto) { return automation::Value{std::int16_t{1}}; });
  gone.on(u"FirstData", [](auto) { return automation::Value{std::u16string(u"read")}; });
  log().clear();
  EXPECT_FALSE(comSchedule::LogResponse(environment, gone));
  EXPECT_EQ(log(), "2026-11-20 21:14:05 ErrCode = 0\r\n2026-11-20 21:14:05 Response(0) =  > read :  - \r\n");
}

// A day's clock that begins again at midnight and moves only while somebody sleeps.
class DayClock : public fakes::SetClock {
 public:
  void sleep(int milliseconds) override {
    longestSleep = std::max(longestSleep, milliseconds);
    seconds = std::fmod(seconds + milliseconds / 1000.0, 86'400.0);
    ++sleeps;
  }
  int longestSleep = 0, sleeps = 0;
};

TEST(Waiting, EndsAfterThatManySeconds) {
  DayClock day;
  day.seconds = 1000;
  comSchedule::WaitSeconds(day, 5);
  EXPECT_NEAR(day.seconds, 1005, 0.2);
  EXPECT_GT(day.sleeps, 10);  // in short steps
  EXPECT_LE(day.longestSleep, 100);
}

TEST(Waiting, EndsAcrossMidnight) {
  DayClock day;
  day.seconds = 86'398;  // 23:59:58
  comSchedule::WaitSeconds(day, 5);
  EXPECT_NEAR(day.seconds, 3, 0.2);  // 00:00:03
}

TEST(Waiting, LessThanOneSecondIsNoWait) {
  DayClock day;
  comSchedule::WaitSeconds(day, 0);
  comSchedule::WaitSeconds(day, -3);
  EXPECT_EQ(day.sleeps, 0);
}

}  // namespace
}  // namespace vordane
