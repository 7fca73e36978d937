#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "fakes/folder_engine.h"
#include "fakes/memory_files.h"
#include "fakes/memory_settings.h"
#include "fakes/set_clock.h"
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
  std::string& log() { return files.content[comSchedule::logPath(environment)]; }
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

// An answer of two entries; a code that could not be read is nothing.
comSchedule::LoggedAnswer answer(std::optional<std::int32_t> code) {
  return {code, 2, [](std::int32_t index) {
            return index == 0 ? comSchedule::LoggedEntry{u"LEA0", u"first", u"second", u"extra"}
                              : comSchedule::LoggedEntry{u"LEA0", {}, {}, {}};
          }};
}

TEST_F(RunLog, AResponseIsLoggedWithItsEntries) {
  EXPECT_FALSE(comSchedule::LogResponse(environment, answer(0)));
  EXPECT_EQ(log(),
            "2026-11-20 21:14:05 ErrCode = 0\r\n"
            "2026-11-20 21:14:05 Response(0) = LEA0 > first : second - extra\r\n"
            "2026-11-20 21:14:05 Response(1) = LEA0 >  :  - \r\n");
  EXPECT_EQ(state.LastErrCode, 0);
}

TEST_F(RunLog, ALogThatKeepsNothingAsksForNoEntry) {
  auto silent = answer(61);
  silent.entry = [](std::int32_t) -> comSchedule::LoggedEntry {
    ADD_FAILURE() << "nobody reads it";
    return {};
  };
  state.RunState = 11;
  state.LogEnabled = false;
  EXPECT_TRUE(comSchedule::LogResponse(environment, silent));
  state.LogEnabled = true;
  state.LogName.clear();
  EXPECT_TRUE(comSchedule::LogResponse(environment, silent));
  EXPECT_TRUE(files.content.empty());
  EXPECT_EQ(state.LastErrCode, 61) << "the run is judged all the same";
  EXPECT_EQ(state.RunState, 12);
}

TEST_F(RunLog, ASuccessIsTheLastCodeToo) {
  state.LastErrCode = 61;
  EXPECT_FALSE(comSchedule::LogResponse(environment, answer(0)));
  EXPECT_EQ(state.LastErrCode, 0);
}

TEST_F(RunLog, AnErrorStopsTheRunWhenTheOptionsSaySo) {
  EXPECT_TRUE(comSchedule::LogResponse(environment, answer(200)));
  EXPECT_EQ(state.LastErrCode, 200);
  state.ScheduleErrorStop = u"False";
  EXPECT_FALSE(comSchedule::LogResponse(environment, answer(200)));
  EXPECT_EQ(state.RunState, 0);
}

TEST_F(RunLog, ACodeBeyond16BitsIsKeptAsItsLimit) {
  EXPECT_TRUE(comSchedule::LogResponse(environment, answer(70000)));
  EXPECT_THAT(log(), testing::StartsWith("2026-11-20 21:14:05 ErrCode = 70000\r\n"));
  EXPECT_EQ(state.LastErrCode, 32767);
}

TEST_F(RunLog, Code61AlwaysStopsTheRun) {
  state.ScheduleErrorStop = u"False";
  state.RunState = 11;
  EXPECT_TRUE(comSchedule::LogResponse(environment, answer(61)));
  EXPECT_EQ(state.RunState, 12);
  EXPECT_EQ(state.LastErrCode, 61);
}

TEST_F(RunLog, ACodeThatCantBeReadCountsAsAnError) {
  EXPECT_TRUE(comSchedule::LogResponse(environment, {{}, 0, {}}));
  EXPECT_EQ(log(), "2026-11-20 21:14:05 ErrCode = \r\n");
  EXPECT_EQ(state.LastErrCode, -1);
  EXPECT_EQ(state.RunState, 0);
  state.ScheduleErrorStop = u"False";
  EXPECT_FALSE(comSchedule::LogResponse(environment, {{}, 0, {}}));
}

TEST_F(RunLog, ControlCharactersAndEveryLineEndBecomeBlanks) {
  write(
      std::u16string(u"a\0b\tc\x1B"
                     u"d\x1F"
                     u"e\x7F"
                     u"f\x80g\x85h\x9Fi\u2028j\u2029k",
                     21));
  EXPECT_EQ(log(), "2026-11-20 21:14:05 a b c d e f g h i j k\r\n");
  log().clear();
  write(u"~ \u00A0 \u2027 \u202A !");
  EXPECT_EQ(log(), "2026-11-20 21:14:05 ~ \u00A0 \u2027 \u202A !\r\n") << "their neighbours stay";
}

TEST_F(RunLog, ALineIsCutAt4096Characters) {
  write(std::u16string(4076, u'x'));
  EXPECT_EQ(log(), "2026-11-20 21:14:05 " + std::string(4076, 'x') + "\r\n");
  log().clear();
  write(std::u16string(4075, u'x') + u"yz");
  EXPECT_EQ(log(), "2026-11-20 21:14:05 " + std::string(4075, 'x') + "y\r\n");
  log().clear();
  write(std::u16string(4075, u'x') + u"\r\ny");
  EXPECT_EQ(log(), "2026-11-20 21:14:05 " + std::string(4075, 'x') + " \r\n") << "as it is written";
}

TEST_F(RunLog, AnEntryOfAnyLengthIsOneLine) {
  const std::u16string longText(65'536, u'f');
  const auto entry = [&](std::int32_t) { return comSchedule::LoggedEntry{u"LEA0", longText, u"s", u"e"}; };
  EXPECT_FALSE(comSchedule::LogResponse(environment, {0, 1, entry}));
  EXPECT_EQ(log(),
            "2026-11-20 21:14:05 ErrCode = 0\r\n"
            "2026-11-20 21:14:05 Response(0) = LEA0 > " +
                std::string(4096 - 41, 'f') + "\r\n");
}

TEST_F(RunLog, AClosedLogTakesNoMoreLines) {
  write(u"...");
  comSchedule::closeRunLog(state);
  write(u"late", true, true);
  EXPECT_EQ(files.content.size(), 1U);
  EXPECT_EQ(files.content.begin()->second, "2026-11-20 21:14:05 ...\r\n");
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
  comSchedule::WaitSeconds(day, 1);
  EXPECT_NEAR(day.seconds, 1006, 0.2);
}

TEST(Waiting, EndsAcrossMidnight) {
  DayClock day;
  day.seconds = 86'398;  // 23:59:58
  comSchedule::WaitSeconds(day, 5);
  EXPECT_NEAR(day.seconds, 3, 0.2);  // 00:00:03
}

// Less than a millisecond is no midnight that has passed.
TEST(Waiting, IsNotOverWhenTheLastDigitOfTheTimeGoesBack) {
  DayClock day;
  day.seconds = 1000;
  day.secondsPerLook = -1e-12;
  comSchedule::WaitSeconds(day, 5);
  EXPECT_NEAR(day.seconds, 1005, 0.2);
}

TEST(Waiting, LessThanOneSecondIsNoWait) {
  DayClock day;
  comSchedule::WaitSeconds(day, 0);
  comSchedule::WaitSeconds(day, -3);
  EXPECT_EQ(day.sleeps, 0);
}

}  // namespace
}  // namespace vordane
