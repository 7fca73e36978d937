// The embedded engine's index of faults: its answers are those of the table, whoever wrote it.
#include <sqlite3.h>

#include <algorithm>
#include <random>

#include "database/contract.h"
#include "database/embedded.h"
#include "platform/sqlite/text_rules.h"
#include "text/utf8.h"

namespace vordane::sqlite {
namespace {

using database::addFault;
using database::column;
using database::Fault;
using database::findSame;
using database::isStored;
using database::Layout;
using database::shown;
using database::Value;

// Another SQLite program: it knows nothing of this system's functions and comparisons.
class OtherTool {
 public:
  explicit OtherTool(const std::u16string& path) { sqlite3_open(text::toUtf8(path).c_str(), &handle_); }
  ~OtherTool() { sqlite3_close(handle_); }
  OtherTool(const OtherTool&) = delete;
  OtherTool& operator=(const OtherTool&) = delete;
  // The first value of each row, one in a line; the error text when it fails.
  std::string run(const char* sql) {
    std::string out;
    char* error = nullptr;
    const auto row = [](void* lines, int, char** values, char**) {
      static_cast<std::string*>(lines)->append(values[0] ? values[0] : "Null").push_back('\n');
      return 0;
    };
    if (sqlite3_exec(handle_, sql, row, &out, &error) != SQLITE_OK) out = error;
    sqlite3_free(error);
    return out;
  }

 private:
  sqlite3* handle_ = nullptr;
};

constexpr const char16_t* columnsOf[5][5] = {{u"Fault", u"Alarm", u"Date", u"Count", u"CPU"},
                                             {u"Alarm", u"Fault", u"Date", u"Count", u"CPU"},
                                             {u"Date", u"Count", u"Fault", u"Alarm", u"CPU"},
                                             {u"CPU", u"Fault", u"Alarm", u"Date", u"Count"},
                                             {u"Description", u"Fault", u"Alarm", u"Date", u"Count"}};
constexpr std::u16string_view clauses[5][2] = {
    {u" Order by [Fault] Asc, [Alarm] Asc, [Date] Asc, [Count] Asc, [CPU] Asc, [Description] Asc",
     u" Order by [Fault] Desc, [Alarm] Desc, [Date] Desc, [Count] Desc, [CPU] Desc, [Description] Desc"},
    {u" Order by [Alarm] Asc, [Fault] Asc, [Date] Asc, [Count] Asc, [CPU] Asc, [Description] Asc",
     u" Order by [Alarm] Desc, [Fault] Desc, [Date] Desc, [Count] Desc, [CPU] Desc, [Description] Desc"},
    {u" Order by [Date] Asc, [Count] Asc, [Fault] Asc, [Alarm] Asc, [CPU] Asc, [Description] Asc",
     u" Order by [Date] Desc, [Count] Desc, [Fault] Desc, [Alarm] Desc, [CPU] Desc, [Description] Desc"},
    {u" Order by [CPU] Asc ,[Fault] Asc, [Alarm] Asc, [Date] Asc, [Count] Asc, [Description] Asc",
     u" Order by [CPU] Desc ,[Fault] Desc, [Alarm] Desc, [Date] Desc, [Count] Desc, [Description] Desc"},
    {u" Order by [Description] Asc, [Fault] Asc, [Alarm] Asc, [Date] Asc, [Count] Asc, [CPU] Asc",
     u" Order by [Description] Desc, [Fault] Desc, [Alarm] Desc, [Date] Desc, [Count] Desc, [CPU] Desc"}};

std::u16string randomText(std::mt19937& random) {
  constexpr std::u16string_view pieces[] = {u"",
                                            u"a",
                                            u"A",
                                            u"b ",
                                            u" b",
                                            u"é",
                                            u"É",
                                            u"ж",
                                            u"Ж",
                                            u"日",
                                            u"\uFFFD",
                                            u"2006/",
                                            u"\xD83D\xDE00",
                                            u"\xD800",
                                            std::u16string_view(u"\0", 1),
                                            u"_",
                                            u"z"};
  std::u16string text;
  for (unsigned i = random() % 3; i > 0; --i) text += pieces[random() % std::size(pieces)];
  return text;
}

int compareValues(const Value& a, const Value& b) {
  const auto *x = std::get_if<std::u16string>(&a), *y = std::get_if<std::u16string>(&b);
  if (x && y) return compareTexts(*x, *y);
  if (x || y) return x ? 1 : -1;
  if (automation::isNull(a) || automation::isNull(b)) return 0;
  const auto m = automation::toLong(a), n = automation::toLong(b);
  return m < n ? -1 : m > n;
}

class FaultIndexTest : public testing::Test {
 protected:
  std::unique_ptr<database::Database> open(bool readOnly = false) {
    return under_.engine().open(path_, readOnly);
  }
  std::vector<std::string> counts(database::Database& database, std::u16string_view clause) {
    const std::u16string_view count[] = {u"Count"};
    const auto rows =
        database.openRowList(u"SELECT * FROM FaultDisplay WHERE ID = 1" + std::u16string(clause), count);
    std::vector<std::string> all;
    std::vector<Value> values;
    for (std::size_t i = 0; i < rows->size(); ++i)
      if (rows->fetch(i, values)) all.push_back(shown(values[0]));
    return all;
  }
  std::string newestDate(database::Database& database) {
    const auto rows = database.openRecordset(u"SELECT * FROM FaultDisplay Order by [Date] Desc");
    return rows->isEmpty() ? "none" : shown(rows->get(u"Date"));
  }

  EmbeddedUnderTest under_;
  std::u16string path_ = under_.make(Layout::faults);
};

TEST_F(FaultIndexTest, TheTenOrdersAreThoseOfTheRules) {
  const auto database = open();
  std::mt19937 random(5);
  const auto rows = database->openRecordset(u"Select * from FaultDisplay");
  for (int i = 0; i < 400; ++i) {
    rows->addNew();
    rows->set(u"ID", std::int16_t(1 + i % 4 / 3));
    for (const char16_t* name : {u"Fault", u"Alarm", u"CPU", u"Date", u"Description"})
      if (random() % 8 != 0) rows->set(name, randomText(random));
    rows->update();
  }
  struct Stored {
    std::array<Value, 5> values;
    Value count;
  };
  for (int first = 0; first < 5; ++first) {
    std::vector<Stored> all;
    for (const auto walk = database->openRecordset(u"Select * from FaultDisplay"); !walk->atEnd();
         walk->moveNext()) {
      if (automation::toLong(walk->get(u"ID")) != 1) continue;
      Stored row;
      for (int i = 0; i < 5; ++i) row.values[static_cast<std::size_t>(i)] = walk->get(columnsOf[first][i]);
      row.count = walk->get(u"Count");
      all.push_back(row);
    }
    std::sort(all.begin(), all.end(), [](const Stored& a, const Stored& b) {
      for (std::size_t i = 0; i < 5; ++i)
        if (const int order = compareValues(a.values[i], b.values[i])) return order < 0;
      return false;
    });
    std::vector<std::string> wanted;
    for (const Stored& row : all) wanted.push_back(shown(row.count));
    ASSERT_EQ(wanted.size(), 300U);
    EXPECT_EQ(counts(*database, clauses[first][0]), wanted) << first;
    EXPECT_EQ(
        column(*database, u"SELECT * FROM FaultDisplay WHERE ID = 1" + std::u16string(clauses[first][0]),
               u"Count"),
        wanted)
        << first;
    std::reverse(wanted.begin(), wanted.end());
    EXPECT_EQ(counts(*database, clauses[first][1]), wanted) << first;
  }
}

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

// An exchange with few of all faults is found through the index, one with most of them by the table.
TEST_F(FaultIndexTest, EqualDescriptionsGoByFaultAlarmDateAndNumber) {
  struct Tied {
    const char16_t *fault, *alarm, *date;
  };
  constexpr Tied tied[] = {{u"02", u"MJ", u"2006/01/01"}, {u"01", u"MN", u"2006/01/01"},
                           {u"01", u"MJ", u"2006/01/02"}, {u"01", u"MJ", u"2006/01/01"},
                           {u"01", u"MJ", u"2006/01/01"}, {u"01", u"MN", u"2006/01/02"}};
  for (const int others : {0, 40}) {
    path_ = under_.make(Layout::faults);
    const auto database = open();
    for (const Tied& fault : tied)
      addFault(*database, {1, fault.fault, fault.alarm, u"MP", fault.date, u"same"});
    for (int i = 0; i < others; ++i) addFault(*database, {2});
    const std::vector<std::string> wanted{"4", "5", "3", "2", "6", "1"};
    EXPECT_EQ(counts(*database, clauses[4][0]), wanted) << others;
    EXPECT_EQ(counts(*database, clauses[4][1]), std::vector(wanted.rbegin(), wanted.rend())) << others;
  }
}

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

TEST_F(FaultIndexTest, ManyFaultsOfOneMinuteAreFoundAndOrdered) {
  const auto database = open();
  database->beginBatch();
  for (int i = 0; i < 2000; ++i)
    addFault(*database, {1, u"01", u"MJ", u"MP", u"2006/01/01 10:00", text::fromUtf8(std::to_string(i))});
  database->endBatch();
  EXPECT_TRUE(isStored(*database, {1, u"01", u"MJ", u"MP", u"2006/01/01 10:00", u"1999"}));
  const auto order = counts(*database, clauses[2][0]);
  ASSERT_EQ(order.size(), 2000U);
  for (std::size_t i = 0; i < order.size(); ++i) ASSERT_EQ(order[i], std::to_string(i + 1));
}

// More descriptions than are ever held at once: with long beginnings in common, the same ones many times
// over, very many alike, and Null.
TEST_F(FaultIndexTest, ThousandsOfDescriptionsAreOrderedInFull) {
  const auto database = open();
  std::mt19937 random(11);
  struct Stored {
    std::u16string description, fault, alarm, date;
    int count;
    bool isNull;
  };
  std::vector<Stored> all;
  const auto rows = database->openRecordset(u"Select * from FaultDisplay");
  database->beginBatch();
  for (int i = 1; i <= 9000; ++i) {
    const std::u16string number = text::fromUtf8(std::to_string(random() % 100000));
    std::u16string description = u"Module group: 01, unit: 02, always the same ";
    const unsigned kind = random() % 8;
    if (kind == 0) description += std::u16string(kind, u'x') + number;
    if (kind == 1) description += u"again " + number.substr(0, 1);
    if (kind == 2) description = (random() % 2 == 0 ? u"LINE \xD83D\xDE00" : u"line \uFFFD") + number;
    if (kind == 3) description = randomText(random);
    Stored row{description,
               random() % 2 == 0 ? u"0A" : u"01",
               random() % 3 == 0 ? u"MJ" : u"mn",
               u"2006/01/01 10:0" + std::u16string(1, char16_t(u'0' + random() % 10)),
               i,
               kind == 7};
    rows->addNew();
    rows->set(u"ID", std::int16_t(1));
    rows->set(u"Fault", row.fault);
    rows->set(u"Alarm", row.alarm);
    rows->set(u"CPU", u"MP   ");
    rows->set(u"Date", row.date);
    if (!row.isNull) rows->set(u"Description", row.description);
    rows->update();
    all.push_back(std::move(row));
  }
  database->endBatch();
  std::sort(all.begin(), all.end(), [](const Stored& a, const Stored& b) {
    if (a.isNull != b.isNull) return a.isNull;
    const int orders[] = {a.isNull ? 0 : compareTexts(a.description, b.description),
                          compareTexts(a.fault, b.fault), compareTexts(a.alarm, b.alarm),
                          compareTexts(a.date, b.date), a.count - b.count};
    for (const int order : orders)
      if (order != 0) return order < 0;
    return false;
  });
  std::vector<std::string> wanted;
  for (const Stored& row : all) wanted.push_back(std::to_string(row.count));
  EXPECT_EQ(counts(*database, clauses[4][0]), wanted);
  std::reverse(wanted.begin(), wanted.end());
  EXPECT_EQ(counts(*database, clauses[4][1]), wanted);
}

// Two exchanges in one table, far apart in it: what lies between belongs to the other one.
TEST_F(FaultIndexTest, DescriptionsOfAnExchangeAmongOthersAreOrdered) {
  const auto database = open();
  database->beginBatch();
  std::vector<std::pair<std::u16string, int>> all;
  for (int i = 1; i <= 30000; ++i) {
    const bool mine = i % 9 == 0;
    const auto description = text::fromUtf8("port " + std::to_string(i * 7919 % 10007));
    addFault(*database, {std::int16_t(mine ? 1 : 2), u"01", u"MJ", u"MP", u"2006/01/01 10:00", description});
    if (mine) all.emplace_back(description, i);
  }
  database->endBatch();
  std::sort(all.begin(), all.end());
  std::vector<std::string> wanted;
  for (const auto& [description, count] : all) wanted.push_back(std::to_string(count));
  EXPECT_EQ(counts(*database, clauses[4][0]), wanted);
}

constexpr std::u16string_view allColumns[] = {u"Fault", u"Alarm", u"Date", u"CPU", u"Description", u"Count"};

// The rows as the grid has them and as the documented statement gives them, a line each.
class AsTheGrid {
 public:
  explicit AsTheGrid(database::Database& database) : database_(database) {}
  std::vector<std::string> listed(std::u16string_view clause) const {
    const auto rows = database_.openRowList(statement(clause), allColumns);
    std::vector<std::string> lines;
    std::vector<Value> values;
    for (std::size_t i = 0; i < rows->size(); ++i)
      lines.push_back(rows->fetch(i, values) ? line([&](std::size_t k) { return values[k]; }) : "gone");
    return lines;
  }
  std::vector<std::string> walked(std::u16string_view clause) const {
    std::vector<std::string> lines;
    for (const auto rows = database_.openRecordset(statement(clause)); !rows->atEnd(); rows->moveNext())
      lines.push_back(line([&](std::size_t k) { return rows->get(allColumns[k]); }));
    return lines;
  }

 private:
  static std::u16string statement(std::u16string_view clause) {
    return u"SELECT * FROM FaultDisplay WHERE ID = 1" + std::u16string(clause);
  }
  template <class Field>
  static std::string line(const Field& field) {
    std::string line;
    for (std::size_t i = 0; i < std::size(allColumns); ++i) line += shown(field(i)) + "|";
    return line;
  }
  database::Database& database_;
};

void expectTheGridAsTheStatement(database::Database& database, std::size_t rows) {
  const AsTheGrid grid(database);
  for (const auto& [up, down] : clauses) {
    const auto wanted = grid.walked(up);
    EXPECT_EQ(wanted.size(), rows);
    EXPECT_EQ(grid.listed(up), wanted);
    EXPECT_EQ(grid.listed(down), grid.walked(down));
    EXPECT_EQ(grid.listed(down), std::vector(wanted.rbegin(), wanted.rend()));
  }
}

// Access gives such numbers where its auto-number is set to random.
TEST_F(FaultIndexTest, FaultsWithNumbersOfAnySizeAndSignAreListed) {
  OtherTool(path_).run(
      "INSERT INTO FaultDisplay(ID, Fault, Alarm, CPU, Date, Description, Count) VALUES "
      "(1, '01', 'MJ', 'MP', '2006/01/01', 'a', -2147483648), (1, '02', 'MN', 'MP', '2006/01/03', 'b', 7), "
      "(1, '03', 'MJ', 'AB', '2006/01/02', 'c', 4294967296), (1, '03', 'MJ', 'AB', '2006/01/02', 'c', 0), "
      "(1, '03', 'MJ', 'AB', '2006/01/02', 'c', -1)");
  const auto database = open();
  EXPECT_EQ(counts(*database, clauses[2][0]),
            (std::vector<std::string>{"-2147483648", "-1", "0", "4294967296", "7"}));
  expectTheGridAsTheStatement(*database, 5);
  EXPECT_TRUE(isStored(*database, {1, u"01", u"MJ", u"MP", u"2006/01/01", u"a"}));
  addFault(*database, {1, u"04", u"MJ", u"MP", u"2006/01/04"});
  EXPECT_EQ(counts(*database, clauses[2][1]).at(0), "4294967297");
  expectTheGridAsTheStatement(*database, 6);
}

// The order of time is kept: a number without a short key, added behind it, makes it void.
TEST_F(FaultIndexTest, ANumberBeyond32BitsIsShownAlsoWhenItComesLater) {
  const auto database = open();
  addFault(*database, {1, u"01", u"MJ", u"MP", u"2006/01/01"});
  EXPECT_EQ(counts(*database, clauses[2][0]), std::vector<std::string>{"1"});
  OtherTool(path_).run("UPDATE sqlite_sequence SET seq = 4294967295 WHERE name = 'FaultDisplay'");
  EXPECT_EQ(counts(*database, clauses[2][0]), std::vector<std::string>{"1"});
  addFault(*database, {1, u"01", u"MJ", u"MP", u"2006/01/02"});
  EXPECT_EQ(counts(*database, clauses[2][0]), (std::vector<std::string>{"1", "4294967296"}));
}

TEST_F(FaultIndexTest, ATableWhoseNewestFaultHasTheNumberZeroIsNotEmpty) {
  OtherTool(path_).run("INSERT INTO FaultDisplay(ID, Fault, Date, Count) VALUES (1, '01', '2006/01/01', 0)");
  const auto database = open();
  EXPECT_EQ(newestDate(*database), "2006/01/01");
  addFault(*database, {1, u"01", u"MJ", u"MP", u"2005/01/01"});
  EXPECT_EQ(newestDate(*open()), "2006/01/01");
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
    EXPECT_EQ(OtherTool(path_).run("SELECT Version FROM VordaneIndexState"), "2\n") << change;
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

TEST(TextRules, OrderGoesByCodePointOfTheFoldedText) {
  EXPECT_EQ(compareTexts(u"ABC  ", u"abc"), 0);
  EXPECT_LT(compareTexts(u"a", u"b"), 0);
  EXPECT_LT(compareTexts(u"\uFFFD", u"\xD83D\xDE00"), 0);  // a pair stands behind the whole plane
  EXPECT_LT(compareTexts(u"\xD800", u"\uE000"), 0);
  EXPECT_LT(compareTexts(u"_", u"Z"), 0);  // 'z' is what 'Z' counts as
  EXPECT_FALSE(equalTexts(u"ａ", u"a"));
  EXPECT_FALSE(equalTexts(u" a", u"a"));
}

TEST(TextRules, TheKeysOrderAsTheTextsDo) {
  std::mt19937 random(9);
  for (int i = 0; i < 20000; ++i) {
    const std::u16string a = randomText(random), b = randomText(random);
    std::string x, y;
    appendSortKey(a, x);
    appendSortKey(b, y);
    const int order = compareTexts(a, b);
    ASSERT_EQ(order < 0, x < y);
    ASSERT_EQ(order == 0, x == y);
    ASSERT_EQ(order == 0, equalTexts(a, b));
  }
}

// The hash is part of the files: it is the same on every system.
TEST(TextRules, TheHashIsFixed) {
  FoldedHash hash;
  hash.addText(u"Fault LINE 0A  ");
  hash.addNull();
  hash.addText(u"");
  FoldedHash same;
  same.addText(u"fault line 0a");
  same.addNull();
  same.addText(u" ");
  EXPECT_EQ(hash.value(), same.value());
  EXPECT_EQ(hash.value(), INT64_C(1967629999871058178));
}

}  // namespace
}  // namespace vordane::sqlite
