// What makes a whole suite fail all the same, and what the doctor mends when it is asked to.
#include "doctor_remedies.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <fstream>
#include <set>

#include "language_folder.h"
#include "lines.h"
#include "platform/sqlite/engine.h"
#include "settings/suite_databases.h"
#include "startup/databases.h"
#include "store/fault_database.h"
#include "store/statements.h"
#include "tools/sqlite/integrity.h"

namespace vordane::tools {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;

// A workstation on which VORDANE.EXE registers itself, or doesn't.
struct MemorySystem : SetupSystem {
  Words words() override { return Words::x64; }
  std::unique_ptr<database::Engine> engine() override { return nullptr; }
  bool inUse(const fs::path&) override { return false; }
  std::optional<Version> versionOf(const fs::path&) override { return std::nullopt; }
  bool registerProgram(const fs::path& program, bool everybody) override {
    registered.push_back(program.filename().string() + (everybody ? " for everybody" : ""));
    return registers;
  }
  bool unregisterProgram(const fs::path&) override { return true; }
  std::optional<std::u16string> setting(std::u16string_view, std::u16string_view) override {
    return std::nullopt;
  }
  void set(std::u16string_view, std::u16string_view, const std::optional<std::u16string>&) override {}
  void removeOwnSettings() override {}
  std::optional<std::uintmax_t> roomAt(const fs::path&) override { return std::nullopt; }
  bool keepCrashDumps(const fs::path&) override { return false; }
  void dropCrashDumps(const fs::path&) override {}
  void letUsersWrite(const fs::path&) override {}
  std::vector<Finding> examine(const SuiteLayout&) override { return {}; }
  void pause(std::chrono::milliseconds) override {}
  std::vector<std::string> registered;
  bool registers = true;
};

class DoctorRemedies : public testing::Test {
 protected:
  DoctorRemedies() : layout{texts.files.folder() / "30000"} {
    Problems problems;
    source = readLanguageSource(texts.folder(), problems);
    makeSuiteFiles(layout, source);
    around.latest = u"2026-11-22 21:00:00";
    around.roomAt = [this](const fs::path& folder) {
      EXPECT_EQ(folder, layout.ownDatabases());
      return room;
    };
  }
  // Everything the doctor says of files.
  std::vector<std::string> look() {
    std::vector<Finding> findings = examineFiles(layout, *engine);
    for (Finding& finding : examineSurroundings(layout, *engine, around))
      findings.push_back(std::move(finding));
    remedies = remediesFor(findings);
    std::vector<std::string> said;
    for (const Finding& finding : findings) said.push_back(finding.text);
    return said;
  }
  void mend(Remedy remedy) { apply(remedy, {layout, *engine, system, around, &source}); }
  // By another program than this system.
  void run(const fs::path& file, const char* sql) {
    sqlite3* handle = nullptr;
    ASSERT_EQ(sqlite3_open(file.string().c_str(), &handle), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(handle, sql, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(handle);
    sqlite3_close(handle);
  }
  void log(const char* name, std::size_t bytes) {
    std::ofstream(layout.sharedDatabases() / name, std::ios::binary) << std::string(bytes, 'x');
  }

  fakes::LanguageFolder texts;
  SuiteLayout layout;
  LanguageSource source;
  std::unique_ptr<database::Engine> engine = sqlite::makeEngine(startup::databases);
  MemorySystem system;
  Surroundings around;
  std::optional<std::uintmax_t> room;
  std::vector<Remedy> remedies;
};

TEST_F(DoctorRemedies, AWholeSuiteInGoodSurroundingsNeedsNone) {
  room = 64'000'000;
  EXPECT_THAT(look(), IsEmpty());
}

TEST_F(DoctorRemedies, AFullLogIsNamedWithItsJob) {
  run(layout.schedule(),
      "delete from Options; insert into Options (Key, Wait, ErrorStop, Count, Log, Log2, FileByte, File) "
      "values "
      "(7,0,0,1,-1,-1,2,'night'), (8,0,0,1,-1,0,2,'free'), (9,0,0,1,0,-1,2,'off'), "
      "(10,0,0,1,-1,-1,2,'../up')");
  log("night7.tlg", 2000);
  EXPECT_THAT(look(), IsEmpty());
  log("night7.tlg", 2001);
  log("free8.tlg", 5000);
  log("off9.tlg", 5000);
  log("10.tlg", 5000);
  EXPECT_THAT(
      look(),
      ElementsAre(EndsWith("night7.tlg is full (2001 of 2000 bytes): job 7 writes nothing into it any "
                           "more. Move it away"),
                  EndsWith("10.tlg is full (5000 of 2000 bytes): job 10 writes nothing into it any "
                           "more. Move it away")));
}

TEST_F(DoctorRemedies, AClockThatTheLastListIsAheadOfIsNamed) {
  run(layout.faults(),
      "insert into PBXList (PBXName, TimeStamp, MJ, MN) values ('PBX-1', '2026-11-22 21:00:00', 0, 0)");
  EXPECT_THAT(look(), IsEmpty());
  run(layout.faults(), "update PBXList set TimeStamp = '2026-11-22 21:00:01'");
  const auto findings = examineSurroundings(layout, *engine, around);
  ASSERT_EQ(findings.size(), 1U);
  EXPECT_EQ(findings[0].text,
            "the clock: the list of PBX-1 came at 2026-11-22 21:00:01, which this workstation's clock has "
            "not reached. "
            "Set it right");
  EXPECT_GT(latestNow(), u"2026");
}

TEST_F(DoctorRemedies, ADiskThatIsNearlyFullIsNamed) {
  room = 63'999'999;
  const auto findings = examineSurroundings(layout, *engine, around);
  ASSERT_EQ(findings.size(), 1U);
  EXPECT_THAT(findings[0].text, HasSubstr("only 63 MB are free on the disk of "));
}

TEST_F(DoctorRemedies, AFolderThatCantBeWrittenIsNamed) {
  const auto all = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
  fs::permissions(layout.ownDatabases(), all, fs::perm_options::remove);
  fs::permissions(layout.sharedDatabases(), all, fs::perm_options::remove);
  EXPECT_THAT(look(), ElementsAre(HasSubstr("DATABASE can't be written: nothing can be stored"),
                                  HasSubstr("DATABASE can't be written: scheduled jobs run without a log")));
  fs::permissions(layout.ownDatabases(), fs::perms::owner_write, fs::perm_options::add);
  fs::permissions(layout.sharedDatabases(), fs::perms::owner_write, fs::perm_options::add);
}

TEST_F(DoctorRemedies, AStaleIndexIsMadeAnewAndNoFaultIsLost) {
  constexpr const char* fault =
      "insert into FaultDisplay (ID, Fault, Alarm, CPU, Date, Description) values "
      "(1,'01','MJ','MP','2026/11/22 10:00','a')";
  run(layout.faults(),
      "insert into PBXList (PBXName, TimeStamp, MJ, MN) values ('PBX-1', '2026-11-22 20:00:00', 0, 0)");
  EXPECT_FALSE(hasStaleIndex(layout.faults().u16string()));
  run(layout.faults(), fault);  // before there is an index
  EXPECT_THAT(look(), ElementsAre(HasSubstr("FAULT.MDB: its index is not that of its faults")));
  EXPECT_THAT(remedies, ElementsAre(Remedy::faultIndex));
  mend(Remedy::faultIndex);
  EXPECT_THAT(look(), IsEmpty());
  run(layout.faults(), fault);  // past it
  EXPECT_THAT(look(), ElementsAre(HasSubstr("its index is not that of its faults")));
  mend(Remedy::faultIndex);
  EXPECT_THAT(look(), IsEmpty());
  const auto rows = engine->open(layout.faults().u16string(), true)->openRecordset(store::addFaults);
  int stored = 0;
  for (; !rows->atEnd(); rows->moveNext()) ++stored;
  EXPECT_EQ(stored, 2);
}

TEST_F(DoctorRemedies, TheAddInsRowIsWrittenAndThoseOfOthersStay) {
  run(layout.registration(),
      "delete from Registry; insert into Registry (AppName, Version) values ('OTHER.WRX', '9')");
  EXPECT_THAT(look(), ElementsAre(HasSubstr("Register.mdb: there is no row for VORDANE.WRX")));
  EXPECT_THAT(remedies, ElementsAre(Remedy::suiteRegistration));
  mend(Remedy::suiteRegistration);
  EXPECT_THAT(look(), IsEmpty());
  const auto rows =
      engine->open(layout.registration().u16string(), true)->openRecordset(u"select * from Registry");
  std::vector<std::u16string> names;
  for (; !rows->atEnd(); rows->moveNext())
    names.push_back(automation::toText(rows->get(u"AppName")) + u"|" +
                    automation::toText(rows->get(u"Version")));
  EXPECT_THAT(names, ElementsAre(u"OTHER.WRX|9", u"VORDANE.WRX|"));
}

TEST_F(DoctorRemedies, AMissingLanguageFileIsMadeAndNothingElse) {
  const auto faultsBefore = fs::last_write_time(layout.faults());
  const auto helpBefore = fs::last_write_time(layout.helpText());
  fs::remove(layout.texts());
  fs::remove(layout.sharedTexts());
  EXPECT_THAT(look(), ElementsAre(HasSubstr("VORDANE.LNG is missing"), HasSubstr("Common.LNG is missing")));
  EXPECT_THAT(remedies, ElementsAre(Remedy::ownTexts, Remedy::sharedTexts));
  EXPECT_THROW(apply(Remedy::ownTexts, {layout, *engine, system, around, nullptr}), ToolError);
  EXPECT_FALSE(fs::exists(layout.texts()));
  mend(Remedy::ownTexts);
  EXPECT_THAT(look(), ElementsAre(HasSubstr("Common.LNG is missing")));
  mend(Remedy::sharedTexts);
  EXPECT_THAT(look(), IsEmpty());
  EXPECT_EQ(fs::last_write_time(layout.faults()), faultsBefore);
  EXPECT_EQ(fs::last_write_time(layout.helpText()), helpBefore);
}

TEST_F(DoctorRemedies, OnlyLocksThatNoProgramHoldsGo) {
  const fs::path stale = layout.ownDatabases() / "FAULT.ldb",
                 held = layout.sharedDatabases() / "Register.ldb",
                 opened = layout.sharedDatabases() / "Schedule.ldb";
  for (const fs::path& lock : {stale, held, opened}) std::ofstream(lock) << "x";
  EXPECT_THAT(look(), IsEmpty()) << "where nobody can tell";
  const std::set<fs::path> used{held, layout.schedule()};
  around.inUse = [&](const fs::path& file) { return used.contains(file); };
  EXPECT_THAT(look(), ElementsAre(HasSubstr("FAULT.ldb is left from a program that was ended")));
  EXPECT_THAT(remedies, ElementsAre(Remedy::accessLocks));
  mend(Remedy::accessLocks);
  EXPECT_FALSE(fs::exists(stale));
  EXPECT_TRUE(fs::exists(held));
  EXPECT_TRUE(fs::exists(opened));
}

TEST_F(DoctorRemedies, TheProgramRegistersItselfOrTheFailureIsTold) {
  mend(Remedy::program);
  EXPECT_THAT(system.registered, ElementsAre("VORDANE.EXE for everybody"));
  system.registers = false;
  EXPECT_THROW(mend(Remedy::program), ToolError);
}

TEST_F(DoctorRemedies, AProgramIsRegisteredOnlyWhenItIsThereAndNobodyElsesIs) {
  std::optional<RegisteredClass> own;
  const Workstation workstation{
      [](std::u16string_view, std::u16string_view) { return std::u16string(u"NONE"); },
      [&](std::u16string_view progId) { return progId == u"Vordane10013.cOLELayer" ? own : std::nullopt; },
      [](std::u16string_view) { return std::vector<guard::Finding>{}; }};
  const auto wanted = [&] { return remediesFor(examineWorkstation(layout, workstation)); };
  EXPECT_THAT(wanted(), IsEmpty());
  std::ofstream(layout.program()) << "program";
  EXPECT_THAT(wanted(), ElementsAre(Remedy::program));
  own = RegisteredClass{u"C:\\gone\\VORDANE.EXE", true};
  EXPECT_THAT(wanted(), ElementsAre(Remedy::program));
  std::ofstream(layout.root / "OTHER.EXE") << "program";
  own = RegisteredClass{u"\"" + (layout.root / "OTHER.EXE").u16string() + u"\"", true};
  EXPECT_THAT(wanted(), IsEmpty());
}

TEST(DoctorJson, HoldsWhatIsFoundAndWhatWasMended) {
  EXPECT_EQ(jsonOf("C:\\Q\xFF", {}, {}),
            "{\"format\":\"vordane "
            "doctor\",\"version\":1,\"suite\":\"C:\\\\Q\xEF\xBF\xBD\",\"mended\":[],\"findings\":[]}\n");
  EXPECT_EQ(
      jsonOf("Q",
             {{Weight::fatal, "a"}, {Weight::unsafe, "b"}, {Weight::incomplete, "c", Remedy::faultIndex}},
             {"make Common.LNG of its sources"}),
      R"({"format":"vordane doctor","version":1,"suite":"Q","mended":["make Common.LNG of its sources"],"findings":[)"
      R"({"weight":"fatal","text":"a","remedy":null},{"weight":"unsafe","text":"b","remedy":null},)"
      R"({"weight":"incomplete","text":"c","remedy":"make the index of the faults anew"}]})"
      "\n");
}

}  // namespace
}  // namespace vordane::tools
