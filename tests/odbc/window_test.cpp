// The window over a store on a server: a data source stands where FAULT.MDB would.
#include <algorithm>
#include <fstream>

#include "language_build.h"
#include "language_source.h"
#include "language_texts.h"
#include "odbc/server_story.h"
#include "places.h"

namespace vordane::startup {
namespace {

TEST_F(ServerStory, AListIsStoredShownAndKnownAgain) {
  startWithHost();
  fetch(faults(0, 40), u"10");
  EXPECT_EQ(view.rows->size(), 40U);
  EXPECT_THAT(text::toUtf8(view.status[0]), testing::HasSubstr("40 received, 40 new, 0 stored, 0 refused"));
  EXPECT_EQ(ask("select \"MJ\" || ' ' || \"MN\" || ' ' || \"PBXName\" from vordane.\"PBXList\""),
            "-1 0 PBX-1");
  fetch(faults(20, 40));
  EXPECT_EQ(view.rows->size(), 60U);
  EXPECT_THAT(text::toUtf8(view.status[0]), testing::HasSubstr("40 received, 20 new, 20 stored, 0 refused"));
  EXPECT_EQ(ask("select count(*) from vordane.\"FaultDisplay\" where \"Date\" like '2026/11/20 10:__'"),
            "60");
}

TEST_F(ServerStory, AnotherStationSeesWhatOneHasFetched) {
  startWithHost();
  fetch(faults(0, 5));
  const auto other = odbc::makeEngine(databases, odbc::systemLibrary());
  const auto database = other->open(engine.file(u"FAULT.MDB"), true);
  const std::u16string_view columns[] = {u"Date"};
  EXPECT_EQ(
      database
          ->openRowList(u"SELECT * FROM FaultDisplay WHERE ID = 1" + std::u16string(store::sortClauses[7]),
                        columns)
          ->size(),
      5U);
}

TEST_F(ServerStory, DeletingAnExchangeDeletesItForAll) {
  startWithHost();
  fetch(faults(0, 5));
  boxes.answer = 6;
  pressAndTick(3);
  EXPECT_EQ(ask("select count(*) from vordane.\"FaultDisplay\""), "0");
  EXPECT_EQ(ask("select count(*) from vordane.\"PBXList\""), "0");
}

TEST_F(ServerStory, AServerThatCannotBeReachedIsADatabaseThatDidNotOpen) {
  std::ofstream(std::filesystem::path(engine.file(u"FAULT.MDB")))
      << "[ODBC]\nDRIVER=PostgreSQL Unicode\nSERVER=" << engine.folder().string() << "\nDATABASE=none\n";
  startWithHost();
  pressAndTick(0);
  exchange().answer(0, oneFault());
  trace.clear();
  tick();
  EXPECT_THAT(taken(),
              testing::IsSupersetOf({std::string("ShowMessage not open"), std::string("ShowCode 3024")}));
}

TEST_F(ServerStory, AServerLostInTheMiddleIsToldOnceAndTheNextFetchCompletesTheList) {
  startWithHost();
  fetch(faults(0, 5));
  pressAndTick(0);
  exchange().answer(0, faults(0, 10));
  ask("select pg_terminate_backend(pid) from pg_stat_activity where application_name = 'Vordane' and datname "
      "= "
      "current_database()");
  trace.clear();
  tick();
  const Lines lines = taken();
  EXPECT_EQ(std::count_if(lines.begin(), lines.end(),
                          [](const std::string& line) {
                            return line.starts_with("Box 102") &&
                                   line.find("No connection to the database server") != line.npos;
                          }),
            1);
  EXPECT_FALSE(state.busy);
  EXPECT_EQ(ask("select count(*) from vordane.\"FaultDisplay\""), "5");
  fetch(faults(0, 10));
  EXPECT_THAT(text::toUtf8(view.status[0]), testing::HasSubstr("10 received, 5 new, 5 stored, 0 refused"));
  EXPECT_EQ(view.rows->size(), 10U);
}

// A workstation with the shipped texts of a language.
class StationOf : public ServerStory {
 protected:
  void useTexts(const std::string& language) {
    tools::Problems problems;
    const auto source =
        tools::readLanguageSource(test::sourceFolder() / "data/language" / language, problems);
    ASSERT_THAT(problems, IsEmpty());
    const std::filesystem::path file(engine.file(u"VORDANE.LNG"));
    std::filesystem::remove(file);
    tools::buildOwnLanguage(source, file);
  }
  // What the tools make of the same file.
  database::Agreement asToolsSay() {
    return tools::storingLanguageOf(*sqlite::makeEngine(databases),
                                    text::toUtf8(engine.file(u"VORDANE.LNG")));
  }
  void keep(const database::Agreement& language) {
    odbc::runOn(store_, "delete from vordane.\"VordaneAgreements\"");
    odbc::runOn(store_, "insert into vordane.\"VordaneAgreements\" values ('Language', '" +
                            text::toUtf8(language.name) + "', '" + text::toUtf8(language.mark) + "')");
  }
  std::string kept() {
    return ask(
        "select string_agg(\"Subject\" || ' ' || \"Name\" || ' ' || \"Mark\", ';') from "
        "vordane.\"VordaneAgreements\"");
  }
};

TEST_F(StationOf, TheFirstListSaysWhichLanguageTheStoreIsKeptIn) {
  useTexts("ru");
  startWithHost();
  EXPECT_EQ(kept(), "Null");  // looking alone decides nothing
  fetch(faults(0, 3));
  const database::Agreement language = asToolsSay();
  EXPECT_EQ(text::toUtf8(language.name), "Русский");
  EXPECT_EQ(language.mark.size(), 16U);
  EXPECT_EQ(kept(), "Language Русский " + text::toUtf8(language.mark));
  fetch(faults(0, 4));
  EXPECT_EQ(ask("select count(*) from vordane.\"FaultDisplay\""), "4");
}

TEST_F(StationOf, AnotherLanguageShowsResetsAndDeletesButStoresNothing) {
  useTexts("en");
  keep({u"Русский", u"0123456789abcdef"});
  ask("insert into vordane.\"PBXList\" (\"PBXName\", \"TimeStamp\", \"MJ\") values ('PBX-1', '2006-11-27 "
      "10:15:00', -1) "
      "returning 1");
  ask("insert into vordane.\"FaultDisplay\" (\"ID\", \"Fault\", \"Alarm\", \"CPU\", \"Date\", "
      "\"Description\") values "
      "(1, '15', 'MJ', 'MP   ', '2006/11/27 10:15', 'x') returning 1");
  const std::string before = ask("select \"TimeStamp\" || ' ' || xmin from vordane.\"PBXList\"");
  startWithHost();
  ASSERT_NE(view.rows, nullptr);
  EXPECT_EQ(view.rows->size(), 1U);

  for (int time = 0; time < 2; ++time) {  // and with the same objects once more
    pressAndTick(0);
    exchange().answer(0, faults(0, 5));
    trace.clear();
    tick();
    const Lines lines = taken();
    const auto says = [](const std::string& line) {
      return line.starts_with("Box ") &&
             line.find(
                 "The shared store keeps its faults in Русский, and the texts of this workstation are "
                 "English. Nothing was stored, and the exchange keeps its list.") != line.npos;
    };
    EXPECT_EQ(std::count_if(lines.begin(), lines.end(), says), 1) << testing::PrintToString(lines);
    EXPECT_THAT(lines, testing::Not(testing::Contains(testing::HasSubstr("SendRequest"))));
    EXPECT_FALSE(state.busy);
    EXPECT_EQ(ask("select \"TimeStamp\" || ' ' || xmin from vordane.\"PBXList\""), before);
    EXPECT_EQ(ask("select count(*) from vordane.\"FaultDisplay\""), "1");
    EXPECT_EQ(kept(), "Language Русский 0123456789abcdef");
    EXPECT_EQ(view.rows->size(), 1U);
  }

  pressAndTick(1);  // reset
  exchange().answer(0, {});
  tick();
  EXPECT_EQ(ask("select \"MJ\"::text from vordane.\"PBXList\""), "0");
  boxes.answer = 6;
  pressAndTick(3);
  EXPECT_EQ(ask("select count(*) from vordane.\"FaultDisplay\""), "0");

  keep(asToolsSay());  // the administrator's empty store takes this language
  fetch(faults(0, 5));
  EXPECT_EQ(ask("select count(*) from vordane.\"FaultDisplay\""), "5");
}

TEST_F(StationOf, OtherWordsOfTheSameLanguageAreToldByTheirMark) {
  useTexts("en");
  keep({u"English", u"0123456789abcdef"});
  startWithHost();
  pressAndTick(0);
  exchange().answer(0, faults(0, 1));
  trace.clear();
  tick();
  EXPECT_THAT(taken(), testing::Contains(
                           testing::HasSubstr("English (0123456789abcdef), and the texts of this workstation "
                                              "are English (" +
                                              text::toUtf8(asToolsSay().mark) + ")")));
  EXPECT_EQ(ask("select count(*) from vordane.\"PBXList\""), "0");
}

}  // namespace
}  // namespace vordane::startup
