// A long list is there before all of it is read: whatever happens meanwhile, it gives the rows of one that
// was read at once.
#include <algorithm>
#include <limits>
#include <map>
#include <set>

#include "database/fault_index.h"
#include "text/text.h"

namespace vordane::sqlite {
namespace {

using database::Walk;

constexpr std::size_t everything = std::numeric_limits<std::size_t>::max();
constexpr database::SurveyedColumns gridColumns{{0, 1, 3}, 2};

struct ToldTimes : database::Survey::Taker {
  void take(std::size_t position, std::uint32_t, std::u16string_view time) override {
    EXPECT_TRUE(rows.try_emplace(position, time).second) << "told once";
  }
  std::map<std::size_t, std::u16string> rows;
};

class TimeReadingTest : public FaultIndexTest {
 protected:
  using Rows = std::unique_ptr<database::RowList>;

  std::unique_ptr<database::Database> openReading(std::size_t atOnce, bool readOnly = false) {
    Options options;
    options.rowsReadAtOnce = atOnce;
    return makeEngine(startup::databases, options)->open(path_, readOnly);
  }
  static Rows listed(database::Database& database, bool descending = true) {
    return database.openRowList(
        u"SELECT * FROM FaultDisplay WHERE ID = 1" + std::u16string(sqlite::clauses[2][descending ? 1 : 0]),
        allColumns);
  }
  static std::string lineOf(database::RowList& rows, std::size_t position) {
    std::vector<Value> values;
    if (!rows.fetch(position, values)) return "gone";
    std::string line;
    for (const Value& value : values) line += shown(value) + "|";
    return line;
  }
  static std::vector<std::string> linesOf(database::RowList& rows) {
    std::vector<std::string> lines;
    for (std::size_t i = 0; i < rows.size(); ++i) lines.push_back(lineOf(rows, i));
    return lines;
  }
  static std::map<std::size_t, std::u16string> surveyOf(database::RowList& rows) {
    ToldTimes told;
    const auto survey = rows.survey(gridColumns);
    while (survey->next(50, told)) {
    }
    return told.rows;
  }
  static void readToTheEnd(database::RowList& rows) {
    for (int pieces = 0; !rows.isRead(); ++pieces) {
      ASSERT_LT(pieces, 10000);
      rows.readOn();
    }
  }

  std::u16string anyDate() {
    constexpr std::u16string_view dates[] = {u"", u"soon", u"2006/01/02  ", u"06/01/01 10:00"};
    if (random_() % 12 == 0) return std::u16string(dates[random_() % std::size(dates)]);
    return u"2006/01/" + text::fromUtf8(std::to_string(10 + random_() % 20));
  }
  void add(database::Database& to, std::size_t faults = 1) {
    to.beginBatch();
    for (; faults > 0; --faults)
      addFault(to, {std::int16_t(1 + random_() % 7 / 6), u"0A", random_() % 2 == 0 ? u"MJ" : u"MN", u"MP",
                    anyDate(), u"text " + text::fromUtf8(std::to_string(random_() % 40))});
    to.endBatch();
  }
  // Of some fault; the engine keeps its index with it.
  void move(database::Database& in) {
    const auto rows = in.openRecordset(u"Select * from FaultDisplay");
    for (unsigned steps = random_() % 80; steps > 0 && !rows->atEnd(); --steps) rows->moveNext();
    if (rows->atEnd()) return;
    rows->edit();
    rows->set(u"Date", anyDate());
    rows->update();
  }

  std::mt19937 random_{17};
};

// Every step a person can take, with two lists of one moment: one read at once, one as far as it was needed.
TEST_F(TimeReadingTest, GivesTheRowsOfAListThatWasReadAtOnce) {
  for (int round = 0; round < 24; ++round) {
    SCOPED_TRACE(round);
    path_ = under_.make(Layout::faults);
    const auto others = open(), database = openReading(1 + random_() % 12),
               reference = openReading(everything);
    add(*others, 60 + random_() % 200);
    const bool descending = round % 2 == 0;
    const Rows rows = listed(*database, descending), whole = listed(*reference, descending);
    ASSERT_FALSE(rows->isRead());
    ASSERT_TRUE(whole->isRead());
    const std::size_t size = whole->size();
    for (int step = 0; step < 30; ++step) {
      SCOPED_TRACE(step);
      ASSERT_EQ(rows->size(), size);
      const std::size_t position = random_() % size;
      const std::u16string needle = u"text " + text::fromUtf8(std::to_string(random_() % 40));
      switch (random_() % (step < 20 ? 8 : 14)) {
        case 0:
        case 1:
        case 2:
          rows->readOn();
          break;
        case 3:
        case 4:
          add(*others, 1 + random_() % 5);
          break;
        case 5:
          others->execute(u"DELETE FROM FaultDisplay WHERE ID = 2");
          break;
        case 6:
        case 7:
          for (std::size_t i = 0; i < size && i < 12; ++i) ASSERT_EQ(lineOf(*rows, i), lineOf(*whole, i));
          break;
        case 8:
          ASSERT_EQ(lineOf(*rows, position), lineOf(*whole, position));
          break;
        case 9:
          ASSERT_EQ(lineOf(*rows, size - 1), lineOf(*whole, size - 1));
          break;
        case 10:
          ASSERT_EQ(rows->find(needle, position, {}), whole->find(needle, position, {}));
          ASSERT_EQ(rows->find(needle, position, {}, Walk::backwards),
                    whole->find(needle, position, {}, Walk::backwards));
          break;
        case 11: {
          const std::uint32_t asked[] = {static_cast<std::uint32_t>(position / 2),
                                         static_cast<std::uint32_t>(position)};
          std::vector<std::uint32_t> chosen, wanted;
          rows->choose(u"mj", asked, chosen);
          whole->choose(u"mj", asked, wanted);
          ASSERT_EQ(chosen, wanted);
          break;
        }
        case 12:
          ASSERT_EQ(surveyOf(*rows), surveyOf(*whole));
          break;
        default:
          add(*database);  // of its own
      }
    }
    ASSERT_EQ(linesOf(*rows), linesOf(*whole));
    EXPECT_TRUE(rows->isRead());
    // What is known of the exchange from then on.
    add(*database, 3);
    ASSERT_EQ(linesOf(*listed(*database, descending)),
              linesOf(*listed(*openReading(everything), descending)));
  }
}

// Others move faults in time and delete some: none is lost, none is shown twice, and what was read stays.
TEST_F(TimeReadingTest, LosesNoFaultThatOthersMoveAndShowsNoneTwice) {
  for (int round = 0; round < 60; ++round) {
    SCOPED_TRACE(round);
    path_ = under_.make(Layout::faults);
    const auto others = open(), database = openReading(1 + random_() % 12),
               reference = openReading(everything);
    add(*others, 60 + random_() % 200);
    const bool descending = round % 2 == 0;
    const Rows rows = listed(*database, descending), whole = listed(*reference, descending);
    const std::vector<std::string> before = linesOf(*whole);
    OtherTool tool(path_);
    for (int step = 0; step < 25; ++step) {
      switch (random_() % 6) {
        case 0:
          move(*others);
          break;
        case 1:
          if (round % 3 == 0)
            tool.run(
                ("DELETE FROM FaultDisplay WHERE Count % 37 = " + std::to_string(random_() % 37)).c_str());
          break;
        case 2:
          if (round % 3 == 1)
            tool.run(("UPDATE FaultDisplay SET Date = '2006/01/15' WHERE Count % 41 = " +
                      std::to_string(random_() % 41))
                         .c_str());
          break;
        case 3:
          add(*others, 2);
          break;
        default:
          rows->readOn();
      }
    }
    readToTheEnd(*rows);
    ASSERT_EQ(rows->size(), before.size());
    auto mine = linesOf(*rows), wanted = linesOf(*whole);
    // Those that stayed where they were stand in their order.
    std::vector<std::string> kept, keptOfWhole;
    const std::set<std::string> former(before.begin(), before.end());
    for (const auto& line : mine)
      if (former.contains(line)) kept.push_back(line);
    for (const auto& line : wanted)
      if (former.contains(line)) keptOfWhole.push_back(line);
    std::sort(mine.begin(), mine.end());
    std::sort(wanted.begin(), wanted.end());
    ASSERT_EQ(mine, wanted);
    if (round % 3 == 0) continue;
    ASSERT_EQ(std::set(kept.begin(), kept.end()), std::set(keptOfWhole.begin(), keptOfWhole.end()));
  }
}

TEST_F(TimeReadingTest, WhatWasReadStaysInItsPlace) {
  const auto others = open(), database = openReading(10);
  for (int i = 0; i < 100; ++i)
    addFault(*others, {1, u"0A", u"MJ", u"MP", u"2006/01/" + text::fromUtf8(std::to_string(100 + i))});
  const Rows rows = listed(*database, false);
  EXPECT_EQ(lineOf(*rows, 3), "0A|MJ|2006/01/103|MP|x|4|");
  OtherTool tool(path_);
  EXPECT_EQ(tool.run("UPDATE FaultDisplay SET Date = '2006/02/01' WHERE Count = 4"), "");  // behind all
  EXPECT_EQ(tool.run("UPDATE FaultDisplay SET Date = '2005' WHERE Count = 60"), "");       // before all
  EXPECT_EQ(tool.run("DELETE FROM FaultDisplay WHERE Count IN (7, 80)"), "");
  readToTheEnd(*rows);
  ASSERT_EQ(rows->size(), 100U);
  EXPECT_EQ(lineOf(*rows, 3), "0A|MJ|2006/02/01|MP|x|4|");
  EXPECT_EQ(lineOf(*rows, 6), "gone");
  EXPECT_EQ(lineOf(*rows, 58), "0A|MJ|2006/01/158|MP|x|59|");
  EXPECT_EQ(lineOf(*rows, 59), "0A|MJ|2006/01/160|MP|x|61|");
  EXPECT_EQ(lineOf(*rows, 97), "0A|MJ|2006/01/199|MP|x|100|");
  EXPECT_EQ(lineOf(*rows, 98), "0A|MJ|2005|MP|x|60|") << "found where it is now";
  EXPECT_EQ(lineOf(*rows, 99), "gone");
  EXPECT_EQ(rows->find(u"2006/02/01", 0, {}), 3U);
  EXPECT_EQ(rows->find(u"nowhere", 99, {}, Walk::backwards), std::nullopt);
}

TEST_F(TimeReadingTest, ReadsNoMoreThanIsAskedFor) {
  const auto database = openReading(10);
  for (int i = 0; i < 100; ++i)
    addFault(*database, {1, u"0A", u"MJ", u"MP", u"2006/01/" + text::fromUtf8(std::to_string(100 + i))});
  const Rows rows = listed(*openReading(10));
  EXPECT_EQ(rows->size(), 100U);
  int pieces = 0;
  for (; !rows->isRead(); ++pieces) rows->readOn();
  EXPECT_EQ(pieces, 3);
  EXPECT_EQ(lineOf(*rows, 99), "0A|MJ|2006/01/100|MP|x|1|");
  rows->readOn();  // nothing is left to do
  EXPECT_EQ(rows->size(), 100U);
}

// Own changes find a list that is read: it is as if it had been so before.
TEST_F(TimeReadingTest, OwnChangesComeAfterAllIsRead) {
  const auto database = openReading(5), reference = openReading(everything);
  add(*database, 80);
  const Rows rows = listed(*database), whole = listed(*reference);
  ASSERT_FALSE(rows->isRead());
  move(*database);
  EXPECT_TRUE(rows->isRead());
  EXPECT_EQ(linesOf(*rows), linesOf(*whole));
  const Rows again = listed(*database), wholeAgain = listed(*reference);
  ASSERT_FALSE(again->isRead());
  database->execute(u"DELETE FROM FaultDisplay WHERE ID = 1");
  EXPECT_EQ(linesOf(*again), linesOf(*wholeAgain)) << "gone, each in its place";
}

// What is not saved yet may be taken back.
TEST_F(TimeReadingTest, InsideABatchAListIsReadAtOnce) {
  const auto database = openReading(5);
  database->beginBatch();
  for (int i = 0; i < 50; ++i) addFault(*database, {1, u"0A", u"MJ", u"MP", anyDate()});
  EXPECT_TRUE(listed(*database)->isRead());
  database->checkpoint();
  EXPECT_TRUE(listed(*database)->isRead());
  database->endBatch();
}

TEST_F(TimeReadingTest, ShortListsAndOtherOrdersAreReadAtOnce) {
  const auto database = openReading(50);
  for (int i = 0; i < 50; ++i) addFault(*database, {1, u"0A", u"MJ", u"MP", anyDate()});
  EXPECT_TRUE(listed(*database)->isRead());
  addFault(*database, {1, u"0A", u"MJ", u"MP", u"2006/01/01"});
  for (const int column : {0, 1, 3, 4})
    EXPECT_TRUE(database
                    ->openRowList(u"SELECT * FROM FaultDisplay WHERE ID = 1" +
                                      std::u16string(sqlite::clauses[column][0]),
                                  allColumns)
                    ->isRead());
  EXPECT_FALSE(listed(*database)->isRead());
  expectTheGridAsTheStatement(*database, 51);
}

// A person's list that was read to its end is not read again.
TEST_F(TimeReadingTest, AnExchangeThatWasReadIsKnown) {
  const auto database = openReading(5);
  add(*database, 80);
  readToTheEnd(*listed(*database));
  EXPECT_TRUE(listed(*database)->isRead());
  EXPECT_TRUE(listed(*database, false)->isRead());
  addFault(*database, {1, u"0A", u"MJ", u"MP", u"z2099/01/01"});
  const Rows rows = listed(*database);
  EXPECT_TRUE(rows->isRead());
  EXPECT_EQ(lineOf(*rows, 0).substr(0, 17), "0A|MJ|z2099/01/01");
  addFault(*open(), {1, u"0A", u"MJ", u"MP", u"z2099/01/02"});
  EXPECT_FALSE(listed(*database)->isRead());
}

TEST_F(TimeReadingTest, ManyFaultsOfOneMinuteAreReadTogether) {
  const auto database = openReading(5);
  for (int i = 0; i < 90; ++i)
    addFault(*database, {1, u"0A", u"MJ", u"MP", i < 30 ? u"2006/01/01" : u"2006/01/02"});
  const Rows rows = listed(*openReading(5));
  EXPECT_FALSE(rows->isRead());
  for (std::size_t i = 0; i < 60; ++i)
    ASSERT_EQ(lineOf(*rows, i), "0A|MJ|2006/01/02|MP|x|" + std::to_string(90 - i) + "|");
  EXPECT_FALSE(rows->isRead());
  readToTheEnd(*rows);
  EXPECT_EQ(lineOf(*rows, 89), "0A|MJ|2006/01/01|MP|x|1|");
}

TEST_F(TimeReadingTest, NothingIsLockedBetweenTwoPieces) {
  const auto database = openReading(5);
  add(*database, 80);
  const Rows rows = listed(*openReading(5));
  rows->readOn();
  ASSERT_FALSE(rows->isRead());
  sqlite3* handle = nullptr;
  ASSERT_EQ(sqlite3_open(text::toUtf8(path_).c_str(), &handle), SQLITE_OK);
  EXPECT_EQ(sqlite3_exec(handle, "BEGIN EXCLUSIVE; COMMIT", nullptr, nullptr, nullptr), SQLITE_OK);
  int log = -1, done = -1;  // cutting the log off waits for every reader
  EXPECT_EQ(sqlite3_wal_checkpoint_v2(handle, nullptr, SQLITE_CHECKPOINT_TRUNCATE, &log, &done), SQLITE_OK);
  EXPECT_EQ(log, 0);
  sqlite3_close(handle);
}

// The index of a file that can't be written is stale after the first rows: the table alone knows the rest.
TEST_F(TimeReadingTest, AStaleIndexInAFileThatIsOnlyReadLeavesTheTable) {
  add(*open(), 120);
  const auto database = openReading(7, true), reference = openReading(everything);
  for (const bool descending : {true, false}) {
    const Rows rows = listed(*database, descending), whole = listed(*reference, descending);
    ASSERT_FALSE(rows->isRead());
    OtherTool(path_).run(
        "UPDATE FaultDisplay SET CPU = 'LP 1' WHERE Count % 3 = 0; INSERT INTO FaultDisplay(ID, Fault, Date) "
        "VALUES (1, 'FF', '2006/01/01')");
    rows->readOn();
    EXPECT_TRUE(rows->isRead());
    EXPECT_EQ(linesOf(*rows), linesOf(*whole));
    listed(*open());  // makes the index anew
  }
}

TEST_F(TimeReadingTest, ATableThatIsMadeAnewLeavesNoRowOfAnotherKey) {
  const auto database = openReading(5);
  for (int i = 0; i < 60; ++i) addFault(*database, {1, u"0A", u"MJ", u"MP", anyDate()});
  const Rows rows = listed(*database);
  EXPECT_EQ(
      OtherTool(path_).run(
          "BEGIN; CREATE TABLE other(ID INTEGER, Fault TEXT, Alarm TEXT, CPU TEXT, Date TEXT, "
          "Count INTEGER PRIMARY KEY AUTOINCREMENT, Description TEXT); INSERT INTO other(ID, Fault, Date) "
          "SELECT ID, Fault, Date FROM FaultDisplay ORDER BY Count DESC; DROP TABLE FaultDisplay; "
          "ALTER TABLE other RENAME TO FaultDisplay; COMMIT"),
      "");
  readToTheEnd(*rows);
  EXPECT_EQ(rows->size(), 60U);
  for (const auto& line : linesOf(*rows)) ASSERT_EQ(line, "gone");
  expectTheGridAsTheStatement(*database, 60);
}

// A count that is not that of the rows: the list has its length when all is read, and the count is made anew.
TEST_F(TimeReadingTest, WrongCountsAreFoundAndMendedOrDoneWithout) {
  for (const bool readOnly : {false, true})
    for (const char* faults : {"61", "20", "9000000000000000000", "-3", "0", "5000"}) {
      SCOPED_TRACE(faults);
      path_ = under_.make(Layout::faults);
      {
        const auto database = open();
        for (int i = 0; i < 60; ++i) addFault(*database, {1, u"0A", u"MJ", u"MP", anyDate()});
        OtherTool(path_).run("INSERT INTO FaultDisplay(ID, Fault, Count) VALUES (2, '01', 6000)");
        listed(*database);
      }
      ASSERT_EQ(
          OtherTool(path_).run(
              ("UPDATE VordaneFaultCounts SET Faults = " + std::string(faults) + " WHERE ID = 1").c_str()),
          "");
      const auto database = openReading(10, readOnly);
      const Rows rows = listed(*database);
      EXPECT_LE(rows->size(), 6000U) << "more can't be";
      readToTheEnd(*rows);
      EXPECT_EQ(rows->size(), 60U);
      const auto wanted = linesOf(*listed(*openReading(everything)));
      EXPECT_EQ(linesOf(*rows), wanted);
      addFault(*open(), {2});  // so that nothing is remembered
      const Rows again = listed(*database);
      EXPECT_EQ(again->size(), 60U);
      EXPECT_EQ(linesOf(*again), wanted);
    }
}

TEST_F(TimeReadingTest, AWrongCountIsCountedAgain) {
  const auto database = openReading(10);
  for (int i = 0; i < 60; ++i) addFault(*database, {1, u"0A", u"MJ", u"MP", anyDate()});
  ASSERT_EQ(OtherTool(path_).run("UPDATE VordaneFaultCounts SET Faults = 40"), "");
  EXPECT_EQ(listed(*database)->size(), 40U) << "as long as it is not read";
  readToTheEnd(*listed(*database));
  addFault(*database, {2});
  EXPECT_EQ(OtherTool(path_).run("SELECT ID || ' ' || Faults FROM VordaneFaultCounts ORDER BY 1"),
            "1 60\n2 1\n");
  addFault(*open(), {2});
  const Rows rows = listed(*database);
  EXPECT_FALSE(rows->isRead());
  EXPECT_EQ(rows->size(), 60U);
}

TEST_F(TimeReadingTest, NumbersThatTheIndexCannotHoldAreListedByTheTable) {
  OtherTool(path_).run(
      "INSERT INTO FaultDisplay(ID, Fault, Alarm, CPU, Date, Description, Count) VALUES "
      "(1, '01', 'MJ', 'MP', '2006/01/01', 'a', -5), (1, '02', 'MN', 'MP', '2006/01/03', 'b', 7), "
      "(1, '03', 'MJ', 'AB', '2006/01/02', 'c', 4294967296), (1, '03', 'MJ', 'AB', '2006/01/02', 'c', 0)");
  const auto database = openReading(1);
  expectTheGridAsTheStatement(*database, 4);
}

// Where there is no log beside the file a writer keeps readers out for a while.
TEST_F(TimeReadingTest, APieceThatFailedIsReadLater) {
  Options options;
  options.rowsReadAtOnce = 6;
  options.lockWaitMilliseconds = 0;
  options.onNetwork = [](std::u16string_view) { return true; };
  const auto database = makeEngine(startup::databases, options)->open(path_, false);
  add(*database, 80);
  const auto wanted = AsTheGrid(*database).walked(sqlite::clauses[2][1]);
  const Rows rows = listed(*database);
  {
    OtherTool writer(path_);
    ASSERT_EQ(writer.run("BEGIN EXCLUSIVE"), "");
    EXPECT_EQ(database::numberOfError([&] { rows->readOn(); }), 3260);
    EXPECT_FALSE(rows->isRead());
  }
  readToTheEnd(*rows);
  EXPECT_EQ(linesOf(*rows), wanted);
}

}  // namespace
}  // namespace vordane::sqlite
