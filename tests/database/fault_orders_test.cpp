// The orders in which the index gives an exchange's faults.
#include <algorithm>

#include "database/fault_index.h"

namespace vordane::sqlite {
namespace {

constexpr const char16_t* columnsOf[5][5] = {{u"Fault", u"Alarm", u"Date", u"Count", u"CPU"},
                                             {u"Alarm", u"Fault", u"Date", u"Count", u"CPU"},
                                             {u"Date", u"Count", u"Fault", u"Alarm", u"CPU"},
                                             {u"CPU", u"Fault", u"Alarm", u"Date", u"Count"},
                                             {u"Description", u"Fault", u"Alarm", u"Date", u"Count"}};

int compareValues(const Value& a, const Value& b) {
  const auto *x = std::get_if<std::u16string>(&a), *y = std::get_if<std::u16string>(&b);
  if (x && y) return compareTexts(*x, *y);
  if (x || y) return x ? 1 : -1;
  if (automation::isNull(a) || automation::isNull(b)) return 0;
  const auto m = automation::toLong(a), n = automation::toLong(b);
  return m < n ? -1 : m > n;
}

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

}  // namespace
}  // namespace vordane::sqlite
