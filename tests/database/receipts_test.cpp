// Receipts of resets in embedded files: what is kept, what another program sees of it, and that nothing else
// of the file changes.
#include "platform/receipts.h"

#include "database/fault_index.h"

namespace vordane::sqlite {
namespace {

using database::Receipt;
using database::ReceiptEntry;
using database::ReceiptLamps;

class ReceiptsTest : public FaultIndexTest {
 protected:
  static void keep(database::Database& database, const Receipt& receipt) {
    database.receipts()->keep(receipt);
  }
  static std::vector<Receipt> all(database::Database& database) {
    std::vector<Receipt> found;
    database.receipts()->read([&](const Receipt& receipt) { found.push_back(receipt); });
    return found;
  }
  static Receipt reset(std::u16string exchange, std::u16string outcome = u"confirmed") {
    Receipt receipt;
    receipt.moment = u"2026-11-20 21:14:05";
    receipt.exchange = std::move(exchange);
    receipt.person = u"anna";
    receipt.workstation = u"STATION-3";
    receipt.outcome = std::move(outcome);
    return receipt;
  }
  void light(const char* lamps) {
    EXPECT_EQ(OtherTool(path_).run((std::string("UPDATE PBXList SET ") + lamps).c_str()), "");
  }
  // What the documented tables are and hold, and which numbers they have given.
  std::string documented() {
    OtherTool tool(path_);
    return tool.run(
               "SELECT type || name || sql FROM sqlite_schema WHERE name NOT LIKE 'VordaneReceipt%' AND name "
               "NOT "
               "LIKE 'sqlite_%' ORDER BY name") +
           tool.run("SELECT name || seq FROM sqlite_sequence ORDER BY name") +
           tool.run("SELECT ID || PBXName || TimeStamp || MJ || MN FROM PBXList ORDER BY ID") +
           tool.run("SELECT ID || Fault || Alarm || CPU || Date || Count || Description FROM FaultDisplay") +
           tool.run("SELECT ID || hex(Moment) || Hash || Count FROM VordaneFaultIndex") +
           tool.run("SELECT Version || Stale FROM VordaneIndexState");
  }
};

TEST_F(ReceiptsTest, AreReadAsTheyWereKeptTheLatestFirst) {
  const auto database = open();
  database::addExchange(*database, u"PBX-1");
  light("MJ = -1, MN = 0");
  Receipt first = reset(u"PBX-1");
  first.answered = 3;
  first.entries = {{u"EA1", u"00", u"CCC", u"OK"}, {u"", u" x ", u"Büro 電話 \xD83D\xDE00", u"a\r\nb"}};
  keep(*database, first);
  Receipt second = reset(u"PBX-1", u"error code");
  second.code = 61;
  keep(*database, second);

  const auto found = all(*database);
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found[1].number, 1);
  EXPECT_EQ(found[1].moment, u"2026-11-20 21:14:05");
  EXPECT_EQ(found[1].exchange, u"PBX-1");
  EXPECT_EQ(found[1].person, u"anna");
  EXPECT_EQ(found[1].workstation, u"STATION-3");
  EXPECT_EQ(found[1].lamps, (ReceiptLamps{true, false}));
  EXPECT_EQ(found[1].outcome, u"confirmed");
  EXPECT_EQ(found[1].code, std::nullopt);
  EXPECT_EQ(found[1].answered, 3);
  EXPECT_EQ(found[1].entries, first.entries);
  EXPECT_EQ(found[0].number, 2);
  EXPECT_EQ(found[0].outcome, u"error code");
  EXPECT_EQ(found[0].code, 61);
  EXPECT_EQ(found[0].answered, 0);
  EXPECT_TRUE(found[0].entries.empty());
}

TEST_F(ReceiptsTest, AreRowsForAnySqliteTool) {
  const auto database = open();
  database::addExchange(*database, u"PBX-1");
  light("MJ = 0, MN = -1");
  Receipt receipt = reset(u"PBX-1");
  receipt.answered = 1;
  receipt.entries = {{u"EA1", u"00", u"CCC", u"OK"}};
  keep(*database, receipt);
  OtherTool tool(path_);
  EXPECT_EQ(
      tool.run("SELECT Number || '|' || Moment || '|' || Exchange || '|' || Person || '|' || Workstation || "
               "'|' || Major || Minor || '|' || Outcome || '|' || coalesce(Code, '-') || '|' || Answered "
               "FROM VordaneReceipts"),
      "1|2026-11-20 21:14:05|PBX-1|anna|STATION-3|01|confirmed|-|1\n");
  EXPECT_EQ(
      tool.run("SELECT Receipt || '|' || Place || '|' || Command || '|' || First || '|' || Second || '|' || "
               "Extra FROM VordaneReceiptEntries"),
      "1|1|EA1|00|CCC|OK\n");
  EXPECT_EQ(tool.run("PRAGMA integrity_check"), "ok\n");
}

TEST_F(ReceiptsTest, TheLastIsThatOfTheExchangeWhateverItsCase) {
  const auto database = open();
  EXPECT_FALSE(database->receipts()->last(u"PBX-1")) << "before the first";
  keep(*database, reset(u"PBX-1", u"not confirmed"));
  keep(*database, reset(u"pbx-1 "));
  keep(*database, reset(u"PBX-2", u"cancelled"));
  EXPECT_EQ(database->receipts()->last(u"PBX-1")->outcome, u"confirmed");
  EXPECT_EQ(database->receipts()->last(u"Pbx-2  ")->outcome, u"cancelled");
  EXPECT_FALSE(database->receipts()->last(u"PBX"));
}

TEST_F(ReceiptsTest, TheLampsAreThoseOfTheExchangesRowAtThatMoment) {
  const auto database = open();
  database::addExchange(*database, u"PBX-1");
  database::addExchange(*database, u"PBX-2");
  light("MJ = -1, MN = -1 WHERE PBXName = 'PBX-2'");
  keep(*database, reset(u"PBX-1"));
  keep(*database, reset(u"pbx-2"));
  light("MJ = 0, MN = 0");
  keep(*database, reset(u"PBX-9"));
  const auto found = all(*database);
  EXPECT_EQ(found[0].lamps, std::nullopt) << "of no exchange that is stored";
  EXPECT_EQ(found[1].lamps, (ReceiptLamps{true, true}));
  EXPECT_EQ(found[2].lamps, (ReceiptLamps{false, false}));
}

TEST_F(ReceiptsTest, NothingElseOfTheFileChanges) {
  const auto database = open();
  database::addExchange(*database, u"PBX-1");
  database::addFault(*database, {});
  const std::u16string_view columns[] = {u"Fault"};
  const auto rows = database->openRowList(
      u"SELECT * FROM FaultDisplay WHERE ID = 1" + std::u16string(clauses[2][1]), columns);
  ASSERT_EQ(rows->size(), 1U);
  const std::string before = documented();
  keep(*database, reset(u"PBX-1"));
  keep(*database, reset(u"PBX-1"));
  EXPECT_EQ(documented(), before);
  std::vector<Value> values;
  EXPECT_TRUE(rows->fetch(0, values)) << "rows that are shown stay";
  database::addFault(*database, {1, u"02"});
  EXPECT_TRUE(database::isStored(*database, {1, u"02"}));
}

TEST_F(ReceiptsTest, StayWhenTheirExchangeIsDeleted) {
  const auto database = open();
  database::addExchange(*database, u"PBX-1");
  database::addFault(*database, {});
  keep(*database, reset(u"PBX-1"));
  database->execute(u"DELETE FROM PBXList WHERE ID = 1");
  database->execute(u"DELETE FROM FaultDisplay WHERE ID = 1");
  EXPECT_EQ(database->receipts()->last(u"PBX-1")->lamps, (ReceiptLamps{false, false}));
  EXPECT_EQ(all(*open(true)).size(), 1U);
}

TEST_F(ReceiptsTest, AFileThatIsOnlyReadIsNotChanged) {
  {
    const auto reader = open(true);
    EXPECT_TRUE(all(*reader).empty());
    EXPECT_FALSE(reader->receipts()->last(u"PBX-1"));
    EXPECT_EQ(database::numberOfError([&] { keep(*reader, reset(u"PBX-1")); }), 3027);
  }
  EXPECT_EQ(OtherTool(path_).run("SELECT count(*) FROM sqlite_schema WHERE name LIKE 'VordaneReceipt%'"),
            "0\n");
}

TEST_F(ReceiptsTest, ALockIsWaitedForAMomentAndTheNextIsKept) {
  const auto database = open();
  database::addExchange(*database, u"PBX-1");
  {
    OtherTool other(path_);
    ASSERT_EQ(other.run("BEGIN IMMEDIATE"), "");
    EXPECT_EQ(database::numberOfError([&] { keep(*database, reset(u"PBX-1")); }), 3260);
    ASSERT_EQ(other.run("ROLLBACK"), "");
  }
  EXPECT_TRUE(all(*database).empty());
  keep(*database, reset(u"PBX-1"));
  EXPECT_EQ(all(*database).size(), 1U);
}

TEST_F(ReceiptsTest, WhatStandsUnderTheirNamesIsLeftAsItIs) {
  const auto database = open();
  ASSERT_EQ(OtherTool(path_).run("CREATE TABLE vordanereceiptentries (x); INSERT INTO vordanereceiptentries "
                                 "VALUES ('mine')"),
            "");
  EXPECT_EQ(database::numberOfError([&] { keep(*database, reset(u"PBX-1")); }), 3204);
  EXPECT_EQ(database::numberOfError([&] { database->receipts()->last(u"PBX-1"); }), 3204);
  EXPECT_EQ(OtherTool(path_).run("SELECT x FROM VordaneReceiptEntries"), "mine\n");
  EXPECT_EQ(OtherTool(path_).run("SELECT count(*) FROM sqlite_schema WHERE name = 'VordaneReceipts'"), "0\n");
  ASSERT_EQ(OtherTool(path_).run("DROP TABLE vordanereceiptentries"), "");
  keep(*database, reset(u"PBX-1"));
  EXPECT_EQ(all(*database).size(), 1U);
}

TEST_F(ReceiptsTest, OnlyAFileWithLampsKeepsThem) {
  EXPECT_EQ(under_.engine().open(under_.make(Layout::ownLanguage), false)->receipts(), nullptr);
  const auto database = open();
  ASSERT_EQ(OtherTool(path_).run("ALTER TABLE PBXList RENAME COLUMN MN TO Other"), "");
  EXPECT_EQ(database->receipts(), nullptr);
}

}  // namespace
}  // namespace vordane::sqlite
