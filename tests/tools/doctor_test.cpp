#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "doctor_checks.h"
#include "language_folder.h"

namespace vordane::tools {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;

auto finding(bool fatal, const char* text) {
  return AllOf(Field(&Finding::fatal, fatal), Field(&Finding::text, HasSubstr(text)));
}

class Doctor : public testing::Test {
 protected:
  Doctor() : layout{texts.files.folder() / "30000"} {
    Problems problems;
    source = readLanguage(texts.folder(), problems);
    makeSuiteFiles(layout, source);
  }
  void spoil(const std::filesystem::path& file) {
    std::ofstream(file, std::ios::binary) << "no database at all";
  }
  // The database at `file` with all but one of its documented tables.
  static void makeWithout(const std::filesystem::path& file, std::span<const sqlite::TableDefinition> tables,
                          std::u16string_view missing) {
    sqlite::DatabaseWriter writer(toText(file), true);
    for (const auto& table : tables)
      if (table.name != missing) writer.createTable(table);
    writer.finish();
  }

  fakes::LanguageFolder texts;
  SuiteLayout layout;
  LanguageSource source;
};

TEST_F(Doctor, FindsNothingInAWholeSuite) {
  EXPECT_THAT(examineFiles(layout), IsEmpty());
}

TEST_F(Doctor, NamesMissingAndDamagedFiles) {
  std::filesystem::remove(layout.sharedDatabases() / "Schedule.mdb");
  std::filesystem::remove(layout.pictures() / "VORDPANE.BMP");
  spoil(layout.sharedDatabases() / "Common.LNG");
  EXPECT_THAT(
      examineFiles(layout),
      ElementsAre(finding(true, "Common.LNG is no file of the embedded engine"),
                  finding(false, "Schedule.mdb is missing: scheduled jobs run with the default options"),
                  finding(false, "VORDPANE.BMP is missing")));
}

TEST_F(Doctor, NamesAMissingTable) {
  makeWithout(layout.ownDatabases() / "FAULT.MDB", sqlite::schema::faultDatabase(), u"FaultDisplay");
  EXPECT_THAT(examineFiles(layout), ElementsAre(finding(true, "FAULT.MDB: table FaultDisplay is missing")));
}

TEST_F(Doctor, NamesAMissingColumn) {
  const auto& options = sqlite::schema::schedule()[0];
  sqlite::DatabaseWriter writer(toText(layout.sharedDatabases() / "Schedule.mdb"), true);
  writer.createTable({options.name, options.columns.first(7)});  // without File and Kind
  writer.finish();
  EXPECT_THAT(examineFiles(layout), ElementsAre(finding(false, "table Options lacks the column File")));
}

TEST_F(Doctor, NamesIncompleteTexts) {
  source.messages.erase(source.messages.begin() + 40);
  makeSuiteFiles(layout, source);
  EXPECT_THAT(examineFiles(layout),
              ElementsAre(finding(false, "VORDANE.LNG/messages: message 40 is missing")));
}

TEST_F(Doctor, NamesAMissingRegistration) {
  makeWithout(layout.sharedDatabases() / "Register.mdb", sqlite::schema::registration(), {});
  EXPECT_THAT(examineFiles(layout), ElementsAre(finding(false, "there is no row for VORDANE.WRX")));
}

class WorkstationDoctor : public Doctor {
 protected:
  WorkstationDoctor() {
    settings = {{u"InstallPath", layout.root.u16string()}, {u"QUILMAR32", u"30000"}, {u"ZUL", u"30001"}};
    servers = {{u"Vordane10013.cOLELayer", u"VORDANE.EXE"}, {u"CalderinProj30001.cPBXOle", u"Zulsim.exe"}};
  }
  std::vector<Finding> examine() {
    const auto look = [](const auto& values, std::u16string_view name) -> std::optional<std::u16string> {
      const auto found = values.find(std::u16string(name));
      return found == values.end() ? std::nullopt : std::optional(found->second);
    };
    return examineWorkstation(layout, {[&](auto section, auto key) {
                                         EXPECT_EQ(section, u"30000");
                                         return look(settings, key);
                                       },
                                       [&](auto progId) { return look(servers, progId); }});
  }
  std::map<std::u16string, std::u16string> settings, servers;
};

TEST_F(WorkstationDoctor, FindsNothingWhereAllIsSet) {
  EXPECT_THAT(examine(), IsEmpty());
}

TEST_F(WorkstationDoctor, NamesMissingSettingsAndRegistrations) {
  settings.clear();
  servers.clear();
  EXPECT_THAT(examine(),
              ElementsAre(finding(false, "InstallPath"), finding(false, "QUILMAR32 is missing"),
                          finding(false, "ZUL is missing"), finding(true, "cOLELayer is not registered")));
}

TEST_F(WorkstationDoctor, NamesADirectoryElsewhereAndAServerThatIsNotThere) {
  settings[u"InstallPath"] = texts.files.folder().u16string();
  servers.erase(u"CalderinProj30001.cPBXOle");
  EXPECT_THAT(examine(), ElementsAre(finding(true, "not to this suite"),
                                     finding(false, "CalderinProj30001.cPBXOle is not registered")));
}

}  // namespace
}  // namespace vordane::tools
