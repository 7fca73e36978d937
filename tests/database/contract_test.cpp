#include "database/contract.h"

#include <filesystem>
#include <map>

#include "text/utf8.h"

namespace vordane::database {

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(DatabaseContract);

std::string shown(const Value& value) {
  if (automation::isNull(value)) return "Null";
  return text::toUtf8(automation::toText(value));
}

std::vector<std::string> column(Database& database, std::u16string_view statement, std::u16string_view name) {
  std::vector<std::string> values;
  const auto rows = database.openRecordset(statement);
  for (; !rows->atEnd(); rows->moveNext()) values.push_back(shown(rows->get(name)));
  return values;
}

int numberOfError(const std::function<void()>& step) {
  try {
    step();
  } catch (const DatabaseError& error) {
    return error.number();
  }
  return 0;
}

void addExchange(Database& database, std::u16string_view name, std::u16string_view time) {
  const auto rows = database.openRecordset(u"Select * FROM PBXList");
  rows->addNew();
  rows->set(u"PBXName", std::u16string(name));
  rows->set(u"TimeStamp", std::u16string(time));
  rows->update();
}

void addFault(Database& database, const Fault& fault) {
  const auto rows = database.openRecordset(u"Select * from FaultDisplay");
  rows->addNew();
  rows->set(u"ID", fault.id);
  rows->set(u"Fault", fault.fault);
  rows->set(u"Alarm", fault.alarm);
  rows->set(u"CPU", fault.cpu);
  rows->set(u"Date", fault.date);
  rows->set(u"Description", fault.description);
  rows->update();
}

std::u16string findSame(const Fault& fault) {
  return u"Select * FROM FaultDisplay WHERE ID = " + text::fromUtf8(std::to_string(fault.id)) +
         u" AND Fault = '" + fault.fault + u"' AND CPU = '" + fault.cpu + u"' AND Alarm = '" + fault.alarm +
         u"' AND Date = '" + fault.date + u"' AND Description = \"" + fault.description + u"\"";
}

bool isStored(Database& database, const Fault& fault) {
  return database.openRecordset(findSame(fault))->recordCount() > 0;
}

namespace {

const std::u16string byName = u"Select * FROM PBXList WHERE PBXName = ";
std::u16string named(const std::u16string& name) {
  return byName + u"\"" + name + u"\"";
}

TEST_P(DatabaseContract, AMissingFileIsNotCreated) {
  const std::u16string path = under_->make(Layout::faults) + u"-missing";
  EXPECT_EQ(numberOfError([&] { engine().open(path, false); }), 3024);
  EXPECT_EQ(numberOfError([&] { engine().open(path, false); }), 3024);
}

TEST_P(DatabaseContract, AnEmptyTableHasNoRecord) {
  const auto database = open(Layout::faults);
  const auto rows = database->openRecordset(u"Select * FROM PBXList");
  EXPECT_TRUE(rows->atEnd());
  EXPECT_TRUE(rows->isEmpty());
  EXPECT_EQ(rows->recordCount(), 0);
  EXPECT_EQ(numberOfError([&] { rows->get(u"PBXName"); }), 3021);
  EXPECT_EQ(numberOfError([&] { rows->edit(); }), 3021);
}

TEST_P(DatabaseContract, AnAddedExchangeIsFoundByName) {
  const auto database = open(Layout::faults);
  addExchange(*database, u"PBX-1");
  const auto rows = database->openRecordset(named(u"PBX-1"));
  EXPECT_EQ(rows->recordCount(), 1);
  EXPECT_FALSE(rows->isEmpty());
  EXPECT_EQ(shown(rows->get(u"ID")), "1");
  EXPECT_EQ(shown(rows->get(u"PBXName")), "PBX-1");
  EXPECT_EQ(shown(rows->get(u"TimeStamp")), "2006-11-27 10:15:00");
  EXPECT_TRUE(rows->isDate(u"TimeStamp"));
  EXPECT_FALSE(rows->isDate(u"PBXName"));
  EXPECT_EQ(rows->get(u"MJ"), Value(false));
  EXPECT_EQ(database->openRecordset(named(u"PBX-2"))->recordCount(), 0);
}

TEST_P(DatabaseContract, ColumnNamesIgnoreCaseAndUnknownOnesFail) {
  const auto database = open(Layout::faults);
  addExchange(*database, u"A");
  const auto rows = database->openRecordset(u"select * from pbxlist");
  EXPECT_EQ(shown(rows->get(u"pbxNAME")), "A");
  EXPECT_EQ(numberOfError([&] { rows->get(u"Nothing"); }), 3265);
}

TEST_P(DatabaseContract, TheAutoNumberIsKnownWhileTheRowIsAdded) {
  const auto database = open(Layout::faults);
  const auto rows = database->openRecordset(u"Select * FROM PBXList");
  rows->addNew();
  rows->set(u"PBXName", text(u"A"));
  const Value id = rows->get(u"ID");
  rows->update();
  EXPECT_EQ(shown(database->openRecordset(named(u"A"))->get(u"ID")), shown(id));
}

TEST_P(DatabaseContract, ANumberIsNeverUsedAgain) {
  const auto database = open(Layout::faults);
  addExchange(*database, u"A");
  addExchange(*database, u"B");
  database->execute(u"DELETE FROM PBXList WHERE ID = 2");
  const auto dropped = database->openRecordset(u"Select * FROM PBXList");
  dropped->addNew();
  EXPECT_EQ(shown(dropped->get(u"ID")), "3");
  dropped->close();
  addExchange(*database, u"C");
  EXPECT_EQ(column(*database, u"Select * FROM PBXList", u"ID"), (std::vector<std::string>{"1", "4"}));
}

TEST_P(DatabaseContract, AClosedDatabaseLetsTheFileGoAndRefusesEveryStep) {
  const auto database = open(Layout::faults);
  addExchange(*database, u"P1");
  database->close();
  EXPECT_FALSE(std::filesystem::exists(std::filesystem::path(path_ + u"-wal"))) << "nothing is kept open";
  EXPECT_EQ(numberOfError([&] { database->openRecordset(u"Select * From PBXList"); }), 3420);
  EXPECT_EQ(numberOfError([&] { database->execute(u"Delete From PBXList Where ID = 1"); }), 3420);
  database->setProgress({});
  database->close();
}

TEST_P(DatabaseContract, AnAddThatIsClosedLeavesNothing) {
  const auto database = open(Layout::faults);
  const auto rows = database->openRecordset(u"Select * FROM PBXList");
  rows->addNew();
  rows->set(u"PBXName", text(u"A"));
  rows->close();
  EXPECT_EQ(database->openRecordset(u"Select * FROM PBXList")->recordCount(), 0);
}

TEST_P(DatabaseContract, AnEditChangesWhatItSetAndNothingElse) {
  const auto database = open(Layout::faults);
  addExchange(*database, u"A");
  const auto rows = database->openRecordset(named(u"A"));
  rows->edit();
  rows->set(u"MJ", true);
  rows->set(u"MN", std::int16_t{0});
  rows->update();
  EXPECT_EQ(rows->get(u"MJ"), Value(true));
  const auto again = database->openRecordset(named(u"A"));
  EXPECT_EQ(again->get(u"MJ"), Value(true));
  EXPECT_EQ(again->get(u"MN"), Value(false));
  EXPECT_EQ(shown(again->get(u"TimeStamp")), "2006-11-27 10:15:00");
  again->edit();
  again->set(u"MJ", automation::Null{});
  again->update();
  EXPECT_EQ(database->openRecordset(named(u"A"))->get(u"MJ"), Value(false)) << "a flag is one or the other";
}

TEST_P(DatabaseContract, ChangesNeedToBeBegun) {
  const auto database = open(Layout::faults);
  addExchange(*database, u"A");
  const auto rows = database->openRecordset(named(u"A"));
  EXPECT_EQ(numberOfError([&] { rows->set(u"MJ", true); }), 3020);
  EXPECT_EQ(numberOfError([&] { rows->update(); }), 3020);
  rows->edit();
  rows->set(u"MJ", true);
  rows->update();
  EXPECT_EQ(numberOfError([&] { rows->update(); }), 3020) << "the change has ended";
}

TEST_P(DatabaseContract, AReadOnlyDatabaseRefusesChanges) {
  addExchange(*open(Layout::faults), u"A");
  const auto database = engine().open(path_, true);
  EXPECT_EQ(database->openRecordset(named(u"A"))->recordCount(), 1);
  EXPECT_EQ(numberOfError([&] { database->openRecordset(u"Select * FROM PBXList")->addNew(); }), 3027);
  EXPECT_EQ(numberOfError([&] { database->openRecordset(named(u"A"))->edit(); }), 3027);
  EXPECT_EQ(numberOfError([&] { database->execute(u"DELETE FROM PBXList WHERE ID = 1"); }), 3027);
}

TEST_P(DatabaseContract, AWalkGoesOnAfterAChangeInItsMiddle) {
  const auto database = open(Layout::faults);
  for (const char16_t* kind : {u"01", u"02", u"03"}) addFault(*database, {7, kind});
  const auto rows = database->openRecordset(u"Select * from FaultDisplay");
  std::vector<std::string> kinds{shown(rows->get(u"Fault"))};
  addExchange(*database, u"A");
  for (rows->moveNext(); !rows->atEnd(); rows->moveNext()) kinds.push_back(shown(rows->get(u"Fault")));
  EXPECT_EQ(kinds, (std::vector<std::string>{"01", "02", "03"}));
}

TEST_P(DatabaseContract, AnIdenticalFaultIsFound) {
  const auto database = open(Layout::faults);
  const Fault fault{1, u"01", u"MJ", u"MP   ", u"2006/11/27 10:15", u"Title\r\nLine [1]; it's 5 % -- #1 |"};
  EXPECT_FALSE(isStored(*database, fault));
  addFault(*database, fault);
  EXPECT_TRUE(isStored(*database, fault));
  for (auto change : std::vector<std::function<void(Fault&)>>{
           [](Fault& f) { f.id = 2; }, [](Fault& f) { f.fault = u"02"; }, [](Fault& f) { f.alarm = u"MN"; },
           [](Fault& f) { f.cpu = u"AB 12"; }, [](Fault& f) { f.date = u"2006/11/27 10:16"; },
           [](Fault& f) { f.description += u"."; }}) {
    Fault other = fault;
    change(other);
    EXPECT_FALSE(isStored(*database, other));
  }
}

TEST_P(DatabaseContract, EqualityDropsTrailingBlanksAndCase) {
  const auto database = open(Layout::faults);
  addFault(*database, {1, u"0a", u"MJ", u"MP   ", u"2006/11/27 10:15", u"Отказ ШИНЫ É"});
  EXPECT_TRUE(isStored(*database, {1, u"0A", u"mj", u"MP", u"2006/11/27 10:15  ", u"оТКАЗ шины é   "}));
  EXPECT_FALSE(isStored(*database, {1, u"0a", u"MJ", u" MP", u"2006/11/27 10:15", u"Отказ ШИНЫ É"}));
  EXPECT_FALSE(isStored(*database, {1, u"0a", u"MJ", u"MP", u"2006/11/27 10:15", u"Отказ ШИНЫ E"}));
}

TEST_P(DatabaseContract, NullEqualsNoText) {
  const auto database = open(Layout::faults);
  const auto rows = database->openRecordset(u"Select * from FaultDisplay");
  rows->addNew();
  rows->set(u"ID", std::int16_t{1});
  rows->update();
  EXPECT_FALSE(isStored(*database, {1, u"", u"", u"", u"", u""}));
  addFault(*database, {1, u"", u"", u"", u"", u""});
  EXPECT_TRUE(isStored(*database, {1, u" ", u"", u"", u"", u""}));
  EXPECT_TRUE(automation::isNull(database->openRecordset(u"Select * from FaultDisplay")->get(u"Date")));
}

TEST_P(DatabaseContract, ExchangesComeNewestFirstAndTiesByNumber) {
  const auto database = open(Layout::faults);
  addExchange(*database, u"old", u"2006-01-31 09:00:00");
  addExchange(*database, u"tie 1", u"2006-11-27 10:15:00");
  addExchange(*database, u"tie 2", u"2006-11-27 10:15:00");
  addExchange(*database, u"new", u"2007-01-01 00:00:00");
  EXPECT_EQ(column(*database, u"SELECT * FROM PBXList Order by [TimeStamp] Desc", u"PBXName"),
            (std::vector<std::string>{"new", "tie 1", "tie 2", "old"}));
}

TEST_P(DatabaseContract, AnExchangeIsSelectedByNameAndNumber) {
  const auto database = open(Layout::faults);
  addExchange(*database, u"A");
  EXPECT_EQ(database->openRecordset(u"SELECT * FROM PBXList WHERE PBXName = 'A' AND ID = 1")->recordCount(),
            1);
  EXPECT_EQ(database->openRecordset(u"SELECT * FROM PBXList WHERE PBXName = 'A' AND ID = 2")->recordCount(),
            0);
  EXPECT_EQ(database->openRecordset(u"SELECT * FROM PBXList WHERE PBXName = 'A' AND ID = -1")->recordCount(),
            0);
}

TEST_P(DatabaseContract, HostileNamesAreOnlyNames) {
  const auto database = open(Layout::faults);
  addExchange(*database, u"other");
  for (const std::u16string name : {u"PBXName", u"ID", u"100%", u"a;b", u"-- x", u"[x]", u"#1|2", u"PBX's"}) {
    addExchange(*database, name);
    const auto rows = database->openRecordset(named(name));
    ASSERT_EQ(rows->recordCount(), 1);
    EXPECT_EQ(rows->get(u"PBXName"), Value(name));
    rows->moveNext();
    EXPECT_TRUE(rows->atEnd());
  }
}

TEST_P(DatabaseContract, ANameWithItsQuotingCharacterBreaksTheStatement) {
  const auto database = open(Layout::faults);
  addExchange(*database, u"A");
  EXPECT_NE(numberOfError([&] { database->openRecordset(named(u"PBX \"1"))->recordCount(); }), 0);
  EXPECT_NE(
      numberOfError([&] {
        database->openRecordset(u"SELECT * FROM PBXList WHERE PBXName = 'it's' AND ID = 1")->recordCount();
      }),
      0);
}

TEST_P(DatabaseContract, ADoubledQuoteIsOneQuote) {
  const auto database = open(Layout::faults);
  addExchange(*database, u"a\"b");
  addExchange(*database, u"c'd");
  EXPECT_EQ(database->openRecordset(named(u"a\"\"b"))->recordCount(), 1);
  EXPECT_EQ(
      database->openRecordset(u"SELECT * FROM PBXList WHERE PBXName = 'c''d' AND ID = 2")->recordCount(), 1);
}

TEST_P(DatabaseContract, TextsKeepEveryCharacterOrAreRefused) {
  const auto database = open(Layout::faults);
  const std::u16string odd = {u'a',   u'\0',  u'b',  0xD800, u'c',   0xDC00,
                              0xD83D, 0xDE00, u'\r', u'\n',  0x65E5, u'd'};
  if (!under_->keepsEveryCharacter()) {
    EXPECT_EQ(numberOfError([&] { addFault(*database, {1, u"01", u"MJ", u"MP", u"d", odd}); }), 3421);
    return;
  }
  addFault(*database, {1, u"01", u"MJ", u"MP", u"d", odd});
  EXPECT_EQ(database->openRecordset(u"Select * from FaultDisplay")->get(u"Description"), Value(odd));
  EXPECT_TRUE(isStored(*database, {1, u"01", u"MJ", u"MP", u"d", odd}));
  EXPECT_FALSE(isStored(*database, {1, u"01", u"MJ", u"MP", u"d", u"a"}));
  Fault other{1, u"01", u"MJ", u"MP", u"d", odd};
  other.description[3] = 0xFFFD;
  EXPECT_FALSE(isStored(*database, other));
}

TEST_P(DatabaseContract, TextsKeepEveryCharacterThatCanTravel) {
  const auto database = open(Layout::faults);
  const std::u16string odd = u" \t\r\n\\ {\"a\",NULL} '' \u00E9\u0416\u65E5\uFFFD\uFFFF \U0001F600 ";
  addFault(*database, {1, u"01", u"MJ", u"MP", u"d", odd});
  EXPECT_EQ(database->openRecordset(u"Select * from FaultDisplay")->get(u"Description"), Value(odd));
  const std::u16string lengthy = std::u16string(20000, u'\u0416') + u"!";
  addFault(*database, {2, u"01", u"MJ", u"MP", u"d", lengthy});
  EXPECT_TRUE(isStored(*database, {2, u"01", u"MJ", u"MP", u"d", lengthy}));
  EXPECT_FALSE(isStored(*database, {2, u"01", u"MJ", u"MP", u"d", lengthy + u"!"}));
}

TEST_P(DatabaseContract, OfAVeryLongTextTheBeginningIsGivenWithAMark) {
  const auto database = open(Layout::faults);
  const std::u16string most(65536, u'\u0416');
  addFault(*database, {1, u"01", u"MJ", u"MP", u"a", most});
  addFault(*database, {1, u"01", u"MJ", u"MP", u"b", most + u"!"});
  addFault(*database, {1, u"01", u"MJ", u"MP", u"c", std::u16string(65535, u'x') + u"\U0001F600"});
  addFault(*database, {1, u"01", u"MJ", u"MP", u"d", u"the next one"});
  const std::u16string expected[] = {most, most + u" [...]", std::u16string(65535, u'x') + u" [...]",
                                     u"the next one"};
  const auto rows = database->openRecordset(
      u"Select * from FaultDisplay where ID = 1 Order by [Date] Asc, [Count] Asc, [Fault] Asc, [Alarm] Asc, "
      u"[CPU] Asc, [Description] Asc");
  const std::u16string_view columns[] = {u"Description"};
  const auto list = database->openRowList(
      u"Select * from FaultDisplay where ID = 1 Order by [Date] Asc, [Count] Asc, [Fault] Asc, [Alarm] Asc, "
      u"[CPU] Asc, [Description] Asc",
      columns);
  std::vector<Value> row;
  for (std::size_t i = 0; i < std::size(expected); ++i, rows->moveNext()) {
    EXPECT_EQ(rows->get(u"Description"), Value(expected[i])) << i;
    ASSERT_TRUE(list->fetch(i, row));
    EXPECT_EQ(row.front(), Value(expected[i])) << i;
  }
  EXPECT_TRUE(isStored(*database, {1, u"01", u"MJ", u"MP", u"b", most + u"!"})) << "whole";
}

TEST_P(DatabaseContract, ATextThatCannotTravelIsRefusedAndNotChanged) {
  const auto database = open(Layout::faults);
  for (const std::u16string& odd :
       {std::u16string(u"a\0b", 3), std::u16string{u'a', 0xD800, u'c'}, std::u16string{0xDC00, u'd'}}) {
    const Fault fault{1, u"01", u"MJ", u"MP", u"d", odd};
    if (under_->keepsEveryCharacter()) {
      addFault(*database, fault);
    } else {
      EXPECT_EQ(numberOfError([&] { addFault(*database, fault); }), 3421);
    }
    EXPECT_EQ(isStored(*database, fault), under_->keepsEveryCharacter());
    EXPECT_FALSE(isStored(*database, {1, u"01", u"MJ", u"MP", u"d", u"a"}));
    addFault(*database, {1, u"01", u"MJ", u"MP", u"d", u"the next one"});
  }
  const auto met = column(*database, u"Select * from FaultDisplay", u"Description");
  EXPECT_EQ(met.size(), under_->keepsEveryCharacter() ? 6U : 3U);
}

TEST_P(DatabaseContract, DeletingAnExchangeTakesItsFaultsAndNoOthers) {
  const auto database = open(Layout::faults);
  addExchange(*database, u"A");
  addExchange(*database, u"B");
  for (std::int16_t id : {1, 2, 1, 2, 1}) addFault(*database, {id});
  database->execute(u"DELETE FROM PBXList WHERE ID = 1");
  EXPECT_EQ(column(*database, u"Select * from FaultDisplay", u"ID").size(), 5U);
  database->execute(u"DELETE FROM FaultDisplay WHERE ID = 1");
  EXPECT_EQ(column(*database, u"Select * from FaultDisplay", u"Count"), (std::vector<std::string>{"2", "4"}));
  EXPECT_EQ(column(*database, u"Select * FROM PBXList", u"PBXName"), (std::vector<std::string>{"B"}));
  EXPECT_FALSE(isStored(*database, {1}));
  addFault(*database, {1});
  EXPECT_EQ(column(*database, u"Select * from FaultDisplay", u"Count"),
            (std::vector<std::string>{"2", "4", "6"}));
}

TEST_P(DatabaseContract, AnExchangeNumberBeyondSixteenBitsIsAnError) {
  const auto database = open(Layout::faults);
  const auto rows = database->openRecordset(u"Select * from FaultDisplay");
  rows->addNew();
  EXPECT_NE(numberOfError([&] {
              rows->set(u"ID", std::int32_t{32768});
              rows->update();
            }),
            0);
}

TEST_P(DatabaseContract, RowsOfAWalkStayThoughTheyAreChangedOnTheWay) {
  const auto database = open(Layout::faults);
  for (const char16_t* date : {u"06/11/27", u"95/01/02", u"06/11/28", u"2/1"})
    addFault(*database, {1, u"01", u"MJ", u"MP", date});
  const auto rows = database->openRecordset(u"SELECT * FROM FaultDisplay Order by [Date] Desc");
  std::vector<std::string> met;
  for (; !rows->atEnd(); rows->moveNext()) {
    met.push_back(shown(rows->get(u"Date")));
    rows->edit();
    rows->set(u"Date", u"20" + automation::toText(rows->get(u"Date")));
    rows->update();
  }
  EXPECT_EQ(met, (std::vector<std::string>{"95/01/02", "2/1", "06/11/28", "06/11/27"}));
  EXPECT_EQ(column(*database, u"SELECT * FROM FaultDisplay Order by [Date] Desc", u"Date"),
            (std::vector<std::string>{"2095/01/02", "202/1", "2006/11/28", "2006/11/27"}));
  EXPECT_TRUE(isStored(*database, {1, u"01", u"MJ", u"MP", u"2006/11/27"}));
  EXPECT_FALSE(isStored(*database, {1, u"01", u"MJ", u"MP", u"06/11/27"}));
}

// What a survey told, by position.
struct Told : Survey::Taker {
  void take(std::size_t position, std::uint32_t kind, std::u16string_view time) override {
    EXPECT_TRUE(rows.try_emplace(position, kind, std::u16string(time)).second) << "told once";
  }
  std::map<std::size_t, std::pair<std::uint32_t, std::u16string>> rows;
};

const std::u16string newestOfFirst =
    u"SELECT * FROM FaultDisplay WHERE ID = 1 Order by [Date] Desc, [Count] Desc, [Fault] Desc, [Alarm] "
    u"Desc, "
    u"[CPU] Desc, [Description] Desc";
constexpr std::u16string_view gridColumns[] = {u"Fault", u"Alarm", u"Date", u"CPU", u"Description", u"Count"};
constexpr SurveyedColumns surveyed{{0, 1, 3}, 2};

TEST_P(DatabaseContract, ASurveyTellsEachRowsKindAndTime) {
  const auto database = open(Layout::faults);
  addFault(*database, {1, u"0A", u"MJ", u"MP   ", u"2026/11/20 10:00"});
  addFault(*database, {1, u"01", u"MJ", u"MP   ", u"2026/11/20 10:01"});
  addFault(*database, {2, u"0A", u"MJ", u"MP   ", u"2026/11/20 10:02"});
  addFault(*database, {1, u"0a", u"mj ", u"MP", u"2026/11/20 10:03  "});
  const auto rows = database->openRowList(newestOfFirst, gridColumns);
  ASSERT_EQ(rows->size(), 3U);
  for (const std::size_t most : {1, 2, 100}) {
    Told told;
    const auto survey = rows->survey(surveyed);
    while (survey->next(most, told)) {
    }
    ASSERT_EQ(told.rows.size(), 3U);
    EXPECT_EQ(told.rows[0].first, told.rows[2].first);
    EXPECT_NE(told.rows[0].first, told.rows[1].first);
    EXPECT_EQ(told.rows[0].second, u"2026/11/20 10:03");
    EXPECT_EQ(told.rows[2].second, u"2026/11/20 10:00");
  }
}

TEST_P(DatabaseContract, ASurveyLeavesOutWhatHasGoneAndWhatCameLater) {
  const auto database = open(Layout::faults);
  for (int i = 0; i < 5; ++i) addFault(*database, {1, u"0A", u"MJ", u"MP", u"2026/11/20 10:00"});
  const auto rows = database->openRowList(newestOfFirst, gridColumns);
  addFault(*database, {1, u"0A", u"MJ", u"MP", u"2026/11/20 10:00"});
  Told told;
  const auto survey = rows->survey(surveyed);
  EXPECT_TRUE(survey->next(2, told));
  const std::size_t before = told.rows.size();
  EXPECT_LE(before, 2U);
  database->execute(u"DELETE FROM FaultDisplay WHERE ID = 1");
  while (survey->next(2, told)) {
  }
  EXPECT_EQ(told.rows.size(), before);
}

TEST_P(DatabaseContract, TimesAreToldNewestFirst) {
  const auto database = open(Layout::faults);
  for (const char16_t* time :
       {u"2026/11/20 10:00", u"2026/11/20 10:05", u"2026/11/20 10:00  ", u"2026/11/20 10:02"})
    addFault(*database, {1, u"0A", u"MJ", u"MP", time});
  addFault(*database, {2, u"0A", u"MJ", u"MP", u"2026/11/20 10:04"});
  const auto rows = database->openRowList(newestOfFirst, gridColumns);
  for (const std::size_t most : {1, 2, 100}) {
    std::vector<std::pair<std::u16string, std::size_t>> told;
    const auto take = [&](std::u16string_view time, std::size_t many) {
      if (told.empty() || told.back().first != time) told.emplace_back(time, 0);
      told.back().second += many;
      return true;
    };
    const auto walk = rows->times(surveyed.time);
    while (walk->next(most, take)) {
    }
    EXPECT_EQ(told, (std::vector<std::pair<std::u16string, std::size_t>>{
                        {u"2026/11/20 10:05", 1}, {u"2026/11/20 10:02", 1}, {u"2026/11/20 10:00", 2}}))
        << most;
  }
  int asked = 0;
  const auto walk = rows->times(surveyed.time);
  EXPECT_FALSE(walk->next(100, [&](std::u16string_view, std::size_t) { return ++asked < 2; }));
  EXPECT_EQ(asked, 2);
}

TEST_P(DatabaseContract, ASurveyBetweenTwoTimesTellsTheRowsOfBothAndWhatLiesBetween) {
  const auto database = open(Layout::faults);
  for (const char16_t* time : {u"2026/11/20 10:00", u"2026/11/20 10:01", u"2026/11/20 10:02",
                               u"2026/11/20 10:03  ", u"2026/11/20 10:03", u"2026/11/20 10:04"})
    addFault(*database, {1, u"0A", u"MJ", u"MP", time});
  addFault(*database, {2, u"0A", u"MJ", u"MP", u"2026/11/20 10:02"});
  const auto rows = database->openRowList(newestOfFirst, gridColumns);
  for (const std::size_t most : {1, 2, 100}) {
    Told told;
    const auto survey = rows->surveyBetween(surveyed, {u"2026/11/20 10:01", u"2026/11/20 10:03"});
    while (survey->next(most, told)) {
    }
    ASSERT_EQ(told.rows.size(), 4U);
    EXPECT_EQ(told.rows[1].second, u"2026/11/20 10:03");
    EXPECT_EQ(told.rows[2].second, u"2026/11/20 10:03");
    EXPECT_EQ(told.rows[4].second, u"2026/11/20 10:01");
  }
}

TEST_P(DatabaseContract, RowsAreChosenByTheTextThatTheyHold) {
  const auto database = open(Layout::faults);
  addFault(*database, {1, u"0A", u"MJ", u"MP", u"1", u"Door OPEN"});
  addFault(*database, {1, u"0A", u"MJ", u"MP", u"2", u"door shut"});
  addFault(*database, {1, u"0A", u"MJ", u"MP", u"3", u"open again"});
  const auto rows = database->openRowList(newestOfFirst, gridColumns);
  const auto chosen = [&](std::u16string_view needle, std::vector<std::uint32_t> from) {
    std::vector<std::uint32_t> found{77};
    rows->choose(needle, from, found);
    return found;
  };
  EXPECT_EQ(chosen(u"open", {0, 1, 2}), (std::vector<std::uint32_t>{77, 0, 2}));
  EXPECT_EQ(chosen(u"open", {2}), (std::vector<std::uint32_t>{77, 2}));
  EXPECT_EQ(chosen(u"nowhere", {0, 1, 2}), (std::vector<std::uint32_t>{77}));
  database->execute(u"DELETE FROM FaultDisplay WHERE ID = 1");
  EXPECT_EQ(chosen(u"open", {0, 1, 2}), (std::vector<std::uint32_t>{77}));
}

TEST_P(DatabaseContract, ARowListFetchesWhatTheStatementOrders) {
  const auto database = open(Layout::faults);
  for (const char16_t* date : {u"2006/01/02", u"2006/01/01", u"2006/01/03", u"2006/01/02"})
    addFault(*database, {1, u"01", u"MJ", u"MP", date});
  addFault(*database, {2});
  const std::u16string_view columns[] = {u"Date", u"Count"};
  const auto rows = database->openRowList(
      u"SELECT * FROM FaultDisplay WHERE ID = 1 Order by [Date] Desc, [Count] Desc, [Fault] Desc, [Alarm] "
      u"Desc, "
      u"[CPU] Desc, [Description] Desc",
      columns);
  ASSERT_EQ(rows->size(), 4U);
  std::vector<std::string> counts;
  std::vector<Value> values;
  for (std::size_t i = 0; i < rows->size(); ++i) {
    ASSERT_TRUE(rows->fetch(i, values));
    counts.push_back(shown(values.at(1)));
  }
  EXPECT_EQ(counts, (std::vector<std::string>{"3", "4", "1", "2"}));
  database->execute(u"DELETE FROM FaultDisplay WHERE ID = 1");
  EXPECT_FALSE(rows->fetch(0, values));
}

TEST_P(DatabaseContract, ABatchIsSafeAtItsCheckpointAndAtItsEnd) {
  const auto database = open(Layout::faults);
  database->beginBatch();
  addFault(*database, {1});
  database->checkpoint();
  EXPECT_TRUE(isStored(*engine().open(path_, true), {1}));
  addFault(*database, {2});
  EXPECT_TRUE(isStored(*database, {2}));
  database->endBatch();
  EXPECT_TRUE(isStored(*engine().open(path_, true), {2}));
}

TEST_P(DatabaseContract, MessagesComeBehindTheirNumber) {
  const auto database = open(Layout::ownLanguage, {{u"tMessages", {2, text(u"two")}},
                                                   {u"tMessages", {0, text(u"zero")}},
                                                   {u"tMessages", {1, automation::Null{}}}});
  const auto rows = database->openRecordset(
      u"SELECT * FROM tMessages UNION SELECT -1, COUNT(*) FROM tMessages ORDER BY ID");
  std::vector<std::string> met;
  for (; !rows->atEnd(); rows->moveNext())
    met.push_back(shown(rows->get(u"ID")) + "=" + shown(rows->get(u"Caption")));
  EXPECT_EQ(met, (std::vector<std::string>{"-1=3", "0=zero", "1=Null", "2=two"}));
}

TEST_P(DatabaseContract, AReservedWordIsAColumn) {
  const auto database =
      open(Layout::ownLanguage,
           {{u"tControls",
             {text(u"frmMain"), text(u"cmdA"), -1, text(u"007"), text(u"-1"), 8.25, automation::Null{}}}});
  const auto rows = database->openRecordset(
      u"select ObjectName,Index,Caption,FontName,FontSize,ToolTipText from tControls where FormName = "
      u"'FRMMAIN'");
  ASSERT_EQ(rows->recordCount(), 1);
  EXPECT_EQ(shown(rows->get(u"Index")), "-1");
  EXPECT_EQ(shown(rows->get(u"Caption")), "007");
  EXPECT_EQ(shown(rows->get(u"FontSize")), "8.25");
  EXPECT_EQ(shown(rows->get(1)), "-1");
  EXPECT_TRUE(automation::isNull(rows->get(u"ToolTipText")));
}

TEST_P(DatabaseContract, AJobIsFoundByItsKey) {
  const auto database =
      open(Layout::schedule, {{u"Options", {7, 3, true, 2, true, false, 50, text(u"run"), 2}}});
  const auto rows = database->openRecordset(u"SELECT * FROM Options WHERE Key = 7");
  ASSERT_FALSE(rows->isEmpty());
  EXPECT_EQ(shown(rows->get(u"Wait")), "3");
  EXPECT_EQ(shown(rows->get(u"ErrorStop")), "True");
  EXPECT_EQ(shown(rows->get(u"Count")), "2");
  EXPECT_EQ(shown(rows->get(u"Log2")), "False");
  EXPECT_EQ(shown(rows->get(u"File")), "run");
  EXPECT_TRUE(database->openRecordset(u"SELECT * FROM Options WHERE Key = 8")->isEmpty());
  EXPECT_NE(
      numberOfError([&] { database->openRecordset(u"SELECT * FROM Options WHERE Key = x")->isEmpty(); }), 0);
  EXPECT_NE(numberOfError([&] { database->openRecordset(u"SELECT * FROM Options WHERE Key = ")->isEmpty(); }),
            0);
}

TEST_P(DatabaseContract, AMissingTableIsAnError) {
  const auto database = open(Layout::schedule);
  EXPECT_EQ(numberOfError(
                [&] { database->openRecordset(u"SELECT * FROM Registry WHERE AppName = \"x\"")->isEmpty(); }),
            3078);
}

}  // namespace
}  // namespace vordane::database
