// A fault list on its way into a file that the Access engine keeps: the store as it is, over DAO.
#include <gtest/gtest.h>

#include "dao/dao_under_test.h"
#include "fakes/memory_store_form.h"
#include "fakes/watched_database.h"
#include "store/fault_store.h"
#include "store/statements.h"

namespace vordane::store {
namespace {

using Lines = std::vector<std::string>;

class DaoIngestion : public testing::Test {
 protected:
  DaoIngestion() {
    form.database = under.engine().open(file, false);
    store.setSortFlags();
  }
  ~DaoIngestion() override { store.close(); }

  std::vector<std::u16string> stored(std::u16string_view statement, std::u16string_view name) {
    std::vector<std::u16string> values;
    const auto rows = form.database->openRecordset(statement);
    for (; !rows->atEnd(); rows->moveNext()) values.push_back(textOf(rows->get(name)));
    return values;
  }

  fakes::DaoUnderTest under;
  std::u16string file = under.make(database::Layout::faults);
  fakes::MemoryStoreForm form;
  FaultStore store{form, form.around()};
};

TEST_F(DaoIngestion, StoresAListAndShowsIt) {
  form.receive(u"01 MJ MP   ", u"2026/11/20 20:58", u"01 00", u"");
  form.receive(u"0A MN AB 0C", u"06/11/27 10:15", u"0C", u"0D");
  form.ingest(store);
  EXPECT_EQ(form.takeTrace(), (Lines{"Account 2=2+0+0", "Acknowledge"}));
  EXPECT_EQ(stored(addFaults, u"CPU"), (std::vector<std::u16string>{u"MP   ", u"AB 12"}));
  EXPECT_EQ(stored(exchangesNewestFirst, u"TimeStamp"),
            (std::vector<std::u16string>{u"2026-11-20 21:14:05"}));
  ASSERT_NE(form.memoryView.rows, nullptr);
  EXPECT_EQ(form.memoryView.rows->size(), 2U);
  EXPECT_EQ(form.window.control(u"txtTimeTag").text(u"Text"), u"20.11.2026 21:14:05");
}

TEST_F(DaoIngestion, AddsNothingTheSecondTime) {
  form.receive(u"01 MJ MP   ", u"2026/11/20 20:58", u"01 00", u"");
  form.ingest(store);
  form.takeTrace();
  form.ingest(store);
  EXPECT_EQ(form.takeTrace(),
            (Lines{"Account 1=0+1+0", "ShowMessage nothing new", "Box 104", "Acknowledge"}));
  EXPECT_EQ(stored(addFaults, u"Count").size(), 1U);
}

// The row that was begun is dropped, and the same file takes the next list.
TEST_F(DaoIngestion, AListThatFailedIsCompletedByTheNextOne) {
  auto watched = std::make_unique<fakes::WatchedDatabase>(std::move(form.database));
  fakes::WatchedDatabase& failing = *watched;
  form.database = std::move(watched);
  int updates = 0;
  failing.before = [&](std::u16string_view step) {
    if (step == u"update" && ++updates == 3) throw database::DatabaseError(3218, u"currently locked");
  };
  form.receive(u"01 MJ MP   ", u"2026/11/20 20:58", u"01 00", u"");
  form.receive(u"0A MN AB 0C", u"06/11/27 10:15", u"0C", u"0D");
  form.ingest(store);
  EXPECT_EQ(form.takeTrace(), (Lines{"Account 2=1+0+1 incomplete", "Box 102 currently locked", "EndAction"}));
  EXPECT_EQ(stored(addFaults, u"Fault"), std::vector<std::u16string>{u"01"});
  failing.before = [](std::u16string_view) {};
  form.ingest(store);
  EXPECT_EQ(form.takeTrace(), (Lines{"Account 2=1+1+0", "Acknowledge"}));
  EXPECT_EQ(stored(addFaults, u"Fault"), (std::vector<std::u16string>{u"01", u"0A"}));
  ASSERT_NE(form.memoryView.rows, nullptr);
  EXPECT_EQ(form.memoryView.rows->size(), 2U);
}

TEST_F(DaoIngestion, DeletesAnExchangeWithItsFaults) {
  form.receive(u"01 MJ MP   ", u"2026/11/20 20:58", u"01 00", u"");
  form.ingest(store);
  form.database->execute(u"DELETE FROM PBXList WHERE ID = 1");
  form.database->execute(u"DELETE FROM FaultDisplay WHERE ID = 1");
  EXPECT_TRUE(stored(addFaults, u"Count").empty());
}

}  // namespace
}  // namespace vordane::store
