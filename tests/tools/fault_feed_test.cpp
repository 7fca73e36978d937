// What is stored behind a fault, as another process reads it while the add-in works.
#include "tools/sqlite/fault_feed.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "database/embedded.h"
#include "platform/database.h"
#include "platform/database_numbers.h"
#include "store/statements.h"
#include "text/utf8.h"

namespace vordane::tools {
namespace {

using sqlite::EmbeddedUnderTest;

class FaultFeed : public testing::Test {
 protected:
  FaultFeed() : file(under.make(database::Layout::faults)), addIn(under.engine().open(file, false)) {}

  void addExchange(const char16_t* name) {
    const auto rows = addIn->openRecordset(store::allExchanges);
    rows->addNew();
    rows->set(u"PBXName", std::u16string(name));
    rows->set(u"TimeStamp", std::u16string(u"2026-11-20 10:00:00"));
    rows->set(u"MJ", true);
    rows->update();
  }
  void addFault(std::int32_t exchange, const char16_t* description) {
    const auto rows = addIn->openRecordset(store::addFaults);
    rows->addNew();
    rows->set(u"ID", exchange);
    const std::pair<const char16_t*, const char16_t*> columns[] = {{u"Fault", u"3B"},
                                                                   {u"Alarm", u"MN"},
                                                                   {u"Date", u"2026/11/20 09:00"},
                                                                   {u"CPU", u"LP 1"},
                                                                   {u"Description", description}};
    for (const auto& [column, text] : columns) rows->set(column, std::u16string(text));
    rows->update();
  }
  FeedPiece read(std::int64_t behind = beforeAllFaults, int most = 100) {
    return readFeed(file, behind, behind, most);
  }
  static std::string told(const FeedPiece& piece) {
    std::string all;
    for (const StoredFault& fault : piece.faults)
      all += std::to_string(fault.number) + ':' + text::toUtf8(fault.exchange) + ':' +
             text::toUtf8(fault.description) + ' ';
    return all + "reached " + std::to_string(piece.reached) + " of " + std::to_string(piece.highest) +
           (piece.more ? ", more" : "");
  }

  EmbeddedUnderTest under;
  std::u16string file;
  std::unique_ptr<database::Database> addIn;
};

TEST_F(FaultFeed, TellsWhatIsStoredInTheOrderOfStoring) {
  EXPECT_EQ(told(read()), "reached " + std::to_string(beforeAllFaults) + " of 0");
  addExchange(u"PBX-1");
  addExchange(u"PBX-2");
  addFault(1, u"a");
  addFault(2, u"b");
  addFault(1, u"c");
  EXPECT_EQ(told(read(beforeAllFaults, 2)), "1:PBX-1:a 2:PBX-2:b reached 2 of 3, more");
  EXPECT_EQ(told(read(2, 2)), "3:PBX-1:c reached 3 of 3");
  EXPECT_EQ(told(read(3)), "reached 3 of 3");
  const FeedPiece piece = read(2);
  ASSERT_TRUE(piece.witness);
  EXPECT_EQ(piece.witness->description, u"b");
  const StoredFault& fault = piece.faults.at(0);
  EXPECT_EQ(fault.kind + u'|' + fault.alarm + u'|' + fault.time + u'|' + fault.processor,
            u"3B|MN|2026/11/20 09:00|LP 1");
  ASSERT_EQ(piece.exchanges.size(), 2U);
  EXPECT_EQ(piece.exchanges[1].id, 2);
  EXPECT_EQ(piece.exchanges[1].name, u"PBX-2");
  EXPECT_EQ(piece.exchanges[1].received, u"2026-11-20 10:00:00");
  EXPECT_EQ(piece.exchanges[1].lamps, (Lamps{true, false}));
}

TEST_F(FaultFeed, SeesOfAnIngestionWhatIsSavedAndHoldsNobodyUp) {
  addExchange(u"PBX-1");
  addIn->beginBatch();
  addFault(1, u"a");
  EXPECT_EQ(told(read()), "reached " + std::to_string(beforeAllFaults) + " of 0");
  addIn->checkpoint();
  addFault(1, u"b");
  EXPECT_EQ(told(read()), "1:PBX-1:a reached 1 of 1");
  addIn->endBatch();
  EXPECT_EQ(told(read(1)), "2:PBX-1:b reached 2 of 2");
}

TEST_F(FaultFeed, LeavesOutFaultsOfNoExchangeAndGivesNoNumberTwice) {
  addExchange(u"PBX-1");
  addFault(1, u"a");
  addFault(7, u"lost");
  EXPECT_EQ(told(read()), "1:PBX-1:a reached 2 of 2");
  EXPECT_EQ(read(2).witness, std::nullopt);
  addIn->execute(store::deleteFaults(1));
  addIn->execute(store::deleteFaults(7));
  EXPECT_EQ(told(read()), "reached " + std::to_string(beforeAllFaults) + " of 2");
  addFault(1, u"b");
  EXPECT_EQ(told(read(2)), "3:PBX-1:b reached 3 of 3");
}

}  // namespace
}  // namespace vordane::tools
