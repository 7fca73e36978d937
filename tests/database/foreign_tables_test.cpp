// What other programs wrote, or declared in their own way.
#include "database/fault_index.h"

namespace vordane::sqlite {
namespace {

TEST_F(FaultIndexTest, AnotherToolReadsWritesAndChecksTheFile) {
  const auto database = open();
  addFault(*database, {1, u"01", u"MJ", u"MP", u"2006/01/01", u"Шина"});
  OtherTool other(path_);
  EXPECT_EQ(other.run("PRAGMA integrity_check"), "ok\n");
  EXPECT_EQ(other.run("SELECT Count FROM FaultDisplay WHERE Fault = '01' ORDER BY Description, Date"), "1\n");
  EXPECT_EQ(other.run("INSERT INTO FaultDisplay(ID, Fault, Alarm, CPU, Date, Description) VALUES "
                      "(1, '02', 'MN', 'MP', '2007/01/01', 'added')"),
            "");
  EXPECT_TRUE(isStored(*database, {1, u"02", u"mn", u"MP", u"2007/01/01", u"ADDED"}));
  EXPECT_EQ(newestDate(*database), "2007/01/01");
  EXPECT_EQ(counts(*database, clauses[2][1]), (std::vector<std::string>{"2", "1"}));
  EXPECT_EQ(other.run("UPDATE FaultDisplay SET Date = '2005/01/01' WHERE Count = 2"), "");
  EXPECT_EQ(newestDate(*database), "2006/01/01");
  EXPECT_FALSE(isStored(*database, {1, u"02", u"mn", u"MP", u"2007/01/01", u"added"}));
  EXPECT_EQ(other.run("DELETE FROM FaultDisplay WHERE Count = 1"), "");
  EXPECT_FALSE(isStored(*database, {1, u"01", u"MJ", u"MP", u"2006/01/01", u"Шина"}));
  EXPECT_EQ(newestDate(*database), "2005/01/01");
  EXPECT_EQ(other.run("PRAGMA integrity_check"), "ok\n");
}

// Files of other makers, by the declaration of the table.
struct Foreign {
  const char* name;
  const char* columns;
};
class ForeignTable : public testing::TestWithParam<Foreign> {};

TEST_P(ForeignTable, IsListedAsTheStatementHasIt) {
  EmbeddedUnderTest under;
  const std::u16string path = under.make(Layout::faults);
  OtherTool other(path);
  EXPECT_EQ(other.run("DROP TABLE FaultDisplay"), "");
  EXPECT_EQ(other.run((std::string("CREATE TABLE FaultDisplay(") + GetParam().columns + ")").c_str()), "");
  EXPECT_EQ(
      other.run("INSERT INTO FaultDisplay(ID, Fault, Alarm, CPU, Date, Description, Count) VALUES "
                "(1, '07', 'MJ', 'MP', '2006/01/01', 'a', 11), (2, '02', 'MN', 'MP', '2006/01/02', 'b', 12),"
                "(1, '7', x'4D4A', 'MP', x'32', 'C', 13), (1, '10', 'MJ', 'MP', Null, x'', 14),"
                "(1, '9', 'mj', 'MP', '2006/01/01 ', 'c', 15)"),
      "");
  const auto database = under.engine().open(path, false);
  expectTheGridAsTheStatement(*database, 4);
  EXPECT_EQ(
      isStored(*database, {1, u"07", u"mj", u"MP", u"2006/01/01", u"A"}),
      other.run("SELECT count(*) FROM FaultDisplay WHERE ID = 1 AND Fault = '07' AND Date = '2006/01/01' AND "
                "Alarm = 'MJ' AND CPU = 'MP' AND Description = 'a'") == "1\n");
  addFault(*database, {1, u"05", u"MJ", u"MP", u"2006/01/03", u"d"});
  expectTheGridAsTheStatement(*database, 5);
  database->execute(u"DELETE FROM FaultDisplay WHERE ID = 1");
  EXPECT_EQ(other.run("SELECT ID FROM FaultDisplay"),
            std::string(GetParam().name) == "RealID" ? "2.0\n" : "2\n");
}

constexpr Foreign foreignTables[] = {
    {"AsOurs",
     "ID INTEGER, Fault TEXT, Alarm TEXT, CPU TEXT, Date TEXT, Count INTEGER PRIMARY KEY "
     "AUTOINCREMENT, Description TEXT"},
    {"TextID",
     "ID TEXT, Fault TEXT, Alarm TEXT, CPU TEXT, Date TEXT, Count INTEGER PRIMARY KEY "
     "AUTOINCREMENT, Description TEXT"},
    {"RealID",
     "ID REAL, Fault TEXT, Alarm TEXT, CPU TEXT, Date TEXT, Count INTEGER PRIMARY KEY "
     "AUTOINCREMENT, Description TEXT"},
    {"MemoAndString",
     "ID INTEGER, Fault STRING, Alarm TEXT, CPU TEXT, Date TEXT, Count INTEGER PRIMARY KEY "
     "AUTOINCREMENT, Description MEMO"},
    {"Untyped", "ID, Fault, Alarm, CPU, Date, Count INTEGER PRIMARY KEY AUTOINCREMENT, Description"},
    {"PlainKey",
     "ID INTEGER, Fault TEXT, Alarm TEXT, CPU TEXT, Date TEXT, Count INTEGER PRIMARY KEY, "
     "Description TEXT"},
    {"DescendingKey",
     "ID INTEGER, Fault TEXT, Alarm TEXT, CPU TEXT, Date TEXT, Count INTEGER PRIMARY KEY DESC, "
     "Description TEXT"},
    {"Varchar",
     "ID INT, Fault VARCHAR(2), Alarm VARCHAR(2), CPU VARCHAR(5), Date VARCHAR(20), Count INTEGER "
     "PRIMARY KEY AUTOINCREMENT, Description CLOB"},
};
INSTANTIATE_TEST_SUITE_P(Each, ForeignTable, testing::ValuesIn(foreignTables),
                         [](const auto& run) { return std::string(run.param.name); });

// Its triggers go with the table, and its rows may have other keys.
TEST_F(FaultIndexTest, ATableThatAnotherToolSwapsWhileItIsOpenIsReadAnew) {
  const auto database = open();
  for (const char16_t* date : {u"2006/01/01", u"2006/01/02", u"2006/01/03"})
    addFault(*database, {1, u"01", u"MJ", u"MP", date});
  const auto before = database->openRowList(
      u"SELECT * FROM FaultDisplay WHERE ID = 1" + std::u16string(clauses[2][0]), allColumns);
  OtherTool other(path_);
  EXPECT_EQ(
      other.run("BEGIN; CREATE TABLE other AS SELECT * FROM FaultDisplay WHERE Count > 1 ORDER BY Count DESC;"
                "DROP TABLE FaultDisplay; ALTER TABLE other RENAME TO FaultDisplay; COMMIT"),
      "");
  std::vector<Value> values;
  for (std::size_t i = 0; i < 3; ++i) EXPECT_FALSE(before->fetch(i, values)) << "the row of another key";
  EXPECT_FALSE(before->find(u"2006", 0, {}).has_value());
  expectTheGridAsTheStatement(*database, 2);
  EXPECT_EQ(other.run("UPDATE FaultDisplay SET Date = '2005/01/01' WHERE Count = 3"), "");
  EXPECT_EQ(newestDate(*database), "2006/01/02");
  EXPECT_TRUE(isStored(*database, {1, u"01", u"MJ", u"MP", u"2005/01/01"}));
  expectTheGridAsTheStatement(*database, 2);

  // As our own files have it, but without what marks the index stale.
  EXPECT_EQ(
      other.run("BEGIN; CREATE TABLE other(ID INTEGER, Fault TEXT, Alarm TEXT, CPU TEXT, Date TEXT, Count "
                "INTEGER PRIMARY KEY AUTOINCREMENT, Description TEXT); INSERT INTO other SELECT * FROM "
                "FaultDisplay; DROP TABLE FaultDisplay; ALTER TABLE other RENAME TO FaultDisplay; COMMIT"),
      "");
  expectTheGridAsTheStatement(*database, 2);
  EXPECT_EQ(other.run("UPDATE FaultDisplay SET Date = '2007/01/01' WHERE Count = 3"), "");
  EXPECT_EQ(newestDate(*database), "2007/01/01");
  EXPECT_TRUE(isStored(*database, {1, u"01", u"MJ", u"MP", u"2007/01/01"}));
  expectTheGridAsTheStatement(*database, 2);
}

TEST_F(FaultIndexTest, TriggersThatAreDroppedAreMissed) {
  const auto database = open();
  addFault(*database, {1, u"01", u"MJ", u"MP", u"2006/01/01"});
  OtherTool other(path_);
  EXPECT_EQ(other.run("DROP TRIGGER VordaneFaultUpdated; UPDATE FaultDisplay SET Date = '2007/01/01'"), "");
  EXPECT_TRUE(isStored(*database, {1, u"01", u"MJ", u"MP", u"2007/01/01"}));
  EXPECT_EQ(other.run("SELECT count(*) FROM sqlite_schema WHERE name = 'VordaneFaultUpdated'"), "1\n");
}

// Whatever stands under the names of the index gives way to it.
TEST_F(FaultIndexTest, AnIndexOfAnotherShapeIsMadeAnew) {
  addFault(*open(), {1, u"01", u"MJ", u"MP", u"2006/01/01"});
  for (const char* change :
       {"ALTER TABLE VordaneIndexState DROP COLUMN LastCount",
        "DROP TABLE VordaneFaultIndex; CREATE VIEW VordaneFaultIndex AS SELECT * FROM FaultDisplay",
        "DROP TABLE VordaneFaultIndex; CREATE TABLE vordanefaultindex(ID, Moment, Hash, Count, Kind)",
        "UPDATE VordaneIndexState SET Version = 1"}) {
    EXPECT_EQ(OtherTool(path_).run(change), "") << change;
    const auto database = open();
    EXPECT_TRUE(isStored(*database, {1, u"01", u"MJ", u"MP", u"2006/01/01"})) << change;
    expectTheGridAsTheStatement(*database, 1);
    EXPECT_EQ(OtherTool(path_).run("SELECT Version FROM VordaneIndexState"), "3\n") << change;
  }
}

TEST_F(FaultIndexTest, RowsThatWereWrittenWithTriggersOffAreFound) {
  const auto database = open();
  addFault(*database, {1, u"01", u"MJ", u"MP", u"2006/01/01"});
  addFault(*database, {1, u"01", u"MJ", u"MP", u"2006/01/02"});
  const auto quietly = [&](const char* sql) {
    sqlite3* handle = nullptr;
    sqlite3_open(text::toUtf8(path_).c_str(), &handle);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
    EXPECT_EQ(sqlite3_exec(handle, sql, nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(handle);
  };
  quietly(
      "INSERT INTO FaultDisplay(ID, Fault, Alarm, CPU, Date, Description) VALUES (1, '02', 'MJ', 'MP', "
      "'2006/01/03', 'x')");
  EXPECT_TRUE(isStored(*database, {1, u"02", u"MJ", u"MP", u"2006/01/03"}));
  expectTheGridAsTheStatement(*database, 3);
  // A row of another exchange is never shown as one of this.
  quietly("UPDATE FaultDisplay SET ID = 2 WHERE Count = 2");
  const auto lines = AsTheGrid(*database).listed(clauses[2][0]);
  EXPECT_EQ(lines,
            (std::vector<std::string>{"01|MJ|2006/01/01|MP|x|1|", "gone", "02|MJ|2006/01/03|MP|x|3|"}));
}

// SQLite reads the last two characters of the first plane as unreadable ones, out of UTF-8.
TEST(Utf8File, TakesNoTextThatItWouldChange) {
  EmbeddedUnderTest under;
  const std::u16string path = (under.folder() / "utf8").u16string();
  OtherTool other(path);
  EXPECT_EQ(
      other.run(
          "PRAGMA encoding = 'UTF-8'; CREATE TABLE PBXList(ID INTEGER PRIMARY KEY AUTOINCREMENT, PBXName "
          "TEXT, TimeStamp TEXT, MJ INTEGER, MN INTEGER); CREATE TABLE FaultDisplay(ID INTEGER, Fault "
          "TEXT, Alarm TEXT, CPU TEXT, Date TEXT, Count INTEGER PRIMARY KEY AUTOINCREMENT, Description "
          "TEXT)"),
      "");
  const auto database = under.engine().open(path, false);
  for (const char16_t* text : {u"a\uFFFF", u"\uFFFE", u"\xD800"})
    EXPECT_EQ(database::numberOfError([&] {
                addFault(*database, {1, u"01", u"MJ", u"MP", u"2006", text});
              }),
              3421);
  addFault(*database, {1, u"01", u"MJ", u"MP", u"2006", u"\uFFFD \xD83F\xDFFF"});
  EXPECT_TRUE(isStored(*database, {1, u"01", u"MJ", u"MP", u"2006", u"\uFFFD \xD83F\xDFFF"}));
  expectTheGridAsTheStatement(*database, 1);
}

}  // namespace
}  // namespace vordane::sqlite
