#include "setup.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>

#include "fakes/folder_engine.h"
#include "installed_language.h"
#include "language_build.h"
#include "places.h"
#include "platform/sqlite/engine.h"
#include "settings/suite_databases.h"
#include "setup_language.h"
#include "setup_stage.h"
#include "startup/databases.h"
#include "tools/sqlite/database_writer.h"
#include "whole_file.h"

namespace vordane::tools {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// A workstation without a registry of its own.
struct FakeSystem : SetupSystem {
  Words words() override { return Words::x64; }
  std::unique_ptr<database::Engine> engine() override { return sqlite::makeEngine(startup::databases); }
  bool inUse(const fs::path& file) override { return used.contains(file.filename().string()); }
  std::optional<Version> versionOf(const fs::path& program) override {
    return fs::exists(program) ? version : std::nullopt;
  }
  bool registerProgram(const fs::path& program, bool everybody) override {
    if (refused == program.filename()) return false;
    registered[program.filename().string()] = everybody;
    return true;
  }
  bool unregisterProgram(const fs::path& program) override {
    registered.erase(program.filename().string());
    return true;
  }
  std::optional<std::u16string> setting(std::u16string_view section, std::u16string_view key) override {
    const auto found = settings.find({std::u16string(section), std::u16string(key)});
    return found == settings.end() ? std::nullopt : std::optional(found->second);
  }
  void set(std::u16string_view section, std::u16string_view key,
           const std::optional<std::u16string>& value) override {
    if (value)
      settings[{std::u16string(section), std::u16string(key)}] = *value;
    else
      settings.erase({std::u16string(section), std::u16string(key)});
  }
  void removeOwnSettings() override { ownSettings = false; }
  std::optional<std::uintmax_t> roomAt(const fs::path& folder) override {
    askedForRoom = folder;
    return room;
  }
  void letUsersWrite(const fs::path& folder) override { open.push_back(folder.filename().string()); }
  bool keepCrashDumps(const fs::path& root) override {
    if (!dumpsRefused) dumpsOf = root;
    return !dumpsRefused;
  }
  void dropCrashDumps(const fs::path& root) override {
    if (dumpsOf == root) dumpsOf.clear();
  }
  std::vector<Finding> examine(const SuiteLayout& layout) override { return examineFiles(layout, *engine()); }
  void pause(std::chrono::milliseconds time) override {
    waited += time;
    if (freeAfter && waited >= *freeAfter) used.clear();
  }

  std::optional<std::uintmax_t> room;
  fs::path askedForRoom;
  std::optional<Version> version;
  std::set<std::string> used;
  std::optional<std::chrono::milliseconds> freeAfter;
  std::chrono::milliseconds waited{0};
  std::string refused;
  std::map<std::string, bool> registered;
  std::map<std::pair<std::u16string, std::u16string>, std::u16string> settings;
  std::vector<std::string> open;
  bool ownSettings = true;
  fs::path dumpsOf;  // of which set crashes leave an image
  bool dumpsRefused = false;
};

std::string contentOf(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}
void write(const fs::path& path, const std::string& content) {
  fs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << content;
}
using Tree = std::map<std::string, std::string>;
Tree treeOf(const fs::path& root) {
  Tree tree;
  if (!fs::exists(root)) return tree;
  for (const auto& entry : fs::recursive_directory_iterator(root))
    tree[entry.path().lexically_relative(root).generic_string()] =
        entry.is_regular_file() ? contentOf(entry.path()) : "folder";
  return tree;
}

class Setup : public testing::Test {
 protected:
  Setup() { pack("1"); }

  // The programs of a release, which are texts here.
  void pack(const std::string& release) {
    fs::remove_all(package);
    for (const char* words : {"x64", "x86"})
      for (const char* place :
           {"ADDINS/VORDANE.EXE", "ADDINS/devhost.exe", "ADDINS/vordane-tools.exe", "SIM/Zulsim.exe"})
        write(package / words / place, std::string(words) + place + release);
    write(package / "common/SIM/scenarios/demo.zul", "demo");
    write(package / "common/ADDINS/SETUP/remove.exe", "remove" + release);
    fs::create_directory_symlink(test::sourceFolder() / "data", package / "data");
  }
  Outcome run(InstallRequest request) {
    told.clear();
    try {
      install(request, system, [&](const std::string& line) { told.push_back(line); });
      return Outcome::done;
    } catch (const SetupFailure& failure) {
      told.emplace_back(failure.what());
      return failure.outcome();
    }
  }
  InstallRequest request(const std::string& language = {}) const {
    InstallRequest asked;
    asked.root = root;
    asked.package = package;
    asked.version = {1, 2, 3};
    asked.language = language;
    return asked;
  }
  Outcome take(bool everything = false) {
    told.clear();
    try {
      uninstall({root, everything, std::chrono::seconds(0)}, system,
                [&](const std::string& line) { told.push_back(line); });
      return Outcome::done;
    } catch (const SetupFailure& failure) {
      return failure.outcome();
    }
  }
  LanguageSource shipped(const std::string& name) {
    Problems problems;
    return readLanguageSource(test::sourceFolder() / "data/language" / name, problems);
  }
  LanguageSource installed() {
    const auto own =
        sqlite::makeEngine(startup::databases)->open(toText(layout.ownDatabases() / "VORDANE.LNG"), true);
    return installedLanguage(*own, nullptr, "VORDANE.LNG");
  }
  static std::u16string& field(SourceRows& rows, std::u16string_view key, std::size_t column) {
    for (SourceRow& row : rows)
      if (row.fields[0] == key) return row.fields[column];
    throw std::out_of_range("no such row");
  }
  std::size_t rowsOfAddin() {
    const auto registry =
        sqlite::makeEngine(startup::databases)->open(toText(layout.sharedDatabases() / "Register.mdb"), true);
    const auto rows = registry->openRecordset(u"SELECT * FROM Registry WHERE AppName = \"VORDANE.WRX\"");
    std::size_t count = 0;
    for (; !rows->atEnd(); rows->moveNext()) ++count;
    return count;
  }

  fakes::FolderEngine files;
  fs::path package = files.folder() / "package";
  fs::path root = files.folder() / "Pläne и 計画" / "QUILMAR32" / "30000";
  SuiteLayout layout{root};
  FakeSystem system;
  std::vector<std::string> told;
};

TEST_F(Setup, ASetOfItsOwnIsWholeRegisteredAndFound) {
  InstallRequest asked = request("ru");
  asked.demonstration = true;
  ASSERT_EQ(run(asked), Outcome::done) << told.back();
  EXPECT_EQ(told.back(), "nothing is missing");
  EXPECT_EQ(contentOf(root / "ADDINS/VORDANE.EXE"), "x64ADDINS/VORDANE.EXE1");
  EXPECT_EQ(contentOf(root / "SIM/scenarios/demo.zul"), "demo");
  EXPECT_EQ(system.registered, (std::map<std::string, bool>{{"VORDANE.EXE", true}, {"Zulsim.exe", true}}));
  EXPECT_EQ((system.settings[{u"30000", u"InstallPath"}]), toText(root) + u"/");
  EXPECT_EQ((system.settings[{u"30000", u"QUILMAR32"}]), u"30000");
  EXPECT_EQ((system.settings[{u"30000", u"ZUL"}]), u"30001");
  EXPECT_THAT(system.open, ElementsAre("DATABASE", "DATABASE"));
  EXPECT_EQ(languageOf(installed(), std::vector{shipped("en"), shipped("ru"), shipped("ja")}), "ru");
  EXPECT_FALSE(fs::exists(root / "ADDINS/~SETUP"));
}

TEST_F(Setup, TheGuideComesInTheLanguageOfTheSet) {
  fs::remove(package / "data");
  fs::create_directories(package / "data");
  for (const char* part : {"language", "report"})
    fs::create_directory_symlink(test::sourceFolder() / "data" / part, package / "data" / part);
  for (const char* language : {"en", "ja"})
    write(package / "data/guide" / language / "guide.html", std::string("guide ") + language);
  ASSERT_EQ(run(request("ja")), Outcome::done) << told.back();
  EXPECT_EQ(contentOf(layout.guide() / "guide.html"), "guide ja");
  ASSERT_EQ(run(request("en")), Outcome::done) << told.back();
  EXPECT_EQ(contentOf(layout.guide() / "guide.html"), "guide ja");
  ASSERT_EQ(take(), Outcome::done);
  EXPECT_FALSE(fs::exists(layout.guide()));
}

TEST_F(Setup, WithoutTheDemonstrationThereIsNoSimulator) {
  InstallRequest asked = request();
  asked.everybody = false;
  ASSERT_EQ(run(asked), Outcome::done) << told.back();
  EXPECT_FALSE(fs::exists(root / "SIM"));
  EXPECT_EQ(system.registered, (std::map<std::string, bool>{{"VORDANE.EXE", false}}));
  EXPECT_THAT(system.open, IsEmpty());
}

TEST_F(Setup, ImagesOfCrashesAreKeptOnceTheyWereAskedForUntilTheRemoval) {
  ASSERT_EQ(run(request()), Outcome::done) << told.back();
  EXPECT_EQ(system.dumpsOf, fs::path()) << "off at first";
  InstallRequest asked = request();
  asked.crashDumps = true;
  ASSERT_EQ(run(asked), Outcome::done) << told.back();
  EXPECT_EQ(system.dumpsOf, root);
  system.dumpsOf.clear();
  ASSERT_EQ(run(request()), Outcome::done) << told.back();
  EXPECT_EQ(system.dumpsOf, root) << "an upgrade keeps them";
  ASSERT_EQ(take(), Outcome::done);
  EXPECT_EQ(system.dumpsOf, fs::path());
  ASSERT_EQ(run(request()), Outcome::done) << told.back();
  EXPECT_EQ(system.dumpsOf, fs::path()) << "a removal has ended it";
}

TEST_F(Setup, ImagesOfCrashesThatAnotherSetHasAskedForStay) {
  ASSERT_EQ(run(request()), Outcome::done) << told.back();
  system.dumpsOf = "another";
  ASSERT_EQ(take(), Outcome::done);
  EXPECT_EQ(system.dumpsOf, "another");
}

TEST_F(Setup, AnInstallationIsDoneAlsoWithoutItsImagesOfCrashes) {
  InstallRequest asked = request();
  asked.crashDumps = true;
  system.dumpsRefused = true;
  ASSERT_EQ(run(asked), Outcome::done) << told.back();
  EXPECT_THAT(told, Contains("the system would not be told to keep images of crashes"));
  system.dumpsRefused = false;
  asked.everybody = false;
  ASSERT_EQ(run(asked), Outcome::done) << told.back();
  EXPECT_THAT(
      told, Contains("images of crashes are kept only for a fault display that is installed for every user"));
  EXPECT_EQ(system.dumpsOf, fs::path());
}

TEST_F(Setup, NothingOfASuiteIsOverwrittenAndItsListGetsOurRowOnce) {
  write(layout.sharedDatabases() / "Common.LNG", "the suite's own");
  write(layout.pictures() / "MIST.BMP", "the suite's own");
  {
    DatabaseWriter registry(toText(layout.sharedDatabases() / "Register.mdb"));
    registry.createTables(settings::registrationTables);
    registry.finish();
  }
  for (int time = 0; time < 2; ++time) {
    ASSERT_EQ(run(request()), Outcome::done) << told.back();
    EXPECT_EQ(contentOf(layout.sharedDatabases() / "Common.LNG"), "the suite's own");
    EXPECT_EQ(contentOf(layout.pictures() / "MIST.BMP"), "the suite's own");
    EXPECT_EQ(rowsOfAddin(), 1U);
  }
  EXPECT_THAT(system.settings, IsEmpty());
  ASSERT_EQ(take(true), Outcome::done);
  EXPECT_EQ(contentOf(layout.sharedDatabases() / "Common.LNG"), "the suite's own");
  EXPECT_TRUE(fs::exists(layout.sharedDatabases() / "Register.mdb"));
  EXPECT_FALSE(fs::exists(layout.ownDatabases()));
}

// What a stored description is made of stays; what belongs to this program is renewed.
TEST_F(Setup, AnUpgradeKeepsTheWordsThatFaultsAreStoredIn) {
  ASSERT_EQ(run(request("ja")), Outcome::done) << told.back();
  LanguageSource changed = shipped("ja");
  field(changed.messages, u"8", 1) = u"kept 8";
  field(changed.messages, u"164", 1) = u"kept 164";
  field(changed.messages, u"165", 1) = u"renewed 165";
  field(changed.boxes, u"105", 1) = u"kept 105";
  field(changed.boxes, u"900", 1) = u"renewed 900";
  field(changed.lists, u"cboFK01", 2) = u"kept item";
  field(changed.controls, u"cmdRequest", 1) = u"renewed button";
  field(changed.help, u"lblMJ", 1) = u"renewed help";
  std::erase_if(changed.lists,
                [](const SourceRow& row) { return row.fields[0] == u"cboFK58" && row.fields[1] == u"1"; });
  buildOwnLanguage(changed, layout.ownDatabases() / "VORDANE.LNG");
  const std::string faults = contentOf(layout.ownDatabases() / "FAULT.MDB");
  pack("2");

  ASSERT_EQ(run(request("en")), Outcome::done) << told.back();
  EXPECT_THAT(told, Contains("the installed language stays: ja"));
  EXPECT_EQ(contentOf(layout.ownDatabases() / "FAULT.MDB"), faults);
  EXPECT_EQ(contentOf(root / "ADDINS/VORDANE.EXE"), "x64ADDINS/VORDANE.EXE2");
  LanguageSource now = installed(), fresh = shipped("ja");
  EXPECT_EQ(field(now.messages, u"8", 1), u"kept 8");
  EXPECT_EQ(field(now.messages, u"164", 1), u"kept 164");
  EXPECT_EQ(field(now.messages, u"165", 1), field(fresh.messages, u"165", 1));
  EXPECT_EQ(field(now.boxes, u"105", 1), u"kept 105");
  EXPECT_EQ(field(now.boxes, u"900", 1), field(fresh.boxes, u"900", 1));
  EXPECT_EQ(field(now.lists, u"cboFK01", 2), u"kept item");
  EXPECT_EQ(field(now.controls, u"cmdRequest", 1), field(fresh.controls, u"cmdRequest", 1));
  EXPECT_EQ(field(now.help, u"lblMJ", 1), field(fresh.help, u"lblMJ", 1));
  EXPECT_EQ(now.lists.size(), fresh.lists.size() - 1);  // what somebody took out of a list stays out
  EXPECT_EQ(now.messages.size(), fresh.messages.size());
}

TEST_F(Setup, AFileThatThisReleaseLacksGoesWithTheLastOne) {
  write(package / "common/ADDINS/HELP/old.html", "old");
  ASSERT_EQ(run(request()), Outcome::done) << told.back();
  ASSERT_TRUE(fs::exists(root / "ADDINS/HELP/old.html"));
  pack("2");
  ASSERT_EQ(run(request()), Outcome::done) << told.back();
  EXPECT_FALSE(fs::exists(root / "ADDINS/HELP/old.html"));
}

TEST_F(Setup, ANewerVersionStays) {
  ASSERT_EQ(run(request()), Outcome::done) << told.back();
  const Tree before = treeOf(root);
  InstallRequest older = request();
  older.version = {1, 2, 2};
  EXPECT_EQ(run(older), Outcome::newer);
  EXPECT_EQ(treeOf(root), before);
  // Without its record, which somebody deleted, the program itself tells.
  fs::remove(root / recordPlace);
  system.version = Version{1, 2, 3};
  EXPECT_EQ(run(older), Outcome::newer);
  // Removed, it is not in the way any more, and its faults are found.
  ASSERT_EQ(run(request()), Outcome::done) << told.back();
  ASSERT_EQ(take(), Outcome::done);
  EXPECT_EQ(run(older), Outcome::done) << told.back();
}

TEST_F(Setup, WhatIsInUseIsWaitedForAndNeverEnded) {
  ASSERT_EQ(run(request()), Outcome::done) << told.back();
  const Tree before = treeOf(root);
  pack("2");
  system.used = {"VORDANE.EXE"};
  EXPECT_EQ(run(request()), Outcome::inUse);
  EXPECT_EQ(system.waited, std::chrono::seconds(60));
  EXPECT_THAT(told.back(), HasSubstr("VORDANE.EXE is in use"));
  EXPECT_EQ(treeOf(root), before);
  EXPECT_EQ(take(), Outcome::inUse);
  EXPECT_EQ(treeOf(root), before);

  system.waited = std::chrono::milliseconds(0);
  system.freeAfter = std::chrono::seconds(59);
  EXPECT_EQ(run(request()), Outcome::done) << told.back();
  EXPECT_EQ(contentOf(root / "ADDINS/VORDANE.EXE"), "x64ADDINS/VORDANE.EXE2");
}

TEST_F(Setup, ARefusedRegistrationLeavesEverythingAsItWas) {
  const Tree none = treeOf(files.folder());
  system.refused = "VORDANE.EXE";
  InstallRequest asked = request();
  asked.demonstration = true;
  EXPECT_EQ(run(asked), Outcome::notRegistered);
  EXPECT_EQ(treeOf(files.folder()), none);
  EXPECT_THAT(system.registered, IsEmpty());
  EXPECT_THAT(system.settings, IsEmpty());

  system.refused.clear();
  ASSERT_EQ(run(request()), Outcome::done) << told.back();
  const Tree before = treeOf(root);
  const auto settings = system.settings;
  pack("2");
  system.refused = "Zulsim.exe";
  EXPECT_EQ(run(asked), Outcome::notRegistered);
  EXPECT_EQ(treeOf(root), before);
  EXPECT_EQ(system.registered, (std::map<std::string, bool>{{"VORDANE.EXE", true}}));
  EXPECT_EQ(system.settings, settings);
}

TEST_F(Setup, APlaceWhereNoSetCanStandIsRefusedUntouched) {
  for (const char* place : {"Tools", "QUILMAR32", "QUILMAR32/3000", "QUILMAR/30000"}) {
    InstallRequest asked = request();
    asked.root = files.folder() / place;
    EXPECT_EQ(run(asked), Outcome::badPlace) << place;
    EXPECT_FALSE(fs::exists(asked.root)) << place;
  }
  // A second set of the same version would be found by nobody, or by everybody.
  ASSERT_EQ(run(request()), Outcome::done) << told.back();
  InstallRequest second = request();
  second.root = files.folder() / "QUILMAR32" / "30000";
  EXPECT_EQ(run(second), Outcome::badPlace);
  EXPECT_THAT(told.back(), HasSubstr("stands in"));
  EXPECT_FALSE(fs::exists(second.root));
}

// Told before the first change, by the disk that the folder will be on; 8 MB are for the databases.
TEST_F(Setup, ADiskWithoutRoomIsToldBeforeAnythingIsChanged) {
  const Tree none = treeOf(files.folder());
  system.room = (8U << 20U) - 1;
  EXPECT_EQ(run(request()), Outcome::diskFull);
  EXPECT_THAT(told.back(), HasSubstr("8 MB are needed, 7 MB are free"));
  EXPECT_EQ(system.askedForRoom, files.folder());
  EXPECT_EQ(treeOf(files.folder()), none);
  EXPECT_THAT(system.registered, IsEmpty());
  system.room = 9U << 20U;
  ASSERT_EQ(run(request()), Outcome::done) << told.back();
  EXPECT_EQ(system.askedForRoom, files.folder());
  ASSERT_EQ(run(request()), Outcome::done) << told.back();
  EXPECT_EQ(system.askedForRoom, root);
}

// The package for 32-bit systems on one of both word sizes.
TEST_F(Setup, TheWordSizeIsOneThatThePackageHolds) {
  fs::remove_all(package / "x64");
  ASSERT_EQ(run(request()), Outcome::done) << told.back();
  EXPECT_EQ(contentOf(root / "ADDINS/VORDANE.EXE"), "x86ADDINS/VORDANE.EXE1");
  EXPECT_THAT(contentOf(root / "ADDINS/SETUP/installed.tsv"), HasSubstr("words\tx86\n"));
  InstallRequest asked = request();
  asked.words = Words::x64;
  EXPECT_EQ(run(asked), Outcome::failed);
  EXPECT_THAT(told.back(), HasSubstr("no programs of x64"));
  EXPECT_EQ(contentOf(root / "ADDINS/VORDANE.EXE"), "x86ADDINS/VORDANE.EXE1");

  // An Access file needs the one and no other.
  pack("2");
  fs::remove_all(package / "x86");
  write(layout.sharedDatabases() / "Schedule.mdb", std::string("\0\1\0\0Standard Jet DB\0", 20));
  EXPECT_EQ(run(request()), Outcome::failed);
  EXPECT_THAT(told.back(), HasSubstr("no programs of x86"));
}

TEST_F(Setup, TheOtherLanguagesStandBesideThatOfTheSetAndGoWithIt) {
  const auto isThere = [&](const char* name) { return fs::exists(layout.ownDatabases() / name); };
  ASSERT_EQ(run(request("ru")), Outcome::done) << told.back();
  EXPECT_TRUE(isThere("VORDANE.en.LNG"));
  EXPECT_TRUE(isThere("VORDANE.ja.LNG"));
  EXPECT_FALSE(isThere("VORDANE.ru.LNG"));
  fs::remove(layout.ownDatabases() / "VORDANE.ja.LNG");
  ASSERT_EQ(run(request()), Outcome::done) << told.back();
  EXPECT_TRUE(isThere("VORDANE.ja.LNG"));
  ASSERT_EQ(take(), Outcome::done);
  EXPECT_TRUE(isThere("VORDANE.LNG"));
  EXPECT_FALSE(isThere("VORDANE.en.LNG"));
}

TEST_F(Setup, DamagedTextsAreMadeAnewAndKept) {
  ASSERT_EQ(run(request("ru")), Outcome::done) << told.back();
  write(layout.ownDatabases() / "VORDANE.LNG", "no database at all");
  fs::remove(root / "ADDINS/vordane-tools.exe");
  ASSERT_EQ(run(request()), Outcome::done) << told.back();
  EXPECT_EQ(told.back(), "nothing is missing");
  EXPECT_EQ(contentOf(layout.ownDatabases() / "VORDANE.LNG.damaged"), "no database at all");
  EXPECT_EQ(languageOf(installed(), std::vector{shipped("en"), shipped("ru"), shipped("ja")}), "ru");
  EXPECT_TRUE(fs::exists(root / "ADDINS/vordane-tools.exe"));
}

TEST_F(Setup, ARemovalKeepsWhatWorkHasMade) {
  InstallRequest asked = request("ru");
  asked.demonstration = true;
  ASSERT_EQ(run(asked), Outcome::done) << told.back();
  write(layout.sharedDatabases() / "FAULT1.tlg", "a log");
  ASSERT_EQ(take(), Outcome::done);
  std::vector<std::string> left;
  for (const auto& [place, content] : treeOf(root))
    if (content != "folder") left.push_back(place);
  EXPECT_THAT(left, ElementsAre("ADDINS/DATABASE/FAULT.MDB", "ADDINS/DATABASE/VORDANE.LNG",
                                "ADDINS/SETUP/installed.tsv", "QUIL32/DATABASE/FAULT1.tlg",
                                "QUIL32/DATABASE/Register.mdb", "QUIL32/DATABASE/Schedule.mdb"));
  EXPECT_THAT(system.registered, IsEmpty());
  EXPECT_EQ(system.settings.size(), 3U);
  EXPECT_EQ(take(), Outcome::nothingThere);

  // The next installation goes on from it: a set of its own, in the language of its faults.
  ASSERT_EQ(run(request("en")), Outcome::done) << told.back();
  EXPECT_TRUE(fs::exists(layout.sharedDatabases() / "Common.LNG"));
  EXPECT_EQ(languageOf(installed(), std::vector{shipped("en"), shipped("ru"), shipped("ja")}), "ru");

  ASSERT_EQ(take(true), Outcome::done);
  EXPECT_FALSE(fs::exists(root.parent_path()));
  EXPECT_THAT(system.settings, IsEmpty());
  EXPECT_FALSE(system.ownSettings);
}

// It runs in its place when somebody waits for its exit code. The next removal takes it away.
TEST_F(Setup, ARemoverThatRunsStaysAlone) {
  for (const bool everything : {false, true}) {
    ASSERT_EQ(run(request()), Outcome::done) << told.back();
    system.used = {"remove.exe"};
    ASSERT_EQ(take(everything), Outcome::done);
    EXPECT_THAT(told, Contains(HasSubstr("remove.exe stays, since it is running")));
    EXPECT_EQ(contentOf(root / "ADDINS/SETUP/remove.exe"), "remove1");
    EXPECT_FALSE(fs::exists(root / "ADDINS/VORDANE.EXE"));
    EXPECT_FALSE(fs::exists(root / "ADDINS/~SETUP"));
    EXPECT_EQ(fs::exists(layout.faults()), !everything);
    system.used.clear();
    if (everything) continue;
    ASSERT_EQ(take(true), Outcome::done);
    EXPECT_FALSE(fs::exists(root));
  }
}

TEST_F(Setup, SomebodysFilesStay) {
  ASSERT_EQ(run(request()), Outcome::done) << told.back();
  write(root / "ADDINS/notes.txt", "somebody's");
  ASSERT_EQ(take(true), Outcome::done);
  EXPECT_EQ(treeOf(root), (Tree{{"ADDINS", "folder"}, {"ADDINS/notes.txt", "somebody's"}}));
}

// Broken off after any of its moves, as by the end of the process: the next one finds everything as it was.
TEST_F(Setup, BrokenOffAnywhereItIsPutBack) {
  write(root / "ADDINS/a.exe", "old a");
  write(root / "ADDINS/gone.txt", "old gone");
  const Tree before = treeOf(root);
  bool whole = false;
  for (int moves = 0; !whole; ++moves) {
    int left = moves;
    const Stage::Move dying = [&](const fs::path& from, const fs::path& to) {
      if (left-- <= 0) return std::make_error_code(std::errc::interrupted);
      return platform::moveFile(from, to);
    };
    try {
      Stage stage(root, dying);
      write(stage.fresh("ADDINS/a.exe"), "new a");
      write(stage.fresh("SIM/new/b.exe"), "new b");
      stage.drop("ADDINS/gone.txt");
      stage.drop("ADDINS/never.txt");
      stage.prepare();
      stage.swap();
      whole = true;
      EXPECT_EQ(contentOf(root / "ADDINS/a.exe"), "new a");
      EXPECT_FALSE(fs::exists(root / "ADDINS/gone.txt"));
    } catch (const SetupFailure&) {
      // What the end of the process leaves: something that has moved.
      if (moves >= 2) {
        EXPECT_NE(treeOf(root), before) << moves;
      }
    }
    putBack(root);
    EXPECT_EQ(treeOf(root), before) << "after " << moves << " moves";
    ASSERT_LT(moves, 20);
  }
}

TEST_F(Setup, TheNextInstallationPutsABrokenOffOneBackFirst) {
  ASSERT_EQ(run(request()), Outcome::done) << told.back();
  int left = 3;
  const Stage::Move dying = [&](const fs::path& from, const fs::path& to) {
    return left-- <= 0 ? std::make_error_code(std::errc::interrupted) : platform::moveFile(from, to);
  };
  try {
    Stage stage(root, dying);
    for (const char* place : {"ADDINS/VORDANE.EXE", "ADDINS/devhost.exe"})
      write(stage.fresh(place), "broken off");
    stage.swap();
    FAIL();
  } catch (const SetupFailure&) {
  }
  ASSERT_EQ(contentOf(root / "ADDINS/VORDANE.EXE"), "broken off");
  EXPECT_EQ(take(), Outcome::done);
  EXPECT_THAT(told, Contains("an installation that was broken off has been put back"));
}

TEST(SetupRules, AccessFilesNeedThe32BitAddIn) {
  fakes::FolderEngine files;
  const SuiteLayout layout{files.folder() / "30000"};
  EXPECT_EQ(wordsFor(layout, Words::x64), Words::x64);
  EXPECT_EQ(wordsFor(layout, Words::x86), Words::x86);
  const std::string access("\0\1\0\0Standard Jet DB\0", 20);
  for (const char* place : {"ADDINS/DATABASE/FAULT.MDB", "QUIL32/DATABASE/Register.mdb"}) {
    write(layout.root / place, access + std::string(4096, '\0'));
    EXPECT_EQ(wordsFor(layout, Words::x64), Words::x86) << place;
    fs::remove(layout.root / place);
  }
}

TEST(SetupRules, VersionsAreComparedByTheirNumbers) {
  EXPECT_EQ(versionOf("1.0.12"), (Version{1, 0, 12}));
  EXPECT_LT(*versionOf("1.0.9"), *versionOf("1.0.12"));
  EXPECT_LT(*versionOf("1.9.12"), *versionOf("1.10.0"));
  for (const char* none : {"", "1.0", "1.0.12.0", "1.0.x", "1..2", "-1.0.0", "1.0.12 "})
    EXPECT_EQ(versionOf(none), std::nullopt) << none;
}

TEST(SetupRecords, AreReadAsTheyWereWrittenAndNeverLeadOutOfTheSuite) {
  SetupRecord record;
  record.version = {1, 0, 12};
  record.language = "ja";
  record.words = Words::x86;
  record.situation = Situation::suite;
  record.demonstration = true;
  record.files = {u"ADDINS/計画 a.txt"};
  record.folders = {"ADDINS/SETUP"};
  const std::string text = recordText(record);
  const auto read = parseRecord(text);
  ASSERT_TRUE(read);
  EXPECT_EQ(recordText(*read), text);
  EXPECT_EQ(read->files, record.files);
  EXPECT_EQ(parseRecord(text.substr(0, text.size() - 2)), std::nullopt);
  for (const char* line : {"file\t../x\n", "made\t/etc/x\n", "version\tx\n", "nonsense\n"})
    EXPECT_FALSE(parseRecord("version\t1.0.0\nlanguage\ten\n" + std::string(line) + "end\n")) << line;
}

// A record that is cut off would lose the language of the stored faults.
TEST(SetupRecords, ThatCantBeWrittenWholeAreAFailure) {
  if (!fs::exists("/dev/full")) GTEST_SKIP() << "no disk that is always full";
  EXPECT_THROW(writeRecord(SetupRecord{}, "/dev/full"), UnwritableFile);
}

// The installer says each of them in every language, and the administrator's page lists them.
TEST(SetupOutcomes, AreSaidInEveryLanguage) {
  const std::string header = contentOf(test::sourceFolder() / "programs/tools/setup_outcome.h");
  const std::string script = contentOf(test::sourceFolder() / "installer/vordane.nsi");
  const std::string page = contentOf(test::sourceFolder() / "docs/installing.md");
  const std::regex entry("= ([0-9]+),");
  int found = 0;
  for (std::sregex_iterator at(header.begin(), header.end(), entry), end; at != end; ++at, ++found) {
    const std::string code = (*at)[1];
    EXPECT_THAT(page, HasSubstr("\n| " + code + " |")) << code;
    if (code == "0") continue;
    if (code != "1") {
      EXPECT_THAT(script, HasSubstr("SENTENCE_CASE " + code)) << code;
    }
    for (const char* language : {"en", "ru", "ja"})
      EXPECT_THAT(contentOf(test::sourceFolder() / "installer/texts" / (std::string(language) + ".nsh")),
                  HasSubstr("TEXT OUTCOME_" + code + " \""))
          << language << code;
  }
  EXPECT_EQ(found, 11);
}

// The names of an installer's texts as they stand, those with an access key marked.
std::vector<std::string> installerTexts(const std::string& language) {
  const std::string all = contentOf(test::sourceFolder() / "installer/texts" / (language + ".nsh"));
  const std::regex entry("insertmacro TEXT ([A-Z_0-9]+) \"([^\"]*)\"");
  std::vector<std::string> texts;
  for (std::sregex_iterator at(all.begin(), all.end(), entry), end; at != end; ++at)
    texts.push_back((*at)[1].str() + ((*at)[2].str().find('&') != std::string::npos ? " &" : ""));
  return texts;
}

TEST(InstallerTexts, HaveTheSameNamesAndAccessKeysInEveryLanguage) {
  const auto english = installerTexts("en");
  EXPECT_THAT(english, ::testing::IsSupersetOf({"WELCOME", "INSTALL_BUTTON &", "REMOVE_BUTTON &"}));
  EXPECT_EQ(installerTexts("ru"), english);
  EXPECT_EQ(installerTexts("ja"), english);
}

}  // namespace
}  // namespace vordane::tools
