// The contract, an ingestion and the reader of whole files over DAO in another process.
#include "access/recording_visitor.h"
#include "database/contract.h"
#include "database/embedded.h"
#include "fakes/memory_store_form.h"
#include "platform/dao/dao_engine.h"
#include "platform/dao/dao_reader.h"
#include "platform/windows/services/services.h"
#include "startup/databases.h"
#include "store/fault_store.h"
#include "store/statements.h"

namespace vordane::dao {
namespace {

class DaoServer : public database::EngineUnderTest {
 public:
  // What no DAO takes the server remembers, whatever came of the call.
  ~DaoServer() override { EXPECT_EQ(automation::toText(automation::get(*witness_, u"TestMisuse")), u""); }
  database::Engine& engine() override { return *engine_; }
  std::u16string make(database::Layout layout, const std::vector<database::Row>& rows = {}) override {
    return files_.make(layout, rows);
  }
  platform::ObjectCreator& creator() { return creator_; }

 private:
  windows::ComObjectCreator creator_;
  automation::ObjectRef witness_ = creator_.create(u"DAO.DBEngine.120");
  sqlite::EmbeddedUnderTest files_;
  std::unique_ptr<database::Engine> engine_ =
      makeEngine(startup::databases, creator_, std::chrono::milliseconds(40));
};

}  // namespace
}  // namespace vordane::dao

namespace vordane::database {

INSTANTIATE_TEST_SUITE_P(DaoServer, DatabaseContract,
                         testing::Values(EngineFactory{"dao",
                                                       [] { return std::make_unique<dao::DaoServer>(); }}),
                         [](const auto& run) { return run.param.name; });

}  // namespace vordane::database

namespace vordane::dao {
namespace {

TEST(DaoAcrossProcesses, AFaultListIsStoredOnce) {
  DaoServer server;
  fakes::MemoryStoreForm form;
  form.database = server.engine().open(server.make(database::Layout::faults), false);
  store::FaultStore store(form, form.around());
  store.setSortFlags();
  form.receive(u"01 MJ MP   ", u"2026/11/20 20:58", u"01 00", u"");
  form.receive(u"0A MN AB 0C", u"06/11/27 10:15", u"0C", u"0D");
  for (int round = 0; round < 2; ++round) form.ingest(store);
  EXPECT_EQ(form.takeTrace(),
            (std::vector<std::string>{"Account 2=2+0+0", "Acknowledge", "Account 2=0+2+0",
                                      "ShowMessage nothing new", "Box 104", "Acknowledge"}));
  const auto rows = form.database->openRecordset(store::exchangesNewestFirst);
  EXPECT_EQ(store::textOf(rows->get(u"TimeStamp")), u"2026-11-20 21:14:05");
  EXPECT_EQ(form.memoryView.rows->size(), 2U);
  store.close();
}

TEST(DaoAcrossProcesses, AWholeFileIsRead) {
  DaoServer server;
  const std::u16string name = u"Отказ \U0001F514", empty;
  const auto file = server.make(
      database::Layout::faults,
      {{u"PBXList", {7, name, std::u16string(u"2006-11-27 10:15:00"), true, false}},
       {u"FaultDisplay", {7, empty, automation::Null{}, empty, empty, 9, std::u16string(65536, u'x')}}});
  access::RecordingVisitor visitor;
  readAccessFile(server.creator(), file, visitor);
  EXPECT_EQ(visitor.tables.at(u"PBXList").rows,
            (std::vector<std::vector<access::Value>>{
                {7, name, std::u16string(u"2006-11-27 10:15:00"), true, false}}));
  EXPECT_EQ(visitor.tables.at(u"PBXList").table.lastAutoNumber, 7);
  EXPECT_EQ(visitor.tables.at(u"FaultDisplay").rows,
            (std::vector<std::vector<access::Value>>{
                {std::int16_t{7}, empty, automation::Null{}, empty, empty, 9, std::u16string(65536, u'x')}}));
}

}  // namespace
}  // namespace vordane::dao
