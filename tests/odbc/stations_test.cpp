// Several stations at one store, and a server that goes away.
#include <gtest/gtest.h>

#include <atomic>
#include <set>
#include <thread>

#include "database/contract.h"
#include "odbc/server_store.h"
#include "platform/odbc/library.h"
#include "startup/databases.h"
#include "text/numbers.h"
#include "text/utf8.h"

namespace vordane::odbc {
namespace {

using database::addExchange;
using database::addFault;
using database::column;
using database::Database;
using database::Fault;
using database::isStored;
using database::Layout;
using database::numberOfError;

Fault faultNumber(int number) {
  return {1, u"01", u"MJ", u"MP", u"2006/11/27 10:15", u"Fault " + text::decimal(number)};
}

// What an ingestion does: the exchange's row, then look for each fault and add what is missing.
int takeList(Database& database, std::u16string_view exchange, int faults) {
  database.beginBatch();
  const auto found =
      database.openRecordset(u"Select * FROM PBXList WHERE PBXName = \"" + std::u16string(exchange) + u"\"");
  if (found->recordCount() < 1) {
    addExchange(database, exchange);
  } else {
    found->edit();
    found->set(u"TimeStamp", std::u16string(u"2006-11-27 10:15:00"));
    found->update();
  }
  int added = 0;
  for (int i = 0; i < faults; ++i) {
    if (isStored(database, faultNumber(i))) continue;
    addFault(database, faultNumber(i));
    ++added;
  }
  database.endBatch();
  return added;
}

class Stations : public testing::Test {
 protected:
  Stations() { path_ = under_.make(Layout::faults); }
  std::unique_ptr<Database> station() { return under_.engine().open(path_, false); }
  std::vector<Fields> ask(const std::string& statement) {
    return connectTo(under_.database())->query(statement);
  }
  std::string one(const std::string& statement) {
    return text::toUtf8(ask(statement).at(0).at(0).value_or(u"Null"));
  }

  ServerUnderTest under_{{.lockWaitMilliseconds = 400}};
  std::u16string path_;
};

TEST_F(Stations, ThatTakeInTheSameListsStoreEachFaultOnce) {
  constexpr int stations = 4, faults = 300;
  std::atomic<int> added = 0, failed = 0, running = stations;
  std::vector<std::thread> threads;
  for (int i = 0; i < stations; ++i) {
    threads.emplace_back([&] {
      try {
        // An engine belongs to one thread.
        const auto engine = makeEngine(startup::databases, systemLibrary(), {.lockWaitMilliseconds = 60000});
        added += takeList(*engine->open(path_, false), u"PBX-1", faults);
      } catch (const database::DatabaseError& failure) {
        ADD_FAILURE() << failure.number() << " " << failure.what();
        ++failed;
      }
      --running;
    });
  }
  // A number that was not there when a higher one was would be missed by whoever reads what is new.
  const auto reader = connectTo(under_.database());
  std::set<std::u16string> seen;
  long highest = 0;
  for (bool last = false; !last;) {
    last = running == 0;
    long reached = highest;
    for (const Fields& row : reader->query("select \"Count\"::text from vordane.\"FaultDisplay\"")) {
      if (!seen.insert(*row[0]).second) continue;
      const long number = std::stol(text::toUtf8(*row[0]));
      EXPECT_GT(number, highest);
      reached = std::max(reached, number);
    }
    highest = reached;
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(failed, 0);
  EXPECT_EQ(added, faults);
  EXPECT_EQ(one("select count(*) || ' ' || count(distinct \"Description\") from vordane.\"FaultDisplay\""),
            "300 300");
  EXPECT_EQ(one("select count(*) from vordane.\"PBXList\""), "1");
}

TEST_F(Stations, AgreeOnWhatTheFirstOneKeeps) {
  const database::Agreement first{u"English", u"1"}, other{u"Русский", u"2"};
  const auto one = station(), another = station();
  one->beginBatch();
  EXPECT_EQ(one->agree(u"Language", first), first);
  // Until it is saved nobody else decides.
  EXPECT_EQ(numberOfError([&] { another->agree(u"Language", other); }), 3260);
  one->endBatch();
  EXPECT_EQ(another->agree(u"Language", other), first);
  EXPECT_EQ(one->agree(u"Other", other), other);
  EXPECT_EQ(one->agree(u"Language", other), first);
}

TEST_F(Stations, AgreeOnNothingInABatchThatFails) {
  const auto one = station();
  one->beginBatch();
  one->agree(u"Language", {u"English", u"1"});
  this->one(
      "select pg_terminate_backend(pid) from pg_stat_activity where application_name = 'Vordane' and "
      "datname = current_database()");
  EXPECT_EQ(numberOfError([&] { one->endBatch(); }), 3151);
  EXPECT_EQ(this->one("select count(*) from vordane.\"VordaneAgreements\""), "0");
  EXPECT_EQ(one->agree(u"Language", {u"Русский", u"2"}).mark, u"2");
}

TEST_F(Stations, AFaultThatComesTwiceInAListIsStoredOnce) {
  const auto database = station();
  database->beginBatch();
  addFault(*database, faultNumber(1));
  Fault same = faultNumber(1);
  same.description = u"FAULT 1  ";
  EXPECT_TRUE(isStored(*database, same));
  EXPECT_EQ(database->openRecordset(findSame(same))->get(u"Description"), database::text(u"Fault 1"));
  EXPECT_FALSE(isStored(*database, faultNumber(2)));
  database->endBatch();
  EXPECT_TRUE(isStored(*database, same));
}

// What is expected is asked for together, and each answer is as if it had been asked for alone.
TEST_F(Stations, ExpectedFaultsAreFoundAsIfNothingHadBeenSaid) {
  const auto database = station(), other = station();
  for (int i = 0; i < 20; i += 2) addFault(*database, faultNumber(i));
  Fault foreign = faultNumber(1);
  foreign.id = 2;
  addFault(*database, foreign);
  addFault(*database, faultNumber(4));  // twice, as another client may store it
  std::vector<std::u16string> texts;
  for (int i = 0; i < 20; ++i) texts.push_back(findSame(faultNumber(i)));
  Fault odd = faultNumber(3);
  odd.description = u"a,b{\\}\xD83D\xDE00 ' x";
  texts.push_back(findSame(odd));
  const std::vector<database::Statement> coming(texts.begin(), texts.end());
  database->beginBatch();
  database->expect(coming);
  for (int i = 0; i < 20; ++i) {
    const auto found = database->openRecordset(texts[static_cast<std::size_t>(i)]);
    EXPECT_EQ(found->recordCount() > 0, i % 2 == 0) << i;
    if (i % 2 == 0) {
      EXPECT_EQ(found->get(u"Description"), database::text(faultNumber(i).description));
    }
    if (i == 4) {
      found->moveNext();
      EXPECT_FALSE(found->atEnd());
    }
    found->close();
    if (i % 2 != 0) addFault(*database, faultNumber(i));
    EXPECT_TRUE(isStored(*database, faultNumber(i))) << i;
    // After a saving others may add what was missing.
    if (i == 10) {
      database->checkpoint();
      addFault(*other, faultNumber(11));
      EXPECT_TRUE(isStored(*database, faultNumber(11)));
      ++i;
    }
  }
  EXPECT_FALSE(isStored(*database, odd));
  addFault(*database, odd);
  database->endBatch();
  EXPECT_TRUE(isStored(*database, odd));
  EXPECT_EQ(one("select count(*)::text from vordane.\"FaultDisplay\""), "23");
}

TEST_F(Stations, ExpectedFaultsThatAreDeletedOnTheWayAreMissing) {
  const auto database = station();
  addFault(*database, faultNumber(1));
  addFault(*database, faultNumber(2));
  const std::u16string first = findSame(faultNumber(1)), second = findSame(faultNumber(2));
  const std::vector<database::Statement> coming{first, second};
  database->beginBatch();
  database->expect(coming);
  EXPECT_TRUE(isStored(*database, faultNumber(1)));
  database->execute(u"DELETE FROM FaultDisplay WHERE ID = 1");
  EXPECT_FALSE(isStored(*database, faultNumber(2)));
  database->endBatch();
  EXPECT_FALSE(isStored(*database, faultNumber(1)));
}

TEST_F(Stations, ANumberBelowZeroThatAnotherClientGaveIsReadLikeAnyOther) {
  const auto database = station();
  addExchange(*database, u"PBX-1");
  addFault(*database, faultNumber(1));
  connectTo(under_.database())
      ->change(
          "insert into vordane.\"FaultDisplay\" (\"Count\", \"ID\", \"Fault\", \"Alarm\", \"CPU\", \"Date\", "
          "\"Description\") values (-5, 1, '01', 'MJ', 'MP', '2006/11/27 10:15', 'Fault 2')");
  const std::u16string_view columns[] = {u"Count", u"Description"};
  const auto rows = database->openRowList(
      u"SELECT * FROM FaultDisplay WHERE ID = 1 Order by [Date] Asc, [Count] Asc, [Fault] Asc, [Alarm] Asc, "
      u"[CPU] Asc, [Description] Asc",
      columns);
  ASSERT_EQ(rows->size(), 2U);
  std::vector<database::Value> row;
  ASSERT_TRUE(rows->fetch(0, row));
  EXPECT_EQ(row, (std::vector<database::Value>{std::int32_t{-5}, std::u16string(u"Fault 2")}));
}

TEST_F(Stations, ALockThatIsNotHadEndsTheStep) {
  const auto database = station();
  const auto other = connectTo(under_.database());
  other->begin();
  other->query("select pg_advisory_xact_lock(1987014244, 1)");
  EXPECT_EQ(numberOfError([&] { addFault(*database, faultNumber(1)); }), 3260);
  database->beginBatch();
  addFault(*database, faultNumber(1));
  EXPECT_EQ(numberOfError([&] { database->endBatch(); }), 3260);
  other->commit();
  database->beginBatch();
  EXPECT_FALSE(isStored(*database, faultNumber(1)));
  addFault(*database, faultNumber(1));
  database->endBatch();
  EXPECT_TRUE(isStored(*database, faultNumber(1)));
}

TEST_F(Stations, AnExchangeDeletedMeanwhileGetsNoFaults) {
  const auto database = station(), other = station();
  database->beginBatch();
  addExchange(*database, u"PBX-1");
  addFault(*database, faultNumber(1));
  // Until the next saving nobody can delete it.
  EXPECT_EQ(numberOfError([&] { other->execute(u"DELETE FROM PBXList WHERE ID = 1"); }), 3260);
  database->checkpoint();
  other->execute(u"DELETE FROM PBXList WHERE ID = 1");
  other->execute(u"DELETE FROM FaultDisplay WHERE ID = 1");
  EXPECT_EQ(numberOfError([&] { isStored(*database, faultNumber(2)); }), 3167);
  EXPECT_EQ(numberOfError([&] { addFault(*database, faultNumber(2)); }), 3167);
  database->endBatch();
  EXPECT_EQ(one("select count(*) from vordane.\"FaultDisplay\""), "0");
  EXPECT_EQ(takeList(*database, u"PBX-1", 3), 3);
}

TEST_F(Stations, TheFirstErrorOfALostServerIsFinalAndTheNextStepConnectsAgain) {
  const auto database = station();
  takeList(*database, u"PBX-1", 2);
  database->beginBatch();
  EXPECT_FALSE(isStored(*database, faultNumber(2)));
  addFault(*database, faultNumber(2));
  ask("select pg_terminate_backend(pid) from pg_stat_activity where application_name = 'Vordane' and datname "
      "= "
      "current_database()");
  EXPECT_EQ(numberOfError([&] { database->checkpoint(); }), 3151);
  EXPECT_EQ(numberOfError([&] { database->endBatch(); }), 0) << "nothing is left to save";
  EXPECT_EQ(one("select count(*) from vordane.\"FaultDisplay\""), "2");
  EXPECT_FALSE(isStored(*database, faultNumber(2)));
  EXPECT_EQ(takeList(*database, u"PBX-1", 4), 2);
}

TEST_F(Stations, ARowThatTheServerRefusesLeavesThoseBeforeIt) {
  runOn(under_.database(),
        "alter table vordane.\"FaultDisplay\" add constraint refusing check (\"Fault\" <> '66')");
  const auto database = station();
  database->beginBatch();
  addFault(*database, faultNumber(1));
  addFault(*database, faultNumber(2));
  addFault(*database, {1, u"66", u"MJ", u"MP", u"d", u"refused"});
  addFault(*database, faultNumber(3));
  EXPECT_EQ(numberOfError([&] { database->endBatch(); }), 3421);
  EXPECT_EQ(column(*database, u"Select * from FaultDisplay", u"Description"),
            (std::vector<std::string>{"Fault 1", "Fault 2"}));

  // The same connection works on, and takes the rest as soon as the server does.
  database->beginBatch();
  addFault(*database, {1, u"66", u"MJ", u"MP", u"d", u"refused again"});
  EXPECT_EQ(numberOfError([&] { database->endBatch(); }), 3421);
  runOn(under_.database(), "alter table vordane.\"FaultDisplay\" drop constraint refusing");
  database->beginBatch();
  addFault(*database, {1, u"66", u"MJ", u"MP", u"d", u"taken"});
  addFault(*database, faultNumber(3));
  database->endBatch();
  EXPECT_EQ(column(*database, u"Select * from FaultDisplay", u"Description"),
            (std::vector<std::string>{"Fault 1", "Fault 2", "taken", "Fault 3"}));
}

TEST_F(Stations, ALongBatchIsSavedInBetween) {
  ServerUnderTest hasty({.longestUnsavedMilliseconds = 0});
  const auto path = hasty.make(Layout::faults);
  const auto database = hasty.engine().open(path, false);
  database->beginBatch();
  addFault(*database, faultNumber(1));
  EXPECT_TRUE(isStored(*hasty.engine().open(path, true), faultNumber(1)));
  database->endBatch();
}

}  // namespace
}  // namespace vordane::odbc
