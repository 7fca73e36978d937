// How many faults each exchange has is kept beside the index: it is what the index holds after every step.
#include "database/fault_index.h"
#include "platform/sqlite/event_keys.h"

namespace vordane::sqlite {
namespace {

class FaultCountsTest : public FaultIndexTest {
 protected:
  // What the counts say that the index does not, and the other way round.
  std::string differences() {
    return OtherTool(path_).run(
        "SELECT 'index: ' || ID || ' ' || n FROM (SELECT ID, count(*) AS n FROM VordaneFaultIndex GROUP BY "
        "ID "
        "EXCEPT SELECT ID, Faults FROM VordaneFaultCounts) UNION ALL "
        "SELECT 'counts: ' || ID || ' ' || n FROM (SELECT ID, Faults AS n FROM VordaneFaultCounts EXCEPT "
        "SELECT ID, count(*) FROM VordaneFaultIndex GROUP BY ID) UNION ALL "
        "SELECT 'table: ' || ID || ' ' || n FROM (SELECT ID, count(*) AS n FROM FaultDisplay WHERE ID IS NOT "
        "NULL GROUP BY ID EXCEPT SELECT ID, Faults FROM VordaneFaultCounts)");
  }
  std::string asked(const char* sql) { return OtherTool(path_).run(sql); }
  // Whatever opens a list has the index looked at.
  void show(database::Database& database) { counts(database, clauses[2][0]); }
  void addThree() {
    const auto database = open();
    for (const std::int16_t id : {1, 1, 2}) addFault(*database, {id, u"01", u"MJ", u"MP", u"2006/01/01"});
  }
};

TEST_F(FaultCountsTest, AreWhatTheIndexHoldsAfterEveryStep) {
  const auto database = open(), besides = open();
  OtherTool other(path_);
  std::mt19937 random(31);
  const auto add = [&](database::Database& to) {
    addFault(to, {std::int16_t(1 + random() % 3), u"01", u"MJ", u"MP",
                  u"2006/01/0" + std::u16string(1, char16_t(u'1' + random() % 9))});
  };
  const auto edit = [&](database::Database& in, std::u16string_view column, const Value& value) {
    const auto rows = in.openRecordset(u"Select * from FaultDisplay");
    if (rows->atEnd()) return;
    rows->edit();
    rows->set(column, value);
    rows->update();
  };
  for (int i = 0; i < 300; ++i) {
    SCOPED_TRACE(i);
    database::Database& one = random() % 3 == 0 ? *besides : *database;
    switch (random() % 10) {
      case 0:
        edit(one, u"Date", std::u16string(u"2006/02/01"));
        break;
      case 1:
        edit(one, u"ID", std::int16_t(1 + random() % 3));
        break;
      case 2:
        if (random() % 4 == 0)
          one.execute(u"DELETE FROM FaultDisplay WHERE ID = " +
                      text::fromUtf8(std::to_string(1 + random() % 3)));
        break;
      case 3:
        ASSERT_EQ(other.run("UPDATE FaultDisplay SET ID = 1 + ID % 3 WHERE Count % 7 = 3"), "");
        show(one);
        break;
      case 4:
        ASSERT_EQ(other.run("DELETE FROM FaultDisplay WHERE Count % 11 = 5"), "");
        show(one);
        break;
      case 5: {
        one.beginBatch();
        for (unsigned more = random() % 6; more > 0; --more) {
          add(one);
          if (random() % 3 == 0) one.checkpoint();
          if (random() % 3 == 0) edit(one, u"ID", std::int16_t(1 + random() % 3));
        }
        if (random() % 4 == 0) one.execute(u"DELETE FROM FaultDisplay WHERE ID = 2");
        add(one);
        one.endBatch();
        break;
      }
      default:
        add(one);
    }
    ASSERT_EQ(differences(), "");
  }
  EXPECT_NE(asked("SELECT sum(Faults) FROM VordaneFaultCounts"), "Null\n");
}

// The second fault finds something else where its entry would stand, so its row is taken back.
TEST_F(FaultCountsTest, AreRightAfterAStepThatWasTakenBack) {
  show(*open());
  const EventTexts texts{u"02", u"MJ", u"MP", u"2007", u"two"};
  OtherTool(path_).run(("INSERT INTO VordaneFaultIndex VALUES (1, x'0132303037', " +
                        std::to_string(hashOf(texts)) + ", 2, x'01')")
                           .c_str());
  const auto database = open();
  database->beginBatch();
  addFault(*database, {1, u"01", u"MJ", u"MP", u"2006", u"one"});
  EXPECT_NE(database::numberOfError([&] {
              addFault(*database, {1, u"02", u"MJ", u"MP", u"2007", u"two"});
            }),
            0);
  addFault(*database, {1, u"03", u"MJ", u"MP", u"2008", u"three"});
  database->endBatch();
  EXPECT_EQ(asked("SELECT Count FROM VordaneFaultIndex ORDER BY 1"), "1\n3\n") << "the planted one is gone";
  EXPECT_EQ(differences(), "");
}

// The mark on an entry shows that the index was not made anew.
TEST_F(FaultCountsTest, AnIndexWithoutCountsGetsThemAndStays) {
  addThree();
  for (const char* former :
       {"DROP TABLE VordaneFaultCounts; UPDATE VordaneIndexState SET Version = 2",  // as version 2 made it
        "UPDATE VordaneIndexState SET Version = 2; UPDATE VordaneFaultCounts SET Faults = 9",
        "DROP TABLE VordaneFaultCounts",
        "DROP TABLE VordaneFaultCounts; CREATE VIEW VordaneFaultCounts AS SELECT 1 AS ID, 7 AS Faults"}) {
    ASSERT_EQ(OtherTool(path_).run(former), "") << former;
    ASSERT_EQ(OtherTool(path_).run("UPDATE VordaneFaultIndex SET Kind = x'01FF01FF0141' WHERE Count = 1"),
              "");
    const auto database = open();
    EXPECT_EQ(counts(*database, clauses[2][0]), (std::vector<std::string>{"1", "2"})) << former;
    EXPECT_EQ(asked("SELECT hex(Kind) FROM VordaneFaultIndex WHERE Count = 1"), "01FF01FF0141\n") << former;
    EXPECT_EQ(asked("SELECT ID || ' ' || Faults FROM VordaneFaultCounts ORDER BY 1"), "1 2\n2 1\n") << former;
    EXPECT_EQ(asked("SELECT Version FROM VordaneIndexState"), "3\n") << former;
  }
}

TEST_F(FaultCountsTest, AnIndexThatIsStaleBesidesIsMadeAnewWithItsCounts) {
  addThree();
  OtherTool(path_).run(
      "DROP TABLE VordaneFaultCounts; UPDATE VordaneIndexState SET Version = 2; UPDATE VordaneFaultIndex SET "
      "Kind = x'01FF01FF0141'; UPDATE FaultDisplay SET ID = 2 WHERE Count = 1");
  EXPECT_EQ(counts(*open(), clauses[2][0]), std::vector<std::string>{"2"});
  EXPECT_EQ(asked("SELECT count(*) FROM VordaneFaultIndex WHERE Kind = x'01FF01FF0141'"), "0\n");
  EXPECT_EQ(differences(), "");
}

TEST_F(FaultCountsTest, AFileThatIsOnlyReadNeedsNone) {
  addThree();
  OtherTool(path_).run("DROP TABLE VordaneFaultCounts; UPDATE VordaneIndexState SET Version = 2");
  const auto database = open(true);
  EXPECT_EQ(counts(*database, clauses[2][1]), (std::vector<std::string>{"2", "1"}));
  expectTheGridAsTheStatement(*database, 2);
  EXPECT_EQ(asked("SELECT count(*) FROM sqlite_schema WHERE name = 'VordaneFaultCounts'"), "0\n");
}

// Another program of this version has added the counts meanwhile.
TEST_F(FaultCountsTest, TwoProgramsThatOpenAFormerIndexCountOnce) {
  addThree();
  const auto database = open(), besides = open();
  OtherTool(path_).run("DROP TABLE VordaneFaultCounts; UPDATE VordaneIndexState SET Version = 2");
  show(*besides);
  addFault(*besides, {2, u"02", u"MJ", u"MP", u"2006/01/02"});
  addFault(*database, {2, u"03", u"MJ", u"MP", u"2006/01/02"});
  EXPECT_EQ(asked("SELECT ID || ' ' || Faults FROM VordaneFaultCounts ORDER BY 1"), "1 2\n2 3\n");
}

}  // namespace
}  // namespace vordane::sqlite
