// What has come into a store on a server.
#include <gmock/gmock.h>

#include <limits>

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

TEST_F(ServerArrivals, TheLatestOfAnOwnerIsToldAsRowsTellIt) {
  const auto one = station(), another = station();
  const auto arrivals = one->arrivals();
  const auto stamp = [&] {
    return database::shown(
        one->openRecordset(u"SELECT * FROM PBXList WHERE PBXName = 'PBX-1' AND ID = 1")->get(u"TimeStamp"));
  };
  const auto latest = [&](std::int64_t mark) { return arrivals->latest(1, mark).value(); };
  EXPECT_EQ(text::toUtf8(latest(0).listed), stamp());
  EXPECT_EQ(latest(0).highest, 0);
  addFor(*another, 1, 2);
  addFor(*another, 2, 1);
  EXPECT_EQ(latest(0), (database::Latest{text::fromUtf8(stamp()), true, 3}));
  EXPECT_TRUE(latest(1).more);
  EXPECT_FALSE(latest(2).more) << "number 3 is another's";
  EXPECT_FALSE(latest(std::numeric_limits<std::int64_t>::max()).more);
  runOn(under_.database(), "update vordane.\"PBXList\" set \"TimeStamp\" = '2027-01-02 03:04:05'");
  EXPECT_EQ(text::toUtf8(latest(2).listed), "2027-01-02 03:04:05");
  EXPECT_EQ(stamp(), "2027-01-02 03:04:05");
  runOn(under_.database(), "update vordane.\"PBXList\" set \"TimeStamp\" = null");
  EXPECT_EQ(latest(2).listed, u"");
  EXPECT_EQ(arrivals->latest(9, 0), std::nullopt) << "no such exchange";
}

TEST_F(ServerArrivals, TheLatestIsTheSavedOneAndNoLockIsWaitedFor) {
  const auto one = station(), another = station();
  const auto arrivals = one->arrivals();
  another->beginBatch();
  addFault(*another, {1, u"01", u"MJ", u"MP", u"2006/11/27 10:15", u"x"});
  const auto found = another->openRecordset(u"Select * FROM PBXList WHERE PBXName = \"PBX-1\"");
  found->edit();
  found->set(u"TimeStamp", std::u16string(u"2027-01-02 03:04:05"));
  found->update();
  EXPECT_FALSE(arrivals->latest(1, 0)->more);
  EXPECT_NE(arrivals->latest(1, 0)->listed, u"2027-01-02 03:04:05");
  another->endBatch();
  EXPECT_TRUE(arrivals->latest(1, 0)->more);
  EXPECT_EQ(arrivals->latest(1, 0)->listed, u"2027-01-02 03:04:05");
}

TEST_F(ServerArrivals, TheLatestIsFoundAlongTheNumbers) {
  const auto link = connectTo(under_.database());
  link->change(
      "insert into vordane.\"FaultDisplay\" (\"ID\", \"Date\") select 2, 'd' from "
      "generate_series(1, 20000)");
  link->change("analyze vordane.\"FaultDisplay\"");
  const auto ask = [&](const std::string& query) {
    return text::toUtf8(link->query(query).at(0).at(0).value_or(u"Null"));
  };
  const auto read = [&] {
    // A connection's numbers are there when it has gone.
    while (ask("select count(*)::text from pg_stat_activity where application_name = 'Vordane' and datname = "
               "current_database()") != "0") {
    }
    return ask(
        "select (idx_scan > 0)::text || ' ' || seq_tup_read from pg_stat_user_tables where relname = "
        "'FaultDisplay'");
  };
  const auto askTimes = [&](int times) {
    const auto one = station();
    while (times-- > 0) one->arrivals()->latest(1, 19990);
  };
  link->query("select pg_stat_reset()::text");
  askTimes(10);
  EXPECT_EQ(read(), "true 0") << "no row is read but through an index";
}

TEST_F(ServerArrivals, AStoreWithoutEventsHasNone) {
  path_ = under_.make(Layout::schedule);
  EXPECT_EQ(station()->arrivals(), nullptr);
}

}  // namespace
}  // namespace vordane::odbc
