// What has come into a store on a server.
#include <gmock/gmock.h>

#include "database/contract.h"
#include "odbc/server_store.h"
#include "platform/odbc/library.h"
#include "startup/databases.h"
#include "text/utf8.h"

namespace vordane::odbc {
namespace {

using database::addExchange;
using database::addFault;
using database::Arrival;
using database::Database;
using database::Fault;
using database::Layout;
using testing::ElementsAre;
using testing::IsEmpty;

class ServerArrivals : public testing::Test {
 protected:
  ServerArrivals() : path_(under_.make(Layout::faults)) {
    const auto one = station();
    addExchange(*one, u"PBX-1");
    addExchange(*one, u"PBX-2");
  }
  std::unique_ptr<Database> station(bool readOnly = false) { return under_.engine().open(path_, readOnly); }
  static void addFor(Database& database, std::int16_t exchange, int faults) {
    database.beginBatch();
    for (int i = 0; i < faults; ++i)
      addFault(database, {exchange, u"01", u"MJ", u"MP", u"2006/11/27 10:15",
                          u"Fault " + text::fromUtf8(std::to_string(i))});
    database.endBatch();
  }

  ServerUnderTest under_{{.lockWaitMilliseconds = 400}};
  std::u16string path_;
};

TEST_F(ServerArrivals, EventsComeInTheOrderOfTheirNumbersFromAMarkOn) {
  const auto database = station();
  const auto arrivals = database->arrivals();
  ASSERT_NE(arrivals, nullptr);
  EXPECT_EQ(arrivals->highest(), 0);
  EXPECT_THAT(arrivals->after(0, 10), IsEmpty());
  addFor(*database, 1, 2);
  addFor(*database, 2, 1);
  addFor(*database, 1, 1);
  EXPECT_EQ(arrivals->highest(), 4);
  EXPECT_THAT(arrivals->after(0, 10),
              ElementsAre(Arrival{1, 1}, Arrival{1, 2}, Arrival{2, 3}, Arrival{1, 4}));
  EXPECT_THAT(arrivals->after(2, 1), ElementsAre(Arrival{2, 3}));
  EXPECT_THAT(arrivals->after(4, 10), IsEmpty());
}

TEST_F(ServerArrivals, AllStationsFindOneIdentityAndAnotherStoreHasAnother) {
  const auto one = station(), another = station();
  const std::u16string identity = one->arrivals()->identity();
  EXPECT_EQ(identity.size(), 32U);
  EXPECT_EQ(another->arrivals()->identity(), identity);
  EXPECT_EQ(station()->arrivals()->identity(), identity);
  path_ = under_.make(Layout::faults);
  EXPECT_NE(station()->arrivals()->identity(), identity);
}

TEST_F(ServerArrivals, WhoOnlyReadsHasNoIdentity) {
  EXPECT_EQ(station(true)->arrivals()->identity(), u"");
}

TEST_F(ServerArrivals, AnotherStationsEventsAreAmongThem) {
  const auto one = station(), another = station();
  const auto arrivals = one->arrivals();
  addFor(*one, 1, 1);
  addFor(*another, 2, 2);
  EXPECT_THAT(arrivals->after(1, 10), ElementsAre(Arrival{2, 2}, Arrival{2, 3}));
}

TEST_F(ServerArrivals, AListKnowsTheNumbersOfItsRows) {
  const auto database = station();
  addFor(*database, 1, 3);
  const std::u16string_view count[] = {u"Count"};
  const auto rows = database->openRowList(
      u"SELECT * FROM FaultDisplay WHERE ID = 1 Order by [Date] Desc, [Count] Desc, [Fault] Desc, [Alarm] "
      u"Desc, "
      u"[CPU] Desc, [Description] Desc",
      count);
  ASSERT_EQ(rows->size(), 3U);
  EXPECT_EQ(rows->number(0), 3);
  EXPECT_EQ(rows->number(2), 1);
  EXPECT_EQ(rows->number(3), std::nullopt);
}

TEST_F(ServerArrivals, AStoreWithoutEventsHasNone) {
  path_ = under_.make(Layout::schedule);
  EXPECT_EQ(station()->arrivals(), nullptr);
}

}  // namespace
}  // namespace vordane::odbc
