// The embedded engine's index of faults: its answers are those of the table after each change of one's own.
#include "database/fault_index.h"
#include "store/statements.h"

namespace vordane::sqlite {
namespace {

// What an opened database knows of an exchange it has shown before agrees with what a newly opened one reads,
// whoever added, changed or deleted faults in between, in whatever order of time, and whether it lasted.
TEST_F(FaultIndexTest, AnExchangeShownAgainHasTheRowsThatAreThere) {
  const auto database = open(), besides = open();
  OtherTool other(path_);
  std::mt19937 random(21);
  const auto date = [&] { return u"2006/01/0" + std::u16string(1, char16_t(u'1' + random() % 8)); };
  const auto add = [&](database::Database& to) {
    addFault(to, {std::int16_t(1 + random() % 5 / 4), u"01", u"MJ", u"MP", date()});
  };
  for (int i = 0; i < 600; ++i) {
    SCOPED_TRACE(i);
    switch (random() % 12) {
      case 0:
        add(*besides);
        break;
      case 1:
        ASSERT_EQ(other.run("UPDATE FaultDisplay SET Date = '2006/01/09' WHERE Count % 17 = 3"), "");
        break;
      case 2: {
        const auto rows = database->openRecordset(u"Select * from FaultDisplay");
        if (rows->atEnd()) break;
        rows->edit();
        rows->set(u"Date", date());
        rows->update();
        break;
      }
      case 3:
        if (random() % 8 == 0) database->execute(u"DELETE FROM FaultDisplay WHERE ID = 1");
        break;
      case 4: {
        database->beginBatch();
        for (unsigned more = random() % 5; more > 0; --more) add(*database);
        ASSERT_EQ(counts(*database, clauses[2][0]).size(), counts(*database, clauses[0][0]).size());
        database->endBatch();
        break;
      }
      default:
        addFault(*database,
                 {1, u"01", u"MJ", u"MP", u"2006/02/" + text::fromUtf8(std::to_string(10 + i / 30))});
    }
    const auto wanted = counts(*open(), clauses[2][0]);
    ASSERT_EQ(counts(*database, clauses[2][0]), wanted);
    ASSERT_EQ(counts(*database, clauses[2][1]), std::vector(wanted.rbegin(), wanted.rend()));
  }
}

TEST_F(FaultIndexTest, RowsThatAreShownStayAsTheyWereWhenMoreAreAdded) {
  const auto database = open();
  const std::u16string_view count[] = {u"Count"};
  const std::u16string statement = u"SELECT * FROM FaultDisplay WHERE ID = 1" + std::u16string(clauses[2][1]);
  const auto first = [&](database::RowList& rows) {
    std::vector<Value> values;
    return rows.fetch(0, values) ? shown(values[0]) : "none";
  };
  addFault(*database, {1, u"01", u"MJ", u"MP", u"2006/01/01"});
  const auto before = database->openRowList(statement, count);
  addFault(*database, {1, u"01", u"MJ", u"MP", u"2006/01/02"});
  const auto after = database->openRowList(statement, count);
  addFault(*database, {1, u"01", u"MJ", u"MP", u"2006/01/03"});
  const auto last = database->openRowList(statement, count);
  EXPECT_EQ(before->size(), 1U);
  EXPECT_EQ(after->size(), 2U);
  EXPECT_EQ(last->size(), 3U);
  EXPECT_EQ(first(*before), "1");
  EXPECT_EQ(first(*after), "2");
  EXPECT_EQ(first(*last), "3");
}

TEST_F(FaultIndexTest, ATextIsLookedForInNumbersAndFlagsToo) {
  const auto database = open();
  for (int i = 0; i < 12; ++i) addFault(*database, {1, u"01", u"MJ", u"MP", u"2006/01/01"});
  addExchange(*database, u"7");
  const std::u16string_view count[] = {u"Count"}, flag[] = {u"MN"};
  const auto rows = database->openRowList(
      u"SELECT * FROM FaultDisplay WHERE ID = 1" + std::u16string(clauses[2][0]), count);
  EXPECT_EQ(rows->find(u"1", 1, {}), 9U) << "10";
  EXPECT_EQ(rows->find(u"12", 0, {}), 11U);
  EXPECT_EQ(rows->find(u"-1", 0, {}), std::nullopt);
  const auto exchanges = database->openRowList(store::exchangesNewestFirst, flag);
  EXPECT_EQ(exchanges->find(u"false", 0, {}), 0U);
  EXPECT_EQ(exchanges->find(u"true", 0, {}), std::nullopt);
}

// While rows are read together, they are those of one moment.
TEST_F(FaultIndexTest, RowsReadTogetherAreOfOneMoment) {
  const auto database = open(), besides = open();
  for (int i = 0; i < 3; ++i) addFault(*database, {1, u"01", u"MJ", u"MP", u"2006/01/01"});
  const std::u16string_view count[] = {u"Count"};
  const auto rows = database->openRowList(
      u"SELECT * FROM FaultDisplay WHERE ID = 1" + std::u16string(clauses[2][0]), count);
  std::vector<Value> row;
  auto together = rows->readTogether();
  ASSERT_TRUE(rows->fetch(0, row));
  OtherTool(path_).run("DELETE FROM FaultDisplay WHERE Count = 2");
  EXPECT_TRUE(rows->fetch(1, row));
  together.reset();
  EXPECT_FALSE(rows->fetch(1, row));
  EXPECT_TRUE(rows->fetch(2, row));
  addFault(*database, {1, u"02", u"MJ", u"MP", u"2006/01/01"});
}

TEST_F(FaultIndexTest, LongStepsTellHowFarTheyAre) {
  using Steps = std::vector<std::pair<std::size_t, std::size_t>>;
  const auto database = open();
  database->beginBatch();
  for (int i = 0; i < 2100; ++i) addFault(*database, {1, u"01", u"MJ", u"MP", u"2006/01/01"});
  database->endBatch();
  const std::u16string_view count[] = {u"Count"};
  const auto rows = database->openRowList(
      u"SELECT * FROM FaultDisplay WHERE ID = 1" + std::u16string(clauses[2][0]), count);
  std::vector<std::size_t> looked;
  EXPECT_EQ(rows->find(u"nowhere", 0, [&](std::size_t done) { looked.push_back(done); }), std::nullopt);
  EXPECT_EQ(looked, (std::vector<std::size_t>{1023, 2047}));
  EXPECT_EQ(rows->find(u"nowhere", 0, {}), std::nullopt);
  Steps steps;  // each as often as the engine asks for a sign of life
  database->setProgress([&](std::size_t done, std::size_t of) {
    if (of > 0 && (steps.empty() || steps.back().first != done)) steps.emplace_back(done, of);
  });
  database->openRowList(u"SELECT * FROM FaultDisplay WHERE ID = 1" + std::u16string(clauses[4][0]), count);
  ASSERT_FALSE(steps.empty());
  EXPECT_EQ(steps.front(), std::pair(std::size_t{1024}, std::size_t{2100}));
  steps.clear();
  database->execute(u"DELETE FROM FaultDisplay WHERE ID = 1");
  EXPECT_EQ(steps, (Steps{{0, 2100}, {1024, 2100}, {2048, 2100}}));
}

// There is room behind what is kept; what is shown must not grow into it.
TEST_F(FaultIndexTest, RowsThatAreShownStayAlsoWhereThereIsRoomForMore) {
  const auto database = open();
  const std::u16string_view count[] = {u"Count"};
  const std::u16string statement = u"SELECT * FROM FaultDisplay WHERE ID = 1" + std::u16string(clauses[2][1]);
  const auto add = [&] { addFault(*database, {1, u"01", u"MJ", u"MP", u"2006/01/01"}); };
  for (int i = 0; i < 64; ++i) add();
  database->openRowList(statement, count);
  add();
  const auto shownRows = database->openRowList(statement, count);
  add();
  const auto more = database->openRowList(statement, count);
  EXPECT_EQ(shownRows->size(), 65U);
  EXPECT_EQ(more->size(), 66U);
  std::vector<Value> values;
  ASSERT_TRUE(shownRows->fetch(0, values));
  EXPECT_EQ(shown(values[0]), "65");
}

// What one connection keeps of an exchange's order, after each kind of change of its own.
TEST_F(FaultIndexTest, AnOlderFaultOfOnesOwnTakesItsPlace) {
  const auto database = open();
  addFault(*database, {1, u"01", u"MJ", u"MP", u"2006/01/02"});
  EXPECT_EQ(counts(*database, clauses[2][0]), std::vector<std::string>{"1"});
  addFault(*database, {1, u"01", u"MJ", u"MP", u"2006/01/01"});
  EXPECT_EQ(counts(*database, clauses[2][0]), (std::vector<std::string>{"2", "1"}));
}

TEST_F(FaultIndexTest, AChangeOfOnesOwnMovesTheFault) {
  const auto database = open();
  for (const char16_t* date : {u"06/01/01", u"06/01/02", u"2006/01/03"})
    addFault(*database, {1, u"01", u"MJ", u"MP", date});
  EXPECT_EQ(counts(*database, clauses[2][0]), (std::vector<std::string>{"1", "2", "3"}));
  const auto rows = database->openRecordset(u"Select * from FaultDisplay");
  rows->edit();
  rows->set(u"Date", std::u16string(u"2006/01/04"));
  rows->update();
  rows->close();
  EXPECT_EQ(counts(*database, clauses[2][0]), (std::vector<std::string>{"2", "3", "1"}));
}

TEST_F(FaultIndexTest, ADeletionOfOnesOwnLeavesNothingToShow) {
  const auto database = open();
  addFault(*database, {1, u"01", u"MJ", u"MP", u"2006/01/01"});
  const std::u16string_view count[] = {u"Count"};
  const std::u16string statement = u"SELECT * FROM FaultDisplay WHERE ID = 1" + std::u16string(clauses[2][0]);
  EXPECT_EQ(database->openRowList(statement, count)->size(), 1U);
  database->execute(u"DELETE FROM FaultDisplay WHERE ID = 1");
  EXPECT_EQ(database->openRowList(statement, count)->size(), 0U);
  addFault(*database, {1, u"01", u"MJ", u"MP", u"2006/01/02"});
  EXPECT_EQ(counts(*database, clauses[2][0]), std::vector<std::string>{"2"});
}

TEST_F(FaultIndexTest, TheNewestOfSeveralExchangesThatAreLeft) {
  for (const std::int16_t newest : {1, 2, 3}) {
    path_ = under_.make(Layout::faults);
    const auto database = open();
    for (std::int16_t id = 1; id <= 4; ++id)
      addFault(*database, {id, u"01", u"MJ", u"MP",
                           id == 4        ? u"2006/01/09"
                           : id == newest ? u"2006/01/05"
                                          : u"2006/01/01"});
    EXPECT_EQ(newestDate(*database), "2006/01/09");
    database->execute(u"DELETE FROM FaultDisplay WHERE ID = 4");
    EXPECT_EQ(newestDate(*database), "2006/01/05") << newest;
    EXPECT_EQ(newestDate(*open()), "2006/01/05") << newest;
  }
}

TEST_F(FaultIndexTest, OwnChangesLeaveTheIndexGood) {
  const auto database = open();
  addFault(*database, {1});
  const OtherTool other(path_);
  EXPECT_EQ(OtherTool(path_).run("SELECT Stale FROM VordaneIndexState"), "0\n");
  database->execute(u"DELETE FROM FaultDisplay WHERE ID = 1");
  EXPECT_EQ(OtherTool(path_).run("SELECT Stale FROM VordaneIndexState"), "0\n");
  EXPECT_EQ(OtherTool(path_).run("SELECT count(*) FROM VordaneFaultIndex"), "0\n");
}

TEST_F(FaultIndexTest, AReadOnlyFileWithoutIndexGivesTheSameAnswers) {
  OtherTool other(path_);
  other.run(
      "INSERT INTO FaultDisplay(ID, Fault, Alarm, CPU, Date, Description) VALUES "
      "(1, '01', 'MJ', 'MP', '2006/01/01', 'a'), (1, '01', 'MJ', 'MP', '2006/01/03', 'b'), "
      "(1, '01', 'MJ', 'MP', '2006/01/02', 'c')");
  const auto database = open(true);
  EXPECT_TRUE(isStored(*database, {1, u"01", u"mj", u"MP ", u"2006/01/02", u"C"}));
  EXPECT_FALSE(isStored(*database, {1, u"01", u"mj", u"MP ", u"2006/01/02", u"D"}));
  EXPECT_EQ(newestDate(*database), "2006/01/03");
  EXPECT_EQ(counts(*database, clauses[2][1]), (std::vector<std::string>{"2", "3", "1"}));
  EXPECT_EQ(other.run("SELECT count(*) FROM sqlite_schema WHERE name LIKE 'Vordane%'"), "0\n");
}

TEST_F(FaultIndexTest, TheNewestFaultFollowsAdditionsAndDeletions) {
  const auto database = open();
  EXPECT_EQ(newestDate(*database), "none");
  database->beginBatch();
  addFault(*database, {1, u"01", u"MJ", u"MP", u"2006/01/02"});
  EXPECT_EQ(newestDate(*database), "2006/01/02");
  addFault(*database, {2, u"01", u"MJ", u"MP", u"2006/01/05"});
  addFault(*database, {1, u"01", u"MJ", u"MP", u"2006/01/03"});
  database->endBatch();
  EXPECT_EQ(newestDate(*open(true)), "2006/01/05");
  database->execute(u"DELETE FROM FaultDisplay WHERE ID = 2");
  EXPECT_EQ(newestDate(*database), "2006/01/03");
  database->execute(u"DELETE FROM FaultDisplay WHERE ID = 1");
  EXPECT_EQ(newestDate(*database), "none");
}

TEST_F(FaultIndexTest, ARowListNeedsItsDatabaseNoLonger) {
  auto database = open();
  addFault(*database, {1});
  const std::u16string_view count[] = {u"Count"};
  const auto rows = database->openRowList(
      u"SELECT * FROM FaultDisplay WHERE ID = 1" + std::u16string(clauses[0][0]), count);
  const auto recordset = database->openRecordset(u"Select * from FaultDisplay");
  database.reset();
  std::vector<Value> values;
  EXPECT_TRUE(rows->fetch(0, values));
  EXPECT_EQ(recordset->recordCount(), 1);
}

}  // namespace
}  // namespace vordane::sqlite
