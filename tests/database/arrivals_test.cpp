// What has come into an embedded file, and how the file is told from others.
#include <gmock/gmock.h>

#include "database/fault_index.h"

namespace vordane::sqlite {
namespace {

using database::Arrival;
using testing::ElementsAre;
using testing::IsEmpty;

class ArrivalsTest : public FaultIndexTest {
 protected:
  static void addFor(database::Database& database, std::int16_t owner, int faults) {
    for (int i = 0; i < faults; ++i) {
      Fault fault{owner, u"0A", u"MJ", u"MP", u"2026/11/20 10:00"};
      fault.description = u"Fault " + text::fromUtf8(std::to_string(i));
      addFault(database, fault);
    }
  }
  OtherTool other() { return OtherTool(path_); }
};

TEST_F(ArrivalsTest, EventsComeInTheOrderOfTheirNumbersFromAMarkOn) {
  const auto database = open();
  addFor(*database, 1, 2);
  addFor(*database, 7, 1);
  addFor(*database, 1, 1);
  const auto arrivals = database->arrivals();
  ASSERT_NE(arrivals, nullptr);
  EXPECT_EQ(arrivals->highest(), 4);
  EXPECT_THAT(arrivals->after(0, 10),
              ElementsAre(Arrival{1, 1}, Arrival{1, 2}, Arrival{7, 3}, Arrival{1, 4}));
  EXPECT_THAT(arrivals->after(2, 10), ElementsAre(Arrival{7, 3}, Arrival{1, 4}));
  EXPECT_THAT(arrivals->after(2, 1), ElementsAre(Arrival{7, 3}));
  EXPECT_THAT(arrivals->after(4, 10), IsEmpty());
}

TEST_F(ArrivalsTest, AnEmptyFileHasNone) {
  const auto database = open();
  EXPECT_EQ(database->arrivals()->highest(), 0);
  EXPECT_THAT(database->arrivals()->after(0, 10), IsEmpty());
}

TEST_F(ArrivalsTest, TheFileKeepsItsIdentityAndAnotherFileHasAnother) {
  const std::u16string identity = open()->arrivals()->identity();
  EXPECT_EQ(identity.size(), 32U);
  EXPECT_EQ(identity.find_first_not_of(u"0123456789abcdef"), identity.npos);
  EXPECT_EQ(open()->arrivals()->identity(), identity);
  path_ = under_.make(Layout::faults);
  EXPECT_NE(open()->arrivals()->identity(), identity);
}

TEST_F(ArrivalsTest, NobodyWhoDoesNotAskMakesAnIdentity) {
  {
    const auto database = open();
    addFor(*database, 1, 2);
    database->arrivals()->highest();
    database->arrivals()->after(0, 10);
  }
  EXPECT_EQ(other().run("SELECT count(*) FROM sqlite_schema WHERE name = 'VordaneStore'"), "0\n");
}

TEST_F(ArrivalsTest, TwoWhoAskAtOnceFindOne) {
  const auto one = open(), two = open();
  const auto first = one->arrivals(), second = two->arrivals();
  EXPECT_EQ(first->identity(), second->identity());
  EXPECT_EQ(other().run("SELECT count(*) FROM VordaneStore"), "1\n");
}

TEST_F(ArrivalsTest, TheDocumentedTablesStayAsTheyWere) {
  constexpr const char* schema = "SELECT sql FROM sqlite_schema WHERE name IN ('PBXList', 'FaultDisplay')";
  const auto database = open();
  addFor(*database, 1, 2);
  const std::string before = other().run(schema), rows = other().run("SELECT * FROM FaultDisplay");
  database->arrivals()->identity();
  EXPECT_EQ(other().run(schema), before);
  EXPECT_EQ(other().run("SELECT * FROM FaultDisplay"), rows);
  EXPECT_EQ(other().run("PRAGMA integrity_check"), "ok\n");
}

TEST_F(ArrivalsTest, AReadOnlyFileIsToldByTheIdentityThatItHas) {
  EXPECT_EQ(open(true)->arrivals()->identity(), u"");
  const std::u16string identity = open()->arrivals()->identity();
  EXPECT_EQ(open(true)->arrivals()->identity(), identity);
}

TEST_F(ArrivalsTest, WhatSomebodyElseHasPutUnderTheNameStaysAndIsNoIdentity) {
  other().run("CREATE TABLE VordaneStore (Identity TEXT)");
  other().run("INSERT INTO VordaneStore VALUES ('theirs')");
  EXPECT_EQ(open()->arrivals()->identity(), u"");
  EXPECT_EQ(other().run("SELECT Identity FROM VordaneStore"), "theirs\n");
}

TEST_F(ArrivalsTest, NobodyIsWaitedFor) {
  const auto database = open();
  addFor(*database, 1, 2);
  const auto writer = open();
  writer->beginBatch();
  addFor(*writer, 1, 1);
  const auto arrivals = database->arrivals();
  EXPECT_EQ(arrivals->highest(), 2) << "a reader goes on beside a writer";
  const auto begun = std::chrono::steady_clock::now();
  EXPECT_EQ(database::numberOfError([&] { arrivals->identity(); }), 3260);
  EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::seconds(2)) << "others wait for five";
  writer->endBatch();
  EXPECT_EQ(arrivals->identity().size(), 32U);
  EXPECT_EQ(arrivals->highest(), 3);
}

TEST_F(ArrivalsTest, WaitingGoesOnAsBeforeForEverybodyElse) {
  EmbeddedUnderTest quick({.lockWaitMilliseconds = 300});
  const auto database = quick.engine().open(path_, false);
  database->arrivals()->identity();
  const auto writer = open();
  writer->beginBatch();
  addFor(*writer, 1, 1);
  const auto begun = std::chrono::steady_clock::now();
  EXPECT_EQ(database::numberOfError([&] { addFor(*database, 1, 1); }), 3260);
  EXPECT_GE(std::chrono::steady_clock::now() - begun, std::chrono::milliseconds(290));
}

TEST_F(ArrivalsTest, ATableOfAnotherDeclarationHasNone) {
  other().run("DROP TABLE FaultDisplay");
  other().run(
      "CREATE TABLE FaultDisplay (ID INTEGER, Fault TEXT, Alarm TEXT, CPU TEXT, Date TEXT, "
      "Count INTEGER, Description TEXT)");
  EXPECT_EQ(open()->arrivals(), nullptr);
}

TEST_F(ArrivalsTest, AListKnowsTheNumbersOfItsRowsInEveryOrder) {
  const auto database = open();
  addFor(*database, 1, 40);
  for (const auto& order : clauses) {
    for (const std::u16string_view clause : order) {
      const std::u16string_view count[] = {u"Count"};
      const auto rows =
          database->openRowList(u"SELECT * FROM FaultDisplay WHERE ID = 1" + std::u16string(clause), count);
      ASSERT_EQ(rows->size(), 40U);
      std::vector<Value> values;
      for (std::size_t i = 0; i < rows->size(); ++i) {
        ASSERT_TRUE(rows->fetch(i, values));
        EXPECT_EQ(rows->number(i), std::optional<std::int64_t>(automation::toLong(values[0])));
      }
      EXPECT_EQ(rows->number(40), std::nullopt);
    }
  }
}

TEST_F(ArrivalsTest, TheLatestOfAnOwnerIsToldInOneQuestion) {
  const auto database = open(), station = open();
  database::addExchange(*database, u"PBX-1");
  const auto arrivals = database->arrivals();
  const auto stamp = [&] {
    return database::shown(database->openRecordset(u"Select * FROM PBXList")->get(u"TimeStamp"));
  };
  const auto latest = [&](std::int64_t mark) { return arrivals->latest(1, mark).value(); };
  EXPECT_EQ(text::toUtf8(latest(0).listed), stamp());
  EXPECT_EQ(latest(0).highest, 0);
  EXPECT_FALSE(latest(0).more);
  addFor(*station, 1, 2);
  addFor(*station, 7, 1);
  EXPECT_EQ(latest(0), (database::Latest{text::fromUtf8(stamp()), true, 3}));
  EXPECT_TRUE(latest(1).more);
  EXPECT_FALSE(latest(2).more) << "number 3 is another's";
  other().run("UPDATE PBXList SET TimeStamp = '2027-01-02 03:04:05'");
  EXPECT_EQ(text::toUtf8(latest(2).listed), "2027-01-02 03:04:05");
  EXPECT_EQ(stamp(), "2027-01-02 03:04:05");
  other().run("UPDATE PBXList SET TimeStamp = NULL");
  EXPECT_EQ(latest(2).listed, u"");
  EXPECT_EQ(arrivals->latest(7, 0), std::nullopt) << "no such exchange";
}

TEST_F(ArrivalsTest, TheLatestIsAskedForBesideAWriterAndWaitsForNobody) {
  const auto database = open(), writer = open();
  database::addExchange(*database, u"PBX-1");
  const auto arrivals = database->arrivals();
  writer->beginBatch();
  addFor(*writer, 1, 1);
  EXPECT_EQ(arrivals->latest(1, 0)->highest, 0);
  writer->endBatch();
  EXPECT_TRUE(arrivals->latest(1, 0)->more);
  addFor(*writer, 1, 1);
}

TEST_F(ArrivalsTest, AFileWithoutTheTimeOfListsTellsNoLatest) {
  other().run("DROP TABLE PBXList");
  other().run("CREATE TABLE PBXList (ID INTEGER, PBXName TEXT)");
  EXPECT_EQ(open()->arrivals()->latest(1, 0), std::nullopt);
}

TEST_F(ArrivalsTest, WhatOthersAddAndDeleteIsFollowed) {
  const auto database = open(), station = open();
  addFor(*database, 1, 3);
  addFor(*station, 2, 2);
  EXPECT_THAT(database->arrivals()->after(3, 10), ElementsAre(Arrival{2, 4}, Arrival{2, 5}));
  station->execute(u"DELETE FROM FaultDisplay WHERE ID = 2");
  EXPECT_THAT(database->arrivals()->after(3, 10), IsEmpty());
  addFor(*station, 2, 1);
  EXPECT_THAT(database->arrivals()->after(3, 10), ElementsAre(Arrival{2, 6})) << "no number comes twice";
}

}  // namespace
}  // namespace vordane::sqlite
