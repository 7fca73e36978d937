#include "platform/dao/dao_engine.h"

#include "dao/dao_under_test.h"
#include "database/contract.h"
#include "fakes/scripted_object.h"
#include "platform/dao/dao_objects.h"
#include "startup/databases.h"

namespace vordane::database {

INSTANTIATE_TEST_SUITE_P(Dao, DatabaseContract,
                         testing::Values(EngineFactory{
                             "dao", [] { return std::make_unique<fakes::DaoUnderTest>(); }}),
                         [](const auto& run) { return run.param.name; });

namespace {

using fakes::DaoUnderTest;
using fakes::DaoWorkstation;

class DaoEngine : public testing::Test {
 protected:
  std::unique_ptr<Database> open(bool readOnly = false) { return under.engine().open(file, readOnly); }
  fakes::DaoWorld& world() { return *under.workstation.world; }

  DaoUnderTest under;
  std::u16string file = under.make(Layout::faults);
};

TEST_F(DaoEngine, AsksForTheNewerVersionAndOnlyOnce) {
  open();
  open();
  EXPECT_EQ(under.workstation.asked, (std::vector<std::u16string>{u"DAO.DBEngine.120"}));
}

TEST_F(DaoEngine, TakesTheOlderVersionWhereTheNewerIsMissing) {
  DaoWorkstation older(u"DAO.DBEngine.36");
  dao::makeEngine(startup::databases, older)->open(file, false);
  EXPECT_EQ(older.asked, (std::vector<std::u16string>{u"DAO.DBEngine.120", u"DAO.DBEngine.36"}));
}

TEST_F(DaoEngine, SaysWhenThereIsNone) {
  DaoWorkstation none(u"");
  const auto engine = dao::makeEngine(startup::databases, none);
  EXPECT_EQ(numberOfError([&] { engine->open(file, false); }), 429);
}

TEST_F(DaoEngine, AMissingFolderIsAMissingFile) {
  EXPECT_EQ(numberOfError([&] { under.engine().open(file + u"-folder/FAULT.MDB", false); }), 3024);
}

// Its numbers may be random.
TEST_F(DaoEngine, WhatCameLastCantBeTold) {
  EXPECT_EQ(open()->arrivals(), nullptr);
}

TEST_F(DaoEngine, AFileThatMayNotBeChangedOpensOnlyToBeRead) {
  addExchange(*open(), u"A");
  world().writeProtected.insert(file);
  EXPECT_EQ(numberOfError([&] { open(); }), 3051);
  EXPECT_EQ(column(*open(true), u"Select * FROM PBXList", u"PBXName"), (std::vector<std::string>{"A"}));
}

TEST_F(DaoEngine, WaitsForOneWhoHoldsTheFileForHimself) {
  world().held[file] = 2;
  EXPECT_NO_THROW(open());
  world().held[file] = 1'000'000;
  EXPECT_EQ(numberOfError([&] { open(); }), 3260);
}

// What a fault's free texts could make of the duplicate test: rows of another file, asked for over the
// network.
TEST_F(DaoEngine, AValueThatMakesAnotherStatementDoesNotReachIt) {
  const auto database = open();
  const std::u16string name = u"x\" UNION SELECT * FROM PBXList IN '\\\\server\\x.mdb' WHERE PBXName = \"";
  const std::u16string_view columns[] = {u"ID"};
  for (const std::u16string& statement :
       {u"Select * FROM PBXList WHERE PBXName = \"" + name + u"\"",
        findSame(
            {1, u"01", u"MJ", u"MP   ", u"2006", u"x\" UNION SELECT * FROM FaultDisplay IN '\\\\s\\x.mdb"}),
        findSame({1, u"01", u"MJ", u"MP' OR Shell('x') = '", u"2006", u"x"}),
        std::u16string(u"DELETE FROM PBXList WHERE ID = 1 OR 1 = 1"),
        std::u16string(u"Select * FROM PBXList WHERE PBXName = \"a\"; DROP TABLE PBXList")}) {
    world().statements.clear();
    EXPECT_EQ(numberOfError([&] { database->openRecordset(statement); }), 3075);
    EXPECT_EQ(numberOfError([&] { database->openRowList(statement, columns); }), 3075);
    EXPECT_EQ(numberOfError([&] { database->execute(statement); }), 3075);
    EXPECT_EQ(world().statements, std::vector<std::u16string>{});
  }
  addExchange(*database, u"A");
  EXPECT_EQ(column(*database, u"Select * FROM PBXList", u"PBXName"), (std::vector<std::string>{"A"}));
}

TEST_F(DaoEngine, GetsTheDocumentedTextOfAStatementWithValues) {
  const auto database = open();
  world().statements.clear();
  database->openRecordset(store::statement::selectExchange.with({u"a\"b", std::int16_t{-2}}));
  database->execute(store::statement::deleteFaults.with({std::int16_t{7}}));
  EXPECT_EQ(world().statements,
            (std::vector<std::u16string>{u"SELECT * FROM PBXList WHERE PBXName = 'a\"b' AND ID = -2",
                                         u"DELETE FROM FaultDisplay WHERE ID = 7"}));
}

TEST_F(DaoEngine, AFileWhoseTablesLieElsewhereIsRefused) {
  for (const std::uint32_t attributes : {0x40000000U, 0x20000000U}) {
    world().attached = {{u"FaultDisplay", attributes}};
    for (const bool readOnly : {true, false}) EXPECT_EQ(numberOfError([&] { open(readOnly); }), 3343);
  }
  world().attached.clear();
  for (const char16_t* query : {u"FaultDisplay", u"tmessages", u"PBXLIST"}) {
    world().queries = {u"Faults by month", query};
    EXPECT_EQ(numberOfError([&] { open(); }), 3343);
  }
  // What else a file holds is nobody's business.
  world().queries = {u"Faults by month", u"~sq_cReport"};
  EXPECT_NO_THROW(addExchange(*open(), u"A"));
}

TEST_F(DaoEngine, ARecordsetMayBeClosedTwiceAndOutliveItsDatabase) {
  auto database = open();
  addExchange(*database, u"A");
  const auto rows = database->openRecordset(u"Select * FROM PBXList");
  const auto other = database->openRecordset(u"Select * FROM PBXList");
  rows->close();
  rows->close();
  EXPECT_EQ(numberOfError([&] { rows->get(u"ID"); }), 3420);
  database.reset();
  EXPECT_EQ(numberOfError([&] { other->moveNext(); }), 3420);
}

TEST_F(DaoEngine, AMomentIsWrittenAsADateAndAnyOtherTextAsItStands) {
  const auto database = open();
  addExchange(*database, u"2006-11-27 10:15:00", u"2007-01-31 23:59:59");
  const auto rows = database->openRecordset(u"Select * FROM PBXList");
  EXPECT_EQ(shown(rows->get(u"PBXName")), "2006-11-27 10:15:00");
  EXPECT_EQ(shown(rows->get(u"TimeStamp")), "2007-01-31 23:59:59");
  rows->edit();
  EXPECT_EQ(numberOfError([&] { rows->set(u"TimeStamp", text(u"31.01.2007")); }), 3421);
  rows->set(u"TimeStamp", automation::Null{});
  rows->update();
  EXPECT_EQ(shown(rows->get(u"TimeStamp")), "Null");
}

TEST_F(DaoEngine, PastTheEndThereIsNoRecord) {
  const auto database = open();
  addExchange(*database, u"A");
  const auto rows = database->openRecordset(u"Select * FROM PBXList");
  rows->moveNext();
  EXPECT_TRUE(rows->atEnd());
  EXPECT_FALSE(rows->isEmpty());
  EXPECT_EQ(numberOfError([&] { rows->get(u"ID"); }), 3021);
  EXPECT_EQ(numberOfError([&] { rows->moveNext(); }), 3021);
  EXPECT_EQ(numberOfError([&] { rows->edit(); }), 3021);
  rows->moveFirst();
  EXPECT_EQ(shown(rows->get(u"PBXName")), "A");
}

TEST_F(DaoEngine, AnEmptyRecordsetHasNoFirstRecord) {
  const auto rows = open()->openRecordset(u"Select * FROM PBXList");
  EXPECT_NE(numberOfError([&] { rows->moveFirst(); }), 0);
}

TEST_F(DaoEngine, ARowListOfNothingIsEmpty) {
  const std::u16string_view columns[] = {u"ID"};
  const auto database = open();
  const auto rows = database->openRowList(u"SELECT * FROM FaultDisplay Order by [Date] Desc", columns);
  std::vector<Value> values;
  EXPECT_EQ(rows->size(), 0U);
  EXPECT_FALSE(rows->fetch(0, values));
}

TEST_F(DaoEngine, AnAccessFileKeepsNoNotesAndSaysSo) {
  const std::u16string_view columns[] = {u"Count"};
  const auto database = open();
  addFault(*database, {});
  const auto rows = database->openRowList(u"SELECT * FROM FaultDisplay Order by [Date] Desc", columns);
  std::vector<std::uint32_t> chosen;
  rows->chooseNoted(std::vector<std::uint32_t>{0}, chosen);
  EXPECT_EQ(rows->notes(), nullptr);
  EXPECT_EQ(rows->noNotes(), NoNotes::accessFile);
  EXPECT_TRUE(chosen.empty());
}

// ---- errors of automation itself

int numberOfFailure(std::int32_t code, std::u16string* description = nullptr) {
  const auto object = std::make_shared<fakes::ScriptedObject>();
  object->on(u"Close", [code](auto) -> Value { throw automation::AutomationError(code); });
  try {
    dao::call(object, u"Close");
  } catch (const DatabaseError& error) {
    if (description != nullptr) *description = error.description();
    return error.number();
  }
  return 0;
}

TEST(DaoErrors, HaveTheNumbersCallersKnow) {
  EXPECT_EQ(numberOfFailure(automation::error::runTime(3022)), 3022);
  EXPECT_EQ(numberOfFailure(automation::error::typeMismatch), 13);
  EXPECT_EQ(numberOfFailure(automation::error::unknownName), 438);
  std::u16string description;
  EXPECT_EQ(numberOfFailure(static_cast<std::int32_t>(0x800706BA), &description), 3420);
  EXPECT_EQ(description, u"Automation error 800706BA");
}

}  // namespace
}  // namespace vordane::database
