// Receipts of resets in a store that several stations share.
#include "platform/receipts.h"

#include "database/contract.h"
#include "odbc/server_store.h"

namespace vordane::odbc {
namespace {

using database::Layout;
using database::Receipt;
using database::ReceiptEntry;
using database::ReceiptLamps;

class ServerReceiptsTest : public testing::Test {
 protected:
  std::unique_ptr<database::Database> open(bool readOnly = false) {
    return under_.engine().open(path_, readOnly);
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

  ServerUnderTest under_;
  std::u16string path_ = under_.make(Layout::faults);
};

TEST_F(ServerReceiptsTest, AnotherStationReadsThemAsTheyWereKept) {
  const auto station = open(), other = open();
  database::addExchange(*station, u"PBX-1");
  runOn(under_.database(), "update vordane.\"PBXList\" set \"MN\" = -1");
  Receipt first = reset(u"PBX-1");
  first.answered = 1;
  first.entries = {{u"EA1", u"00", u"CCC", u"OK"}};
  station->receipts()->keep(first);
  Receipt second = reset(u"PBX-1", u"error code");
  second.code = -61;
  second.answered = 5;
  second.entries = {{u"", u" x ", u"Büro {\"電話\\\"} \xD83D\xDE00", u"a\r\nb,NULL"}, {u"2", u"", u"", u""}};
  station->receipts()->keep(second);
  other->receipts()->keep(reset(u"PBX-9"));

  const auto found = all(*other);
  ASSERT_EQ(found.size(), 3U);
  EXPECT_EQ(found[0].exchange, u"PBX-9");
  EXPECT_EQ(found[0].lamps, std::nullopt) << "of no exchange that is stored";
  EXPECT_TRUE(found[0].entries.empty());
  EXPECT_EQ(found[1].outcome, u"error code");
  EXPECT_EQ(found[1].code, -61);
  EXPECT_EQ(found[1].answered, 5);
  EXPECT_EQ(found[1].entries, second.entries);
  EXPECT_EQ(found[2].number, 1);
  EXPECT_EQ(found[2].moment, u"2026-11-20 21:14:05");
  EXPECT_EQ(found[2].exchange, u"PBX-1");
  EXPECT_EQ(found[2].person, u"anna");
  EXPECT_EQ(found[2].workstation, u"STATION-3");
  EXPECT_EQ(found[2].lamps, (ReceiptLamps{false, true}));
  EXPECT_EQ(found[2].outcome, u"confirmed");
  EXPECT_EQ(found[2].code, std::nullopt);
  EXPECT_EQ(found[2].answered, 1);
  EXPECT_EQ(found[2].entries, first.entries);
}

TEST_F(ServerReceiptsTest, TheLastIsThatOfTheExchangeAlsoWhenItIsDeleted) {
  const auto station = open();
  database::addExchange(*station, u"PBX-1");
  EXPECT_FALSE(station->receipts()->last(u"PBX-1")) << "before the first";
  station->receipts()->keep(reset(u"PBX-1", u"not confirmed"));
  station->receipts()->keep(reset(u"pbx-1 "));
  station->receipts()->keep(reset(u"PBX-2", u"cancelled"));
  station->execute(u"DELETE FROM PBXList WHERE ID = 1");
  EXPECT_EQ(station->receipts()->last(u"PBX-1")->outcome, u"confirmed");
  EXPECT_EQ(station->receipts()->last(u"Pbx-2  ")->outcome, u"cancelled");
  EXPECT_FALSE(station->receipts()->last(u"PBX"));
  EXPECT_EQ(all(*open(true)).size(), 3U);
}

TEST_F(ServerReceiptsTest, WhatNoServerKeepsIsMarked) {
  const auto station = open();
  Receipt receipt = reset(u"PBX-1");
  receipt.answered = 1;
  receipt.entries = {{std::u16string(u"a\0b", 3), u"\xD83D", u"x\xDE00\xD83D\xDE00", u""}};
  station->receipts()->keep(receipt);
  EXPECT_EQ(all(*station).at(0).entries,
            (std::vector<ReceiptEntry>{{u"a\xFFFD"
                                        u"b",
                                        u"\xFFFD", u"x\xFFFD\xD83D\xDE00", u""}}));
}

TEST_F(ServerReceiptsTest, WhoeverOnlyReadsKeepsNone) {
  const auto reader = open(true);
  EXPECT_EQ(database::numberOfError([&] { reader->receipts()->keep(reset(u"PBX-1")); }), 3027);
  EXPECT_TRUE(all(*reader).empty());
}

TEST_F(ServerReceiptsTest, OneThatFailsLeavesNothingAndTheNextIsKept) {
  const auto station = open();
  runOn(under_.database(), "alter table vordane.\"VordaneReceiptEntries\" add check (\"Command\" <> 'no')");
  Receipt refused = reset(u"PBX-1");
  refused.entries = {{u"no", u"", u"", u""}};
  EXPECT_NE(database::numberOfError([&] { station->receipts()->keep(refused); }), 0);
  EXPECT_TRUE(all(*station).empty()) << "neither the receipt nor its lines";
  station->receipts()->keep(reset(u"PBX-1"));
  EXPECT_EQ(all(*station).size(), 1U);
}

TEST_F(ServerReceiptsTest, AStoreThatWasMadeWithoutThemKeepsNone) {
  runOn(under_.database(), "drop table vordane.\"VordaneReceipts\"");
  EXPECT_EQ(open()->receipts(), nullptr);
}

}  // namespace
}  // namespace vordane::odbc
