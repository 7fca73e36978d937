// Two users of one file: whoever must wait too long is told so and loses nothing; readers are not held up,
// and hold nobody up.
#include <gtest/gtest.h>

#include "access/recording_visitor.h"
#include "crash/lists.h"
#include "database/contract.h"
#include "database/embedded.h"
#include "store/fault_store.h"
#include "store/statements.h"
#include "tools/sqlite/table_reader.h"

namespace vordane::crash {
namespace {

using sqlite::EmbeddedUnderTest;
using Lines = std::vector<std::string>;

class Beside : public testing::TestWithParam<bool> {
 protected:
  Beside() {
    form.database = under.engine().open(file, false);
    faults.setSortFlags();
    receiveList(form, 0);
  }
  ~Beside() override { faults.close(); }

  static sqlite::Options options() {
    sqlite::Options options;
    options.onNetwork = [](std::u16string_view) { return GetParam(); };
    options.lockWaitMilliseconds = 100;
    return options;
  }
  std::size_t storedIn(database::Database& database) {
    return database::column(database, store::addFaults, u"Count").size();
  }

  EmbeddedUnderTest under{options()};
  std::u16string file = under.make(database::Layout::faults);
  fakes::MemoryStoreForm form;
  store::FaultStore faults{form, form.around()};
};

TEST_P(Beside, AWriterThatWaitsTooLongIsToldAndTheNextListIsStored) {
  const auto other = under.engine().open(file, false);
  other->beginBatch();
  database::addExchange(*other, u"other");
  form.ingest(faults);
  EXPECT_EQ(form.takeTrace(), (Lines{"Account 500=0+0+500 incomplete",
                                     "Box 102 The database is locked by another process.", "EndAction"}));
  other->endBatch();
  form.ingest(faults);
  EXPECT_EQ(form.takeTrace(), (Lines{"Account 500=500+0+0", "Acknowledge"}));
  EXPECT_EQ(storedIn(*form.database), 500U);
  EXPECT_EQ(database::column(*form.database, store::allExchanges, u"PBXName"), (Lines{"other", "PBX-1"}));
}

TEST_P(Beside, DeletionAndLampsWaitTheSameWay) {
  form.ingest(faults);
  form.takeTrace();
  const auto other = under.engine().open(file, false);
  other->beginBatch();
  database::addExchange(*other, u"other");
  form.boxAnswer = 6;
  faults.DeleteExchange();
  EXPECT_EQ(form.takeTrace().back(), "Box 102 The database is locked by another process.");
  form.answer.Clear();
  form.answer.AddToList(u"EA1", u"00", u"11");
  faults.UpDateAlarm(form.received());
  EXPECT_EQ(form.takeTrace(), (Lines{"Box 102 The database is locked by another process."}));
  other->endBatch();
  EXPECT_EQ(storedIn(*form.database), 500U);
}

// A report or a tool that reads in one go sees what was saved when it began.
TEST_P(Beside, AReaderIsNotHeldUpByAnIngestionThatIsNotSaved) {
  form.ingest(faults);
  form.database->beginBatch();
  database::addFault(*form.database, {});
  const auto reader = under.engine().open(file, true);
  EXPECT_EQ(storedIn(*reader), 500U);
  access::RecordingVisitor visitor;
  tools::readTables(file, visitor);
  EXPECT_EQ(visitor.tables.at(u"FaultDisplay").rows.size(), 500U);
  form.database->endBatch();
  EXPECT_EQ(storedIn(*reader), 501U);
}

INSTANTIATE_TEST_SUITE_P(On, Beside, testing::Bool(),
                         [](const auto& run) { return run.param ? "Share" : "Disk"; });

// With the write-ahead log a reader in the middle of the file keeps what it began with, and nobody waits.
TEST(BesideOnDisk, AnIngestionIsNotHeldUpByAReader) {
  EmbeddedUnderTest under(sqlite::Options{.lockWaitMilliseconds = 100});
  const std::u16string file = under.make(database::Layout::faults);
  fakes::MemoryStoreForm form;
  form.database = under.engine().open(file, false);
  store::FaultStore faults(form, form.around());
  faults.setSortFlags();
  receiveList(form, 0);
  form.ingest(faults);
  const auto reader = under.engine().open(file, true);
  const auto rows = reader->openRecordset(store::addFaults);
  std::size_t met = 0;
  for (; !rows->atEnd(); rows->moveNext())
    if (++met == 100) {
      receiveList(form, 1);
      form.ingest(faults);
    }
  EXPECT_EQ(met, 500U);
  EXPECT_EQ(form.takeTrace(),
            (Lines{"Account 500=500+0+0", "Acknowledge", "Account 500=500+0+0", "Acknowledge"}));
  EXPECT_EQ(database::column(*reader, store::addFaults, u"Count").size(), 1000U);
  faults.close();
}

}  // namespace
}  // namespace vordane::crash
