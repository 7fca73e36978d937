// A fault store on a real database file of its own.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <string>

#include "fakes/memory_store_form.h"
#include "fakes/watched_database.h"
#include "platform/sqlite/engine.h"
#include "startup/databases.h"
#include "store/fault_database.h"
#include "store/fault_store.h"
#include "store/statements.h"
#include "tools/sqlite/database_writer.h"

namespace vordane::store {

// A new file with the fault tables, removed with the object.
class FaultFile {
 public:
  FaultFile() {
    static int number = 0;
    directory_ = std::filesystem::temp_directory_path() /
                 ("vordane-store-" + std::to_string(::getpid()) + "-" + std::to_string(++number));
    std::filesystem::create_directory(directory_);
    tools::createDatabase(path(), store::faultTables);
  }
  ~FaultFile() {
    std::error_code ignored;
    std::filesystem::remove_all(directory_, ignored);
  }
  FaultFile(const FaultFile&) = delete;
  FaultFile& operator=(const FaultFile&) = delete;

  std::u16string path() const { return (directory_ / "FAULT.MDB").u16string(); }
  std::unique_ptr<database::Database> open() const { return engine_->open(path(), false); }

 private:
  std::filesystem::path directory_;
  std::unique_ptr<database::Engine> engine_ = sqlite::makeEngine(startup::databases);
};

class StoreTest : public testing::Test {
 protected:
  StoreTest() {
    auto watched = std::make_unique<fakes::WatchedDatabase>(file.open());
    database = watched.get();
    form.database = std::move(watched);
    store.setSortFlags();
  }
  ~StoreTest() override { store.close(); }

  // The values of one column over the rows of a statement.
  std::vector<std::u16string> column(std::u16string_view statement, std::u16string_view name) {
    std::vector<std::u16string> values;
    const auto rows = database->inner().openRecordset(statement);
    for (; !rows->atEnd(); rows->moveNext()) values.push_back(textOf(rows->get(name)));
    return values;
  }
  std::vector<std::u16string> exchanges() { return column(exchangesNewestFirst, u"PBXName"); }
  std::vector<std::u16string> stored(std::u16string_view name) { return column(faultsNewestFirst, name); }

  // A row of PBXList; its ID.
  std::int16_t addExchange(std::u16string_view name, std::u16string_view time, bool major = false,
                           bool minor = false) {
    const auto rows = database->inner().openRecordset(allExchanges);
    rows->addNew();
    rows->set(u"PBXName", std::u16string(name));
    rows->set(u"TimeStamp", std::u16string(time));
    rows->set(u"MJ", major);
    rows->set(u"MN", minor);
    const auto id = exchangeIdOf(rows->get(u"ID"));
    rows->update();
    rows->close();
    return id;
  }

  struct Stored {
    std::u16string_view fault = u"01", alarm = u"MJ", cpu = u"MP   ", date = u"2026/11/20 10:00",
                        description = u"text";
  };
  void addFault(std::int16_t id, const Stored& fault) {
    const auto rows = database->inner().openRecordset(addFaults);
    rows->addNew();
    rows->set(u"ID", id);
    rows->set(u"Fault", std::u16string(fault.fault));
    rows->set(u"Alarm", std::u16string(fault.alarm));
    rows->set(u"CPU", std::u16string(fault.cpu));
    rows->set(u"Date", std::u16string(fault.date));
    rows->set(u"Description", std::u16string(fault.description));
    rows->update();
    rows->close();
  }

  // The grid as it stands.
  std::vector<std::u16string> shown(std::u16string window::GridRow::*member) {
    std::vector<std::u16string> values;
    for (std::size_t i = 0; form.memoryView.rows != nullptr && i < form.memoryView.rows->size(); ++i)
      values.push_back(form.memoryView.rows->row(i).value().*member);
    return values;
  }

  FaultFile file;
  fakes::MemoryStoreForm form;
  fakes::WatchedDatabase* database = nullptr;
  FaultStore store{form, form.around()};
};

}  // namespace vordane::store
