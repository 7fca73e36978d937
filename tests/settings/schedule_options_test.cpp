#include <gtest/gtest.h>

#include "fakes/folder_engine.h"
#include "fakes/memory_files.h"
#include "fakes/memory_settings.h"
#include "fakes/set_clock.h"
#include "settings/comSchedule.h"
#include "settings/suite_databases.h"
#include "text/utf8.h"

namespace vordane {
namespace {

using automation::Null;
using automation::Value;
using text16 = std::u16string;

class ScheduleOptions : public testing::Test {
 protected:
  fakes::MemorySettings settings;
  comRegQuil32::Installation installation{settings, u"D:\\QUILMAR32\\30000\\ADDINS"};
  fakes::FolderEngine engine;
  fakes::SetClock clock;
  fakes::MemoryFiles files;
  ScheduleState state;
  std::vector<bool> pointer;
  comSchedule::Environment environment{installation, engine, clock,
                                       files,        state,  [this](bool on) { pointer.push_back(on); }};

  // Key, Wait, ErrorStop, Count, Log, Log2, FileByte, File, Kind
  void makeSchedule(fakes::Row row) {
    fakes::makeDatabase(engine, u"Schedule.mdb", {{settings::scheduleTables[0], {std::move(row)}}});
  }
  static fakes::Row fullRow() {
    return {std::int32_t{7},   std::int32_t{30}, false,          std::int32_t{3}, false, false,
            std::int32_t{250}, text16(u"NIGHT"), std::int32_t{5}};
  }
  void expectDefaults() {
    EXPECT_EQ(state.ScheduleWait, 0);
    EXPECT_EQ(state.ScheduleErrorStop, u"True");
    EXPECT_EQ(state.ScheduleCount, 1);
    EXPECT_TRUE(state.LogEnabled);
    EXPECT_TRUE(state.LogLimited);
    EXPECT_EQ(state.LogLimitKB, 100);
    EXPECT_EQ(state.LogName, u"");
    EXPECT_EQ(state.JobKind, 2);
  }
};

TEST_F(ScheduleOptions, AreThoseOfTheJobsRow) {
  settings.write(u"QUILMAR32", u"30000", u"QUILMAR32", u"30000");
  settings.write(u"QUILMAR32", u"30000", u"InstallPath", u"C:\\QUILMAR32\\30000\\");
  makeSchedule(fullRow());
  comSchedule::LoadScheduleOptions(environment, u"7");
  EXPECT_EQ(engine.opened.front().path, u"C:\\QUILMAR32\\30000\\Quil32\\Database\\Schedule.mdb");
  EXPECT_EQ(state.ScheduleWait, 30);
  EXPECT_EQ(state.ScheduleErrorStop, u"False");
  EXPECT_EQ(state.ScheduleCount, 3);
  EXPECT_FALSE(state.LogEnabled);
  EXPECT_FALSE(state.LogLimited);
  EXPECT_EQ(state.LogLimitKB, 250);
  EXPECT_EQ(state.LogName, u"NIGHT7");
  EXPECT_EQ(state.JobKind, 5);
  EXPECT_EQ(comSchedule::logPath(environment), u"C:\\QUILMAR32\\30000\\Quil32\\Database\\NIGHT7.tlg");
  EXPECT_EQ(pointer, (std::vector<bool>{true, false}));
}

// It is the scheduler's own file: the add-in never holds it for writing.
TEST_F(ScheduleOptions, AreReadFromADatabaseThatIsOpenedForReadingOnly) {
  makeSchedule(fullRow());
  engine.unwritable = u"Schedule.mdb";
  comSchedule::LoadScheduleOptions(environment, u"7");
  ASSERT_EQ(engine.opened.size(), 1U);
  EXPECT_TRUE(engine.opened[0].readOnly);
  EXPECT_EQ(state.LogName, u"NIGHT7");
}

TEST_F(ScheduleOptions, AFullLogWasTheLastJobs) {
  makeSchedule(fullRow());
  state.LogFull = true;
  comSchedule::LoadScheduleOptions(environment, u"7");
  EXPECT_FALSE(state.LogFull);
  state.LogFull = true;
  comSchedule::LoadScheduleOptions(environment, u"8");  // without a row
  EXPECT_FALSE(state.LogFull);
}

TEST_F(ScheduleOptions, DefaultsHoldWithoutRowTableOrFile) {
  state.ScheduleWait = 99;
  state.LogName = u"LAST";
  comSchedule::LoadScheduleOptions(environment, u"7");
  expectDefaults();
  EXPECT_EQ(pointer, (std::vector<bool>{true, false}));
  makeSchedule(fullRow());
  state.ScheduleCount = 9;
  comSchedule::LoadScheduleOptions(environment, u"8");
  expectDefaults();
  comSchedule::LoadScheduleOptions(environment, u"no number");
  expectDefaults();
  fakes::makeDatabase(engine, u"Schedule.mdb", {{settings::registrationTables[0], {}}});
  comSchedule::LoadScheduleOptions(environment, u"7");
  expectDefaults();
}

TEST_F(ScheduleOptions, NullKindIsTheFaultList) {
  fakes::Row row = fullRow();
  row[8] = Null{};
  makeSchedule(row);
  comSchedule::LoadScheduleOptions(environment, u"7");
  EXPECT_EQ(state.JobKind, 2);
}

TEST_F(ScheduleOptions, AKindBeyond16BitsIsAnotherKind) {
  fakes::Row row = fullRow();
  row[8] = std::int32_t{70000};
  makeSchedule(row);
  comSchedule::LoadScheduleOptions(environment, u"7");
  EXPECT_NE(state.JobKind, 2);
  EXPECT_EQ(state.LogName, u"NIGHT7");
}

TEST_F(ScheduleOptions, ADatabaseWithoutKindsIsRead) {
  const database::TableDefinition full = settings::scheduleTables[0];
  fakes::Row row = fullRow();
  row.pop_back();
  fakes::makeDatabase(engine, u"Schedule.mdb", {{{full.name, full.columns.first(8)}, {row}}});
  comSchedule::LoadScheduleOptions(environment, u"7");
  EXPECT_EQ(state.JobKind, 2);
  EXPECT_EQ(state.LogName, u"NIGHT7");
}

TEST_F(ScheduleOptions, AnEmptyFileLeavesTheKeyAsTheLogsName) {
  for (const Value& file : {Value{text16{}}, Value{Null{}}}) {
    fakes::Row row = fullRow();
    row[7] = file;
    makeSchedule(row);
    comSchedule::LoadScheduleOptions(environment, u"7");
    EXPECT_EQ(state.LogName, u"7");
  }
}

TEST_F(ScheduleOptions, ALogNameThatIsMoreThanAFilesNameCountsAsEmpty) {
  const auto nameOf = [&](const text16& file) {
    fakes::Row row = fullRow();
    row[7] = file;
    makeSchedule(row);
    comSchedule::LoadScheduleOptions(environment, u"7");
    EXPECT_EQ(state.JobKind, 5) << "what stands behind it is read all the same";
    return state.LogName;
  };
  for (const char16_t* file : {u"..\\..\\autorun",
                               u"../up",
                               u"C:night",
                               u"C:\\night",
                               u"\\\\server\\share\\night",
                               u"night:stream",
                               u"a*",
                               u"a?",
                               u"a\"b",
                               u"<a",
                               u"a>",
                               u"a|b",
                               u"a\nb",
                               u"a\x1F",
                               u"COM",
                               u"lpt",
                               u"CON.log",
                               u"nul .x",
                               u"Aux.",
                               u"conin$."})
    EXPECT_EQ(nameOf(file), u"7") << text::toUtf8(file);
  for (const char16_t* file :
       {u"NIGHT", u"night run", u"ночь", u"夜間", u"a.b", u"..", u"CON", u"COM1", u"(1) [2] {3}", u"x$"})
    EXPECT_EQ(nameOf(file), file + text16(u"7")) << text::toUtf8(file);
}

TEST_F(ScheduleOptions, AValueThatDoesNotFitEndsTheReading) {
  fakes::Row row = fullRow();
  row[3] = std::int32_t{40000};  // beyond 16 bits
  makeSchedule(row);
  comSchedule::LoadScheduleOptions(environment, u"7");
  EXPECT_EQ(state.ScheduleWait, 30);
  EXPECT_EQ(state.ScheduleErrorStop, u"False");
  EXPECT_EQ(state.ScheduleCount, 1);
  EXPECT_EQ(state.LogName, u"");
}

TEST_F(ScheduleOptions, CancelledRepetitionsAreNone) {
  state.ScheduleCount = 5;
  comSchedule::CancelScheduleCount(state);
  EXPECT_EQ(state.ScheduleCount, 0);
}

}  // namespace
}  // namespace vordane
