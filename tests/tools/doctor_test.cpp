#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <fstream>

#include "doctor_checks.h"
#include "language/language_databases.h"
#include "language_folder.h"
#include "language_texts.h"
#include "platform/sqlite/engine.h"
#include "settings/suite_databases.h"
#include "startup/databases.h"
#include "store/fault_database.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;

auto finding(Weight weight, const char* text) {
  return AllOf(Field(&Finding::weight, weight), Field(&Finding::text, HasSubstr(text)));
}
auto finding(bool fatal, const char* text) {
  return finding(fatal ? Weight::fatal : Weight::incomplete, text);
}

class Doctor : public testing::Test {
 protected:
  Doctor() : layout{texts.files.folder() / "30000"} {
    Problems problems;
    source = readLanguageSource(texts.folder(), problems);
    makeSuiteFiles(layout, source);
  }
  std::vector<Finding> look() { return examineFiles(layout, *sqlite::makeEngine(startup::databases)); }
  static void spoil(const std::filesystem::path& file) {
    std::ofstream(file, std::ios::binary) << "no database at all";
  }
  // Writes over the pages behind the first, as a bad disk does.
  static void spoilInside(const std::filesystem::path& file) {
    constexpr int page = 4096;
    std::fstream bytes(file, std::ios::binary | std::ios::in | std::ios::out);
    bytes.seekp(page);
    bytes << std::string(static_cast<std::size_t>(std::filesystem::file_size(file)) - page, 'x');
  }
  // The database at `file` with all but one of its documented tables.
  static void makeWithout(const std::filesystem::path& file,
                          std::span<const database::TableDefinition> tables, std::u16string_view missing) {
    DatabaseWriter writer(toText(file), true);
    for (const auto& table : tables)
      if (table.name != missing) writer.createTable(table);
    writer.finish();
  }

  fakes::LanguageFolder texts;
  SuiteLayout layout;
  LanguageSource source;
};

TEST_F(Doctor, FindsNothingInAWholeSuite) {
  EXPECT_THAT(look(), IsEmpty());
}

TEST_F(Doctor, NamesMissingAndDamagedFiles) {
  std::filesystem::remove(layout.sharedDatabases() / "Schedule.mdb");
  std::filesystem::remove(layout.pictures() / "VORDPANE.BMP");
  spoil(layout.sharedDatabases() / "Common.LNG");
  EXPECT_THAT(
      look(),
      ElementsAre(finding(true, "Common.LNG is no database: the program ends at its start"),
                  finding(false, "Schedule.mdb is missing: scheduled jobs run with the default options"),
                  finding(false, "VORDPANE.BMP is missing")));
}

TEST_F(Doctor, TellsTheLanguageOfTheFaultsFromThatOfTheTexts) {
  const auto engine = sqlite::makeEngine(startup::databases);
  const auto own = storingLanguageOf(*engine, text::toUtf8(toText(layout.texts())));
  const auto store = [&](const database::Agreement& language) {
    engine->open(toText(layout.faults()), false)->keep(store::languageSubject, language);
  };
  store(own);
  EXPECT_THAT(look(), IsEmpty());
  store({u"русский", u"another"});
  EXPECT_THAT(look(), ElementsAre(finding(false,
                                          "FAULT.MDB: its faults are stored in another language (русский) "
                                          "than that of VORDANE.LNG (")));
}

TEST_F(Doctor, FindsDamageInsideAFile) {
  spoilInside(layout.ownDatabases() / "FAULT.MDB");
  EXPECT_THAT(look(), ElementsAre(finding(true, "FAULT.MDB is damaged: ")));
}

TEST_F(Doctor, SaysThatAnAccessFileNeedsItsEngine) {
  std::ofstream(layout.ownDatabases() / "FAULT.MDB", std::ios::binary)
      << std::string("\0\1\0\0Standard Jet DB\0", 20) << std::string(4096, '\0');
  EXPECT_THAT(look(), ElementsAre(finding(true, "FAULT.MDB can't be opened: no faults can be stored")));
}

// As the sample import has them: faults whose exchange is gone.
TEST_F(Doctor, NamesFaultsOfNoExchange) {
  const auto file = layout.ownDatabases() / "FAULT.MDB";
  const auto fill = [&](std::span<const std::int32_t> owners) {
    DatabaseWriter writer(toText(file), true);
    writer.createTables(store::faultTables);
    const database::Value exchange[] = {std::int32_t{3}, std::u16string(u"PBX-1"),
                                        std::u16string(u"2006-11-27 09:00:00"), false, false};
    writer.insert(u"PBXList", exchange);
    for (const std::int32_t owner : owners) {
      const std::u16string text = u"x";
      const database::Value fault[] = {owner, text, text, text, text, automation::Null{}, text};
      writer.insert(u"FaultDisplay", fault);
    }
    writer.finish();
  };
  fill(std::array{3, 3});
  EXPECT_THAT(look(), IsEmpty());
  fill(std::array{3, 7, 9, 7, 7});
  EXPECT_THAT(look(), ElementsAre(finding(
                          false, "FAULT.MDB: 4 fault(s) of no exchange (ID 7: 3, ID 9: 1): nothing")));
  fill(std::array{1, 2, 4, 5, 6, 7});
  EXPECT_THAT(look(),
              ElementsAre(finding(
                  false, "6 fault(s) of no exchange (ID 1: 1, ID 2: 1, ID 4: 1, ID 5: 1, ID 6: 1, ...)")));
}

// As a suite has them whose language was changed: each fault that is still reported comes a second time.
TEST_F(Doctor, NamesFaultsThatAreStoredInAnotherLanguage) {
  const auto fill = [&](std::initializer_list<const char16_t*> descriptions) {
    DatabaseWriter writer(toText(layout.ownDatabases() / "FAULT.MDB"), true);
    writer.createTables(store::faultTables);
    const database::Value exchange[] = {std::int32_t{3}, std::u16string(u"PBX-1"),
                                        std::u16string(u"2006-11-27 09:00:00"), false, false};
    writer.insert(u"PBXList", exchange);
    for (const char16_t* description : descriptions) {
      const database::Value fault[] = {
          std::int32_t{3},       std::u16string(u"01"), std::u16string(u"MJ"),      std::u16string(u"d"),
          std::u16string(u"MP"), automation::Null{},    std::u16string(description)};
      writer.insert(u"FaultDisplay", fault);
    }
    writer.finish();
  };
  constexpr const char16_t* english = u"Main processor restarted\r\nCause: power switched on\r\nData [00 ]";
  constexpr const char16_t* russian =
      u"Перезапуск центрального процессора\r\nПричина: включено питание\r\nДанные [00 ]";
  fakes::LanguageFolder other("ru");
  Problems problems;
  LanguageSource toRead = readLanguageSource(other.folder(), problems);
  toRead.name = "ru";
  makeSuiteFiles(layout, source, {source, toRead});
  fill({english, u"a text of somebody else"});
  EXPECT_THAT(look(), IsEmpty());
  fill({english, russian, english});
  EXPECT_THAT(look(), ElementsAre(finding(
                          false,
                          "FAULT.MDB: 1 of the newest 3 fault(s) are stored in Русский, and VORDANE.LNG "
                          "is English: a fault of them that an exchange still reports is stored a second "
                          "time")));
  std::filesystem::remove(layout.ownDatabases() / "VORDANE.ru.LNG");
  EXPECT_THAT(look(), IsEmpty()) << "nobody knows the language";
}

TEST_F(Doctor, NamesAMissingTable) {
  makeWithout(layout.ownDatabases() / "FAULT.MDB", store::faultTables, u"FaultDisplay");
  EXPECT_THAT(look(), ElementsAre(finding(true, "FAULT.MDB: table FaultDisplay is missing")));
}

TEST_F(Doctor, KnowsWhichTablesTheStartNeeds) {
  const auto lng = layout.ownDatabases() / "VORDANE.LNG";
  makeWithout(lng, language::ownTables, u"tPicture");
  EXPECT_THAT(look(), Contains(finding(false, "VORDANE.LNG: table tPicture is missing")));
  EXPECT_THAT(look(), Contains(finding(true, "VORDANE.LNG: table tProject has no row for VORDANE")));
  makeWithout(lng, language::ownTables, u"tMessages");
  EXPECT_THAT(look(), Contains(finding(true, "VORDANE.LNG: table tMessages is missing")));
  makeWithout(layout.sharedDatabases() / "Common.LNG", language::commonTables, u"PictureFileName");
  EXPECT_THAT(look(), Contains(finding(false, "Common.LNG: table PictureFileName is missing")));
}

TEST_F(Doctor, KnowsThatNoHostStartsItWithoutTheRegistration) {
  const auto file = layout.sharedDatabases() / "Register.mdb";
  makeWithout(file, settings::scheduleTables, {});  // another database under its name
  EXPECT_THAT(look(), ElementsAre(finding(true, "Register.mdb: table Registry is missing")));
  std::filesystem::remove(file);
  EXPECT_THAT(look(), ElementsAre(finding(true, "Register.mdb is missing: the program ends when a host")));
}

TEST_F(Doctor, NamesAMissingColumn) {
  const auto& options = settings::scheduleTables[0];
  DatabaseWriter writer(toText(layout.sharedDatabases() / "Schedule.mdb"), true);
  writer.createTable({options.name, options.columns.first(7)});  // without File and Kind
  writer.finish();
  EXPECT_THAT(look(), ElementsAre(finding(false, "table Options lacks the column File")));
}

TEST_F(Doctor, NamesIncompleteTexts) {
  source.messages.erase(source.messages.begin() + 40);
  makeSuiteFiles(layout, source);
  EXPECT_THAT(look(), ElementsAre(finding(false, "VORDANE.LNG/messages: message 40 is missing")));
}

TEST_F(Doctor, NamesAMissingRegistration) {
  makeWithout(layout.sharedDatabases() / "Register.mdb", settings::registrationTables, {});
  EXPECT_THAT(look(), ElementsAre(finding(false, "there is no row for VORDANE.WRX")));
}

class WorkstationDoctor : public Doctor {
 protected:
  WorkstationDoctor() {
    settings = {{u"InstallPath", layout.root.u16string()}, {u"QUILMAR32", u"30000"}, {u"ZUL", u"30001"}};
    const auto command = [](const std::filesystem::path& program) {
      std::ofstream(program) << "program";
      return u"\"" + program.u16string() + u"\"";
    };
    servers = {{u"Vordane10013.cOLELayer", command(layout.program())},
               {u"CalderinProj30001.cPBXOle", command(layout.root / "Zulsim.exe") + u" /Automation"}};
  }
  std::vector<Finding> examine() {
    const auto look = [](const auto& values, std::u16string_view name) -> std::optional<std::u16string> {
      const auto found = values.find(std::u16string(name));
      return found == values.end() ? std::nullopt : std::optional(found->second);
    };
    const auto setting = [&](auto section, auto key) {
      EXPECT_EQ(section, u"30000");
      return look(settings, key);
    };
    const auto registered = [&](auto progId) -> std::optional<RegisteredClass> {
      const auto command = look(servers, progId);
      if (!command) return std::nullopt;
      return RegisteredClass{*command, everyUser};
    };
    const auto whoMayReplace = [&](std::u16string_view program) {
      const auto found = holes.find(std::filesystem::path(program).filename().string());
      return found == holes.end() ? std::vector<guard::Finding>{} : found->second;
    };
    Workstation workstation{setting, registered, whoMayReplace};
    workstation.registeredByWordSize = [&](std::u16string_view progId) {
      const auto wide = registered(progId);
      return ClassByWordSize{wide, narrow ? *narrow : wide};
    };
    workstation.versionOf = [&](std::u16string_view program) {
      const auto version = versions.find(std::filesystem::path(program).filename().string());
      return version == versions.end() ? std::string() : version->second;
    };
    return examineWorkstation(layout, workstation);
  }
  bool everyUser = true;
  std::optional<std::optional<RegisteredClass>> narrow;      // what 32-bit hosts find where that is another
  std::map<std::string, std::string> versions;               // by the program's file name
  std::map<std::string, std::vector<guard::Finding>> holes;  // by the program's file name
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

TEST_F(WorkstationDoctor, NamesServersThatAreGone) {
  std::filesystem::remove(layout.program());
  std::filesystem::remove(layout.root / "Zulsim.exe");
  EXPECT_THAT(examine(), ElementsAre(finding(true, "VORDANE.EXE, which is not there: no host can start"),
                                     finding(false, "Zulsim.exe, which is not there: no exchange")));
}

TEST_F(WorkstationDoctor, WarnsOfAProgramForEveryUserThatOthersMayReplace) {
  holes["VORDANE.EXE"] = {{u"C:\\Q\\ADDINS", u"BUILTIN\\Users"}, {u"C:\\Q", u"Everyone"}};
  holes["Zulsim.exe"] = {{u"C:\\SIM", u"Everyone"}};
  EXPECT_THAT(
      examine(),
      ElementsAre(finding(Weight::unsafe,
                          "Vordane10013.cOLELayer is registered for every user, but BUILTIN\\Users may write "
                          "to C:\\Q\\ADDINS, Everyone may write to C:\\Q: let administrators alone write "
                          "there"),
                  finding(Weight::unsafe,
                          "CalderinProj30001.cPBXOle is registered for every user, but "
                          "Everyone may write to C:\\SIM: let administrators")));
  everyUser = false;  // a user may replace what is registered for that user alone
  EXPECT_THAT(examine(), IsEmpty());
}

TEST_F(WorkstationDoctor, NamesTheVersionsOfBothWordSizesWhereTheyDiffer) {
  everyUser = false;
  versions = {{"VORDANE.EXE", "1.0.12"}, {"earlier.exe", "1.0.11"}};
  narrow = RegisteredClass{u"/old/earlier.exe -Embedding"};
  EXPECT_THAT(examine(),
              ElementsAre(finding(false,
                                  "VORDANE.EXE (version 1.0.12), 32-bit hosts /old/earlier.exe (version "
                                  "1.0.11): register one of them for both")));
  versions.clear();
  EXPECT_THAT(examine(),
              ElementsAre(finding(false,
                                  "VORDANE.EXE (of no version), 32-bit hosts /old/earlier.exe (of no "
                                  "version)")));
  narrow = std::optional<RegisteredClass>();
  EXPECT_THAT(examine(),
              ElementsAre(finding(false, ", 32-bit hosts nothing: register one of them for both")));
  narrow = RegisteredClass{servers[u"Vordane10013.cOLELayer"] + u" -Embedding"};
  EXPECT_THAT(examine(), IsEmpty());
}

TEST_F(WorkstationDoctor, NamesAnotherSuitesProgram) {
  const auto other = texts.files.folder() / "other vordane.exe";
  std::ofstream(other) << "program";
  servers[u"Vordane10013.cOLELayer"] = other.u16string() + u" -Embedding";
  EXPECT_THAT(examine(), ElementsAre(finding(false, "other vordane.exe: hosts start that one")));
}

}  // namespace
}  // namespace vordane::tools
