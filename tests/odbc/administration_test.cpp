// A store as its administrator makes it, and what each role can do with it.
#include "platform/odbc/administration.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "database/contract.h"
#include "odbc/server_store.h"
#include "platform/odbc/library.h"
#include "startup/databases.h"
#include "text/utf8.h"

namespace vordane::odbc {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Lines = std::vector<std::string>;

const database::Agreement english{u"English", u"aa11"}, russian{u"Русский", u"bb22"};

class StoreCommand : public testing::Test {
 protected:
  StoreCommand() {
    static int made = 0;
    name_ = "made" + std::to_string(std::random_device()()) + "_" + std::to_string(++made);
    runOn("postgres", "create database " + name_);
  }
  // Roles belong to the server: each test begins and ends without them.
  ~StoreCommand() override {
    runOn("postgres", "drop database " + name_ + " with (force)");
    for (const char* role : {"someone", "reader1", "station1", "keeper1", "vordane_reader", "vordane_station",
                             "vordane_administrator"})
      runOn("postgres", std::string("drop role if exists ") + role);
  }

  std::u16string file(std::string_view user = "administrator") const {
    return sources_.write(name_, {}, user).u16string();
  }
  Lines create(std::optional<database::Agreement> language = english,
               std::string_view user = "administrator") {
    return Administration(file(user), systemLibrary()).create(store::faultDatabase, {u"Language", language});
  }
  std::string whyNotCreated(std::optional<database::Agreement> language = english) {
    try {
      create(language);
    } catch (const database::DatabaseError& refused) {
      return text::toUtf8(refused.description());
    }
    return {};
  }
  std::vector<Examined> examine(std::optional<database::Agreement> language = english,
                                std::string_view user = "administrator", int hoursAhead = 0) {
    return Administration(file(user), systemLibrary())
        .examine(store::faultDatabase, {u"Language", language},
                 [=] { return std::chrono::system_clock::now() + std::chrono::hours(hoursAhead); });
  }
  Lines wrong(const std::vector<Examined>& all) {
    Lines lines;
    for (const Examined& one : all)
      if (!one.good) lines.push_back(one.text);
    return lines;
  }
  void makeUsers() {
    for (const char* user : {"reader", "station"})
      runOn("postgres", std::string("create role ") + user + "1 login in role vordane_" + user);
    runOn("postgres", "create role keeper1 login in role vordane_administrator");
  }
  // The number of the error, 0 without one. Nothing of it stays.
  int tried(const std::string& user, const std::string& statement) {
    return database::numberOfError([&] {
      Waiter waiter;
      const std::u16string connection = DataSource::read(file(user)).connection(64);
      Link link(api(), connection, std::chrono::seconds(10), waiter);
      link.begin();
      link.change(statement);
      link.rollback();
    });
  }
  std::string one(const std::string& question) {
    return text::toUtf8(connectTo(name_)->query(question).at(0).at(0).value_or(u"Null"));
  }

  DataSources sources_;
  std::string name_;
};

TEST_F(StoreCommand, SaysWhatItMadeAndWhatWasThere) {
  EXPECT_THAT(create(),
              ElementsAre("made the role vordane_reader", "made the role vordane_station",
                          "made the role vordane_administrator",
                          "closed the database " + name_ + " to everybody but these roles",
                          "made the tables, their indexes and triggers in the schema vordane",
                          "gave the roles their rights: readers read, stations add, change and delete rows, "
                          "administrators own",
                          "Language: English"));
  EXPECT_THAT(create(), ElementsAre("the role vordane_reader is there", "the role vordane_station is there",
                                    "the role vordane_administrator is there",
                                    "closed the database " + name_ + " to everybody but these roles",
                                    "the tables are there",
                                    "gave the roles their rights: readers read, stations add, change and "
                                    "delete rows, administrators own",
                                    "Language: English, as before"));
  EXPECT_THAT(wrong(examine()), IsEmpty());
}

TEST_F(StoreCommand, DoneAgainLeavesTheFaults) {
  create();
  runOn(name_, "insert into vordane.\"PBXList\" (\"PBXName\") values ('PBX-1')");
  runOn(name_, "insert into vordane.\"FaultDisplay\" (\"ID\", \"Date\") values (1, '2026/11/22')");
  create();
  EXPECT_EQ(one("select \"ID\" || ' ' || \"Date\" from vordane.\"FaultDisplay\""), "1 2026/11/22");
}

// The server writes out where it is called what is not slower than it says it is.
TEST_F(StoreCommand, AStoreOfAnEarlierTimeGetsTheQuickFunctions) {
  create();
  const std::string written =
      "select count(*)::text from pg_proc where pronamespace = 'vordane'::regnamespace and proname in "
      "('fold', "
      "'hash') and (proname = 'fold' and prosrc like '%regexp_replace%' or proname = 'hash' and provolatile "
      "= "
      "'s')";
  runOn(name_,
        "create or replace function vordane.fold(value text) returns text language sql immutable as "
        "'select lower(value)'");
  runOn(name_, "alter function vordane.hash(text, text, text, text) immutable");
  EXPECT_EQ(one(written), "0");
  create();
  EXPECT_EQ(one(written), "2");
}

TEST_F(StoreCommand, AStoreOfAnEarlierTimeGetsTheTablesOfTheReceipts) {
  create();
  runOn(name_, "drop table vordane.\"VordaneReceipts\", vordane.\"VordaneReceiptEntries\"");
  EXPECT_EQ(wrong(examine()).size(), 3U) << "two tables and an index";
  EXPECT_THAT(create(), testing::Contains("made the tables of the receipts"));
  EXPECT_THAT(wrong(examine()), IsEmpty());
  EXPECT_THAT(create(), testing::Not(testing::Contains("made the tables of the receipts")));
}

TEST_F(StoreCommand, AStoreOfAnEarlierTimeGetsTheTableOfTheNotes) {
  create();
  runOn(name_,
        "drop trigger vordane_note_removed on vordane.\"FaultDisplay\"; drop trigger vordane_note_emptied on "
        "vordane.\"FaultDisplay\"; drop function vordane.notes_removed(), vordane.notes_emptied(); "
        "drop table vordane.\"VordaneNotes\"");
  EXPECT_EQ(wrong(examine()).size(), 4U) << "a table, an index and two triggers";
  EXPECT_THAT(create(), testing::Contains("made the table of the notes"));
  EXPECT_THAT(wrong(examine()), IsEmpty());
  EXPECT_THAT(create(), testing::Not(testing::Contains("made the table of the notes")));
}

TEST_F(StoreCommand, NeedsNoMoreThanTheDatabaseAndTheMakingOfRoles) {
  runOn("postgres", "create role someone login createrole");
  runOn("postgres", "alter database " + name_ + " owner to someone");
  EXPECT_THAT(create(english, "someone"),
              testing::Contains("made someone a member of vordane_administrator"));
  EXPECT_THAT(create(english, "someone"),
              testing::Not(testing::Contains("made someone a member of vordane_administrator")));
  EXPECT_THAT(wrong(examine(english, "someone")), IsEmpty());
}

TEST_F(StoreCommand, WhoeverMayNotMakeRolesMakesNothing) {
  runOn("postgres", "create role someone login");
  EXPECT_EQ(database::numberOfError([&] { create(english, "someone"); }), 3051);
  EXPECT_EQ(one("select count(*) from pg_namespace where nspname = 'vordane'"), "0");
  EXPECT_EQ(one("select count(*) from pg_roles where rolname like 'vordane%'"), "0");
}

TEST_F(StoreCommand, RefusesADatabaseWithTablesOfOthers) {
  runOn(name_, "create table public.theirs (a integer)");
  EXPECT_EQ(whyNotCreated(),
            "the database holds other tables (public.theirs). Give the store a database of its own");
  EXPECT_EQ(one("select count(*) from pg_roles where rolname like 'vordane%'"), "0");
  runOn(name_, "drop table public.theirs");
  EXPECT_EQ(whyNotCreated(), "");
}

TEST_F(StoreCommand, RefusesASchemaThatItDidNotMake) {
  runOn(name_, "create schema vordane");
  EXPECT_EQ(whyNotCreated(),
            "there is a schema vordane that belongs to somebody else. Give the store a database of its own");
  runOn(name_, "drop schema vordane");
  EXPECT_EQ(whyNotCreated(), "");
}

TEST_F(StoreCommand, EachRoleCanDoWhatItIsForAndNoMore) {
  create();
  makeUsers();
  runOn(name_, "create schema other");
  runOn(name_, "create table other.secret (a integer)");
  runOn(name_, "grant select on other.secret to public");
  runOn(name_, "insert into vordane.\"PBXList\" (\"PBXName\") values ('PBX-1')");
  runOn(name_, "insert into vordane.\"FaultDisplay\" (\"ID\", \"Date\") values (1, '2026/11/22')");
  constexpr int no = 3051;
  constexpr struct {
    const char* statement;
    int reader, station, administrator;
  } trials[] = {
      {"select * from vordane.\"PBXList\"", 0, 0, 0},
      {"select * from vordane.\"FaultDisplay\" order by vordane.fold(\"Date\")", 0, 0, 0},
      {"insert into vordane.\"FaultDisplay\" (\"ID\") values (1)", no, 0, 0},
      {"insert into vordane.\"PBXList\" (\"PBXName\") values ('x')", no, 0, 0},
      {"update vordane.\"PBXList\" set \"MJ\" = -1", no, 0, 0},
      {"delete from vordane.\"FaultDisplay\"", no, 0, 0},
      {"truncate vordane.\"FaultDisplay\"", no, no, 0},
      {"select * from vordane.\"VordaneEventIndex\"", 0, 0, 0},
      {"select vordane.hash('a', 'b', 'c', 'd')", 0, 0, 0},
      {"delete from vordane.\"VordaneEventIndex\"", no, no, 0},
      {"insert into vordane.\"VordaneOwnerIndex\" values ('y', 9)", no, no, 0},
      {"insert into vordane.\"VordaneAgreements\" values ('x', 'y', 'z')", no, 0, 0},
      {"update vordane.\"VordaneAgreements\" set \"Mark\" = ''", no, no, 0},
      {"delete from vordane.\"VordaneAgreements\"", no, no, 0},
      {"select * from vordane.\"VordaneReceipts\"", 0, 0, 0},
      {"select * from vordane.\"VordaneReceiptEntries\"", 0, 0, 0},
      {"insert into vordane.\"VordaneReceipts\" (\"Outcome\") values ('x')", no, 0, 0},
      {"insert into vordane.\"VordaneReceiptEntries\" (\"Receipt\") values (1)", no, 0, 0},
      {"update vordane.\"VordaneReceipts\" set \"Outcome\" = 'x'", no, no, 0},
      {"delete from vordane.\"VordaneReceipts\"", no, no, 0},
      {"delete from vordane.\"VordaneReceiptEntries\"", no, no, 0},
      {"select * from vordane.\"VordaneNotes\"", 0, 0, 0},
      {"insert into vordane.\"VordaneNotes\" values (1, 1, '', '', 'x')", no, 0, 0},
      {"update vordane.\"VordaneNotes\" set \"Text\" = 'x'", no, 0, 0},
      {"delete from vordane.\"VordaneNotes\"", no, 0, 0},
      {"truncate vordane.\"VordaneNotes\"", no, no, 0},
      {"alter table vordane.\"PBXList\" add column more text", no, no, 0},
      {"alter table vordane.\"FaultDisplay\" disable trigger user", no, no, 0},
      {"drop table vordane.\"FaultDisplay\"", no, no, 0},
      {"drop function vordane.fold(text)", no, no, 0},
      {"create table vordane.mine (a integer)", no, no, 0},
      {"create table public.mine (a integer)", no, no, no},
      {"create temporary table mine (a integer)", no, no, no},
      {"create schema mine", no, no, no},
      {"select * from other.secret", no, no, no},
      {"set role vordane_administrator", no, no, 0},
      {"create role mine", no, no, no},
  };
  for (const auto& trial : trials) {
    EXPECT_EQ(tried("reader1", trial.statement), trial.reader) << trial.statement;
    EXPECT_EQ(tried("station1", trial.statement), trial.station) << trial.statement;
    EXPECT_EQ(tried("keeper1", trial.statement), trial.administrator) << trial.statement;
  }
}

TEST_F(StoreCommand, NobodyElseConnects) {
  create();
  runOn("postgres", "create role someone login");
  EXPECT_EQ(tried("someone", "select 1"), 3151);
  runOn("postgres", "grant vordane_reader to someone");
  EXPECT_EQ(tried("someone", "select 1"), 0);
}

TEST_F(StoreCommand, AStationStoresAndAReaderReads) {
  create();
  makeUsers();
  const auto engine = makeEngine(startup::databases, systemLibrary());
  const auto station = engine->open(file("station1"), false);
  station->beginBatch();
  EXPECT_EQ(station->agree(u"Language", english), english);
  database::addExchange(*station, u"PBX-1");
  const database::Fault fault{1, u"01", u"MJ", u"MP", u"2006/11/27 10:15", u"text"};
  EXPECT_FALSE(database::isStored(*station, fault));
  database::addFault(*station, fault);
  station->endBatch();
  EXPECT_TRUE(database::isStored(*station, fault));
  EXPECT_EQ(database::numberOfError([&] { engine->open(file("reader1"), false); }), 3051);
  const auto reader = engine->open(file("reader1"), true);
  EXPECT_THAT(database::column(
                  *reader, u"SELECT * FROM FaultDisplay WHERE ID = 1" + std::u16string(store::sortClauses[7]),
                  u"Count"),
              testing::SizeIs(1));
  station->execute(u"DELETE FROM FaultDisplay WHERE ID = 1");
  EXPECT_FALSE(database::isStored(*station, fault));
}

TEST_F(StoreCommand, KeepsTheLanguageOfStoredFaults) {
  create();
  EXPECT_THAT(create(russian), testing::Contains("Language: Русский"));  // no fault yet
  runOn(name_, "insert into vordane.\"FaultDisplay\" (\"ID\") values (1)");
  EXPECT_EQ(whyNotCreated(english),
            "Language: the store is kept in Русский and holds faults; it can't change to English");
  EXPECT_THAT(create(russian), testing::Contains("Language: Русский, as before"));
  EXPECT_EQ(whyNotCreated(std::nullopt), "");
  EXPECT_EQ(one("select \"Name\" || ' ' || \"Mark\" from vordane.\"VordaneAgreements\" where \"Subject\" = "
                "'Language'"),
            "Русский bb22");
}

TEST_F(StoreCommand, AStoreOfANewerVersionIsLeftAlone) {
  create();
  runOn(name_, "update vordane.\"VordaneAgreements\" set \"Mark\" = '2' where \"Subject\" = 'Store'");
  EXPECT_EQ(
      whyNotCreated(),
      "the store has the version 2, this program makes 1. Use the program that made it, or a newer one");
  EXPECT_THAT(wrong(examine()), ElementsAre("the store has the version 2, this program knows 1"));
}

TEST_F(StoreCommand, ExaminesAStoreThatIsWhole) {
  create();
  makeUsers();
  const std::vector<Examined> all = examine(english, "station1");
  Lines lines;
  for (const Examined& one : all) lines.push_back((one.good ? "" : "wrong: ") + one.text);
  EXPECT_THAT(
      lines, ElementsAre(testing::StartsWith("PostgreSQL 15"), "user station1 in the database " + name_,
                         "the clocks of the server and of this station agree", "store of version 1",
                         "the tables are as documented", "the indexes are there", "the triggers are in force",
                         "the index agrees with the faults",
                         "the roles have the rights that they should have, and no others",
                         "Language: English, as the texts given here"));
  EXPECT_THAT(wrong(examine(english, "reader1")), ElementsAre());
}

TEST_F(StoreCommand, ExaminesADatabaseWithoutAStore) {
  EXPECT_THAT(wrong(examine()),
              ElementsAre("there is no store in this database: 'vordane-tools store create' makes it"));
}

TEST_F(StoreCommand, TellsHowFarTheClocksAreApart) {
  create();
  EXPECT_THAT(wrong(examine(english, "administrator", 1)),
              ElementsAre("the server's clock is 3600 s behind this station's: set them by one time server"));
  EXPECT_THAT(
      wrong(examine(english, "administrator", -2)),
      ElementsAre("the server's clock is 7200 s ahead of this station's: set them by one time server"));
}

TEST_F(StoreCommand, TellsAnotherLanguageAndNone) {
  create(std::nullopt);
  EXPECT_THAT(wrong(examine()),
              ElementsAre("Language: none is kept; the first station that stores a list decides"));
  create(russian);
  EXPECT_THAT(wrong(examine()),
              ElementsAre("Language: the store is kept in Русский (bb22), the texts given here "
                          "are English (aa11)"));
  EXPECT_THAT(wrong(examine(std::nullopt)), IsEmpty());
}

TEST_F(StoreCommand, FindsEachThingThatIsWrong) {
  create();
  makeUsers();
  runOn(name_, "insert into vordane.\"FaultDisplay\" (\"ID\", \"Date\") values (1, '2026/11/22')");
  constexpr struct {
    const char *statement, *back, *says;  // no `back`: 'store create' puts it right
  } trials[] = {
      {"alter table vordane.\"PBXList\" rename column \"MJ\" to mj",
       "alter table vordane.\"PBXList\" rename column mj to \"MJ\"",
       "the column PBXList.MJ is missing, or of another type than smallint"},
      {"alter table vordane.\"FaultDisplay\" alter \"CPU\" type character varying(5)",
       "alter table vordane.\"FaultDisplay\" alter \"CPU\" type text",
       "the column FaultDisplay.CPU is missing, or of another type than text"},
      {"drop index vordane.\"VordaneEventOrder\"",
       "create index \"VordaneEventOrder\" on vordane.\"VordaneEventIndex\" (\"Owner\", \"Moment\" nulls "
       "first, \"Hash\", "
       "\"Key\")",
       "the index over Owner, Moment, Hash, Key of VordaneEventIndex is missing or not in force"},
      {"alter table vordane.\"FaultDisplay\" disable trigger vordane_added",
       "alter table vordane.\"FaultDisplay\" enable trigger vordane_added",
       "the trigger vordane_added of FaultDisplay is missing or not in force"},
      {"alter table vordane.\"PBXList\" disable trigger vordane_changed",
       "alter table vordane.\"PBXList\" enable trigger vordane_changed",
       "the trigger vordane_changed of PBXList is missing or not in force"},
      {"update vordane.\"VordaneEventIndex\" set \"Moment\" = 'x'", nullptr,
       "the index does not agree with 1 fault(s): 'vordane-tools store create' renews it"},
      {"delete from vordane.\"VordaneEventIndex\"", nullptr,
       "the index does not agree with 1 fault(s): 'vordane-tools store create' renews it"},
      {"grant select on vordane.\"PBXList\" to public", nullptr,
       "the role public has the rights (SELECT) on PBXList, not ()"},
      {"grant truncate on vordane.\"FaultDisplay\" to vordane_station", nullptr,
       "the role vordane_station has the rights (SELECT, INSERT, UPDATE, DELETE, TRUNCATE) on FaultDisplay, "
       "not "
       "(SELECT, INSERT, UPDATE, DELETE)"},
      {"revoke delete on vordane.\"PBXList\" from vordane_station", nullptr,
       "the role vordane_station has the rights (SELECT, INSERT, UPDATE) on PBXList, not (SELECT, INSERT, "
       "UPDATE, "
       "DELETE)"},
      {"grant update on vordane.\"VordaneAgreements\" to vordane_station", nullptr,
       "the role vordane_station has the rights (SELECT, INSERT, UPDATE) on VordaneAgreements, not (SELECT, "
       "INSERT)"},
      {"grant delete on vordane.\"VordaneReceipts\" to vordane_station", nullptr,
       "the role vordane_station has the rights (SELECT, INSERT, DELETE) on VordaneReceipts, not (SELECT, "
       "INSERT)"},
      {"drop table vordane.\"VordaneReceiptEntries\"", nullptr,
       "the table VordaneReceiptEntries of the receipts is missing or another one: 'vordane-tools store "
       "create' "
       "makes one that is missing"},
      {"alter table vordane.\"FaultDisplay\" disable trigger vordane_note_removed",
       "alter table vordane.\"FaultDisplay\" enable trigger vordane_note_removed",
       "the trigger vordane_note_removed of FaultDisplay is missing or not in force"},
      {"revoke delete on vordane.\"VordaneNotes\" from vordane_station", nullptr,
       "the role vordane_station has the rights (SELECT, INSERT, UPDATE) on VordaneNotes, not (SELECT, "
       "INSERT, "
       "UPDATE, DELETE)"},
      {"alter table vordane.\"PBXList\" owner to administrator",
       "alter table vordane.\"PBXList\" owner to vordane_administrator",
       "the table PBXList belongs to administrator, not to vordane_administrator"},
      {"grant create on schema vordane to vordane_station", nullptr,
       "the role vordane_station can make tables in the schema vordane"},
      {"grant usage on schema public to vordane_reader", nullptr,
       "the role vordane_reader can read in the schema public"},
      {"revoke usage on schema vordane from vordane_reader", nullptr,
       "the role vordane_reader can not use the schema vordane"},
      {"revoke usage on all sequences in schema vordane from vordane_station", nullptr,
       "the role vordane_station may not take numbers from FaultDisplay_Count_seq"},
      {"alter role station1 createrole", "alter role station1 nocreaterole",
       "the user station1 is a member of vordane_station and can do more than that"},
      {"grant vordane_administrator to station1", "revoke vordane_administrator from station1",
       "the user station1 is a member of vordane_station and can do more than that"},
      {"delete from vordane.\"VordaneAgreements\" where \"Subject\" = 'Store'", nullptr,
       "the store does not say which version it has"},
  };
  for (const auto& trial : trials) {
    runOn(name_, trial.statement);
    EXPECT_THAT(wrong(examine()), testing::Contains(trial.says)) << trial.statement;
    if (trial.back != nullptr)
      runOn(name_, trial.back);
    else
      create();
    ASSERT_THAT(wrong(examine()), IsEmpty()) << trial.statement;
  }
  runOn(name_, "grant temporary on database " + name_ + " to public");
  EXPECT_THAT(wrong(examine()),
              ElementsAre("the role vordane_reader can make temporary tables in the database",
                          "the role vordane_station can make temporary tables in the database"));
  runOn(name_, "revoke connect on database " + name_ + " from vordane_station");
  EXPECT_THAT(wrong(examine()),
              testing::Contains("the role vordane_station may not connect to the database"));
  create();
  EXPECT_THAT(wrong(examine()), IsEmpty());
}

}  // namespace
}  // namespace vordane::odbc
