// The embedded engine surveys an exchange's faults along its index: what it tells is what the rows say.
#include <sqlite3.h>

#include <map>
#include <random>

#include "database/contract.h"
#include "database/embedded.h"
#include "platform/sqlite/text_rules.h"
#include "text/text.h"
#include "text/utf8.h"

namespace vordane::sqlite {
namespace {

using database::Layout;
using database::Survey;
using database::SurveyedColumns;
using database::Value;

struct Told : Survey::Taker {
  void take(std::size_t position, std::uint32_t kind, std::u16string_view time) override {
    EXPECT_TRUE(rows.try_emplace(position, kind, std::u16string(time)).second) << "told once";
  }
  std::map<std::size_t, std::pair<std::uint32_t, std::u16string>> rows;
};

constexpr std::u16string_view columns[] = {u"Fault", u"Alarm", u"Date", u"CPU", u"Description", u"Count"};
constexpr SurveyedColumns surveyed{{0, 1, 3}, 2};
constexpr std::u16string_view clauses[] = {
    u" Order by [Date] Desc, [Count] Desc, [Fault] Desc, [Alarm] Desc, [CPU] Desc, [Description] Desc",
    u" Order by [Fault] Asc, [Alarm] Asc, [Date] Asc, [Count] Asc, [CPU] Asc, [Description] Asc",
    u" Order by [Description] Asc, [Fault] Asc, [Alarm] Asc, [Date] Asc, [Count] Asc, [CPU] Asc"};

class SurveyTest : public testing::Test {
 protected:
  std::unique_ptr<database::Database> open() { return under_.engine().open(path_, false); }
  std::unique_ptr<database::Database> openWithTwentyFaults() {
    auto database = open();
    for (int i = 0; i < 20; ++i) database::addFault(*database, {1, u"0A", u"MJ", u"MP", u"2026/11/20 10:00"});
    return database;
  }
  static std::unique_ptr<database::RowList> listed(database::Database& database,
                                                   std::u16string_view clause = clauses[0]) {
    return database.openRowList(u"SELECT * FROM FaultDisplay WHERE ID = 1" + std::u16string(clause), columns);
  }
  void other(const std::string& sql) {
    sqlite3* handle = nullptr;
    ASSERT_EQ(sqlite3_open(text::toUtf8(path_).c_str(), &handle), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(handle, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(handle);
  }
  static Told told(database::RowList& rows, std::size_t most) {
    Told told;
    const auto survey = rows.survey(surveyed);
    while (survey->next(most, told)) {
    }
    return told;
  }
  // The same from the rows themselves.
  static Told fromRows(database::RowList& rows) {
    Told told;
    const auto survey = database::surveyRows(rows, surveyed);
    while (survey->next(1000, told)) {
    }
    return told;
  }
  static void expectSame(const Told& index, const Told& rows) {
    ASSERT_EQ(index.rows.size(), rows.rows.size());
    std::map<std::uint32_t, std::uint32_t> kinds;
    for (const auto& [position, row] : index.rows) {
      const auto& other = rows.rows.at(position);
      EXPECT_EQ(row.second, other.second) << position;
      EXPECT_EQ(kinds.try_emplace(row.first, other.first).first->second, other.first) << position;
    }
  }

  EmbeddedUnderTest under_;
  std::u16string path_ = under_.make(Layout::faults);
};

TEST_F(SurveyTest, TellsWhatTheRowsSayInEveryOrderAndInPiecesOfAnySize) {
  const auto database = open();
  std::mt19937 random(7);
  const auto of = [&](std::initializer_list<const char16_t*> choices) {
    return std::u16string(choices.begin()[random() % choices.size()]);
  };
  for (int i = 0; i < 300; ++i)
    database::addFault(*database,
                       {std::int16_t(1 + i % 5 / 4), of({u"01", u"0A", u"0a", u"17 ", u"\x416"}),
                        of({u"MJ", u"mn"}), of({u"MP   ", u"LP 2", u""}),
                        of({u"2026/11/20 10:00", u"2026/11/20 10:01", u"soon", u"", u"2026/11/20 10:00  "}),
                        of({u"x", u"y"}) + std::u16string(random() % 3, u'z')});
  for (const auto clause : clauses) {
    const auto rows = listed(*database, clause);
    ASSERT_EQ(rows->size(), 240U);
    const Told expected = fromRows(*rows);
    for (const std::size_t most : {1, 7, 64, 1000}) expectSame(told(*rows, most), expected);
  }
}

// The times of the rows, newest first, and the survey of some of them are what the rows themselves say.
TEST_F(SurveyTest, TimesAndWhatLiesBetweenTwoOfThemAreThoseOfTheRows) {
  const auto database = open();
  std::mt19937 random(9);
  for (int i = 0; i < 300; ++i) {
    std::u16string time = u"2026/11/20 10:0";
    time += static_cast<char16_t>(u'0' + random() % 10);
    if (random() % 10 == 0) time = random() % 2 == 0 ? u"soon" : u"";
    if (random() % 5 == 0) time += u"  ";
    database::addFault(*database, {std::int16_t(1 + i % 5 / 4), random() % 2 == 0 ? u"0A" : u"01", u"MJ",
                                   u"MP", time, u"x" + std::u16string(random() % 3, u'z')});
  }
  const auto rows = listed(*database);
  using Times = std::vector<std::pair<std::u16string, std::size_t>>;
  const auto timesOf = [](database::TimeWalk& walk, std::size_t most) {
    Times times;
    while (walk.next(most, [&](std::u16string_view time, std::size_t many) {
      if (times.empty() || times.back().first != time) times.emplace_back(time, 0);
      times.back().second += many;
      return true;
    })) {
    }
    return times;
  };
  const Times expected = timesOf(*database::walkTimes(*rows, surveyed.time), 1000);
  EXPECT_EQ(expected.size(), 12U);
  const database::TimesBetween between{u"2026/11/20 10:03", u"2026/11/20 10:06"};
  Told ofRows;
  const auto rowByRow = database::surveyRows(*rows, surveyed, between);
  while (rowByRow->next(1000, ofRows)) {
  }
  EXPECT_GT(ofRows.rows.size(), 50U);
  for (const std::size_t most : {1, 7, 64, 1000}) {
    EXPECT_EQ(timesOf(*rows->times(surveyed.time), most), expected) << most;
    Told told;
    const auto survey = rows->surveyBetween(surveyed, between);
    while (survey->next(most, told)) {
    }
    expectSame(told, ofRows);
  }
}

TEST_F(SurveyTest, RowsThatHaveToBeReadForTheirTimesAreNotReadBeyondALimit) {
  class Many final : public database::RowList {
   public:
    std::size_t size() const override { return 1'000'000; }
    bool fetch(std::size_t, std::vector<Value>& out) override {
      ++fetched;
      out = {std::u16string(u"2026/11/20 10:00")};
      return true;
    }
    std::size_t fetched = 0;
  } many;
  const auto walk = many.times(0);
  const auto take = [](std::u16string_view, std::size_t) { return true; };
  EXPECT_TRUE(walk->next(3000, take));
  EXPECT_LE(many.fetched, 256U) << "nor many of them at once";
  while (walk->next(3000, take)) {
  }
  EXPECT_EQ(many.fetched, 10'000U);
}

TEST(FoldedNeedles, AreFoundWhereverTheyStand) {
  std::mt19937 random(11);
  constexpr std::u16string_view letters = u"aAbBzZ[@жЖ日Ω";
  const auto made = [&](std::size_t length) {
    std::u16string text;
    while (text.size() < length) text += letters[random() % letters.size()];
    return text;
  };
  int found = 0;
  for (int round = 0; round < 20000; ++round) {
    const std::u16string text = made(random() % 20);
    const bool own = round % 2 != 0 && !text.empty();  // which stands in it
    const std::u16string needle =
        text::toLower(own ? text.substr(random() % text.size(), 1 + random() % 9) : made(1 + random() % 3));
    const bool expected = text::toLower(text).find(needle) != std::u16string::npos;
    ASSERT_EQ(FoldedNeedle(needle).isIn(text), expected) << round;
    found += expected ? 1 : 0;
  }
  EXPECT_GT(found, 1000);
}

TEST_F(SurveyTest, NumbersFarApartAreFoundAgain) {
  const auto database = open();
  std::string sql;
  for (const std::uint32_t count : {1U, 5U, 70000U, 4000000000U, 4294967295U})
    sql +=
        "INSERT INTO FaultDisplay(ID, Fault, Alarm, CPU, Date, Description, Count) VALUES (1, '0A', 'MJ', "
        "'MP', "
        "'2026/11/20 10:00', 'x', " +
        std::to_string(count) + ");";
  other(sql);
  const auto rows = listed(*database);
  ASSERT_EQ(rows->size(), 5U);
  expectSame(told(*rows, 2), fromRows(*rows));
}

// Somebody writes between two pieces: what is told stays what the rows were or are, each at most once.
TEST_F(SurveyTest, OthersMayWriteBetweenTwoPieces) {
  const auto database = openWithTwentyFaults();
  const auto rows = listed(*database);
  Told all;
  const auto survey = rows->survey(surveyed);
  EXPECT_TRUE(survey->next(5, all));
  other(
      "DELETE FROM FaultDisplay WHERE Count % 2 = 0; INSERT INTO FaultDisplay(ID, Fault, Alarm, CPU, Date, "
      "Description) VALUES (1, 'FF', 'MJ', 'MP', '2027/01/01 00:00', 'x')");
  while (survey->next(5, all)) {
  }
  EXPECT_GE(all.rows.size(), 10U);
  EXPECT_LE(all.rows.size(), 20U);
  for (const auto& [position, row] : all.rows) EXPECT_EQ(row.second, u"2026/11/20 10:00") << position;
}

TEST_F(SurveyTest, NothingIsLockedBetweenTwoPieces) {
  const auto database = openWithTwentyFaults();
  database::addFault(*database, {1, u"0A", u"MJ", u"MP", u"2026/11/20 10:01"});
  const auto rows = listed(*database);
  Told all;
  const auto survey = rows->survey(surveyed);
  EXPECT_TRUE(survey->next(5, all));
  const auto walk = rows->times(surveyed.time);
  EXPECT_TRUE(walk->next(1, [](std::u16string_view, std::size_t) { return true; }));
  sqlite3* handle = nullptr;
  ASSERT_EQ(sqlite3_open(text::toUtf8(path_).c_str(), &handle), SQLITE_OK);
  // A checkpoint that cuts the log off waits for every reader.
  EXPECT_EQ(sqlite3_exec(handle, "BEGIN EXCLUSIVE; COMMIT; PRAGMA wal_checkpoint(TRUNCATE)", nullptr, nullptr,
                         nullptr),
            SQLITE_OK);
  int log = -1, done = -1;
  EXPECT_EQ(sqlite3_wal_checkpoint_v2(handle, nullptr, SQLITE_CHECKPOINT_TRUNCATE, &log, &done), SQLITE_OK);
  EXPECT_EQ(log, 0);
  sqlite3_close(handle);
}

}  // namespace
}  // namespace vordane::sqlite
