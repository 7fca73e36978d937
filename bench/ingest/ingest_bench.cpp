// What the store adds to the engine: each line is a piece of the store's work and a ratio to the engine's own
// part of it, measured in the same run on files of the same rows. Usage: ingest_bench [lists [runs]].
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "fakes/memory_store_form.h"
#include "platform/sqlite/engine.h"
#include "platform/sqlite/schema.h"
#include "store/fault_record.h"
#include "store/fault_store.h"
#include "store/statements.h"

namespace vordane::store {
namespace {

constexpr int faultsInList = 8000;

class BenchFile {
 public:
  BenchFile()
      : path_(std::filesystem::temp_directory_path() / ("vordane-bench-" + std::to_string(++number_))) {
    sqlite::createDatabase(path_.u16string(), sqlite::schema::faultDatabase(), true);
  }
  ~BenchFile() {
    std::error_code ignored;
    for (const char* suffix : {"", "-wal", "-shm"}) std::filesystem::remove(path_.string() + suffix, ignored);
  }
  std::unique_ptr<database::Database> open() { return engine_->open(path_.u16string(), false); }

 private:
  inline static int number_ = 0;
  std::filesystem::path path_;
  std::unique_ptr<database::Engine> engine_ = sqlite::makeEngine();
};

double seconds(const std::function<void()>& work) {
  const auto begin = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

void fillAnswer(cListRequest& answer, int list) {
  constexpr std::array<std::u16string_view, 5> kinds = {u"01", u"02", u"08", u"21", u"40"};
  answer.Clear();
  for (int i = 0; i < faultsInList; ++i) {
    const int n = list * faultsInList + i;
    std::u16string record(kinds[static_cast<std::size_t>(i) % kinds.size()]);
    std::u16string date = u"2026/" + text::decimalPadded(n % 12 + 1, 2);
    date += u"/" + text::decimalPadded(n % 28 + 1, 2) + u" " + text::decimalPadded(n % 24, 2) + u":00";
    const std::u16string data = text::decimalPadded(n / 10000, 4) + u" " + text::decimalPadded(n % 10000, 4);
    for (const auto& entry : {record + u" MJ LP 0C", date, data, std::u16string(u"00 01 02 03 04 05 06 07")})
      answer.AddToList(u"LEA0", entry);
  }
}

// The statements of one list and nothing else: descriptions, dates and columns are ready.
struct Ready {
  std::u16string fault, alarm, cpu, date, description, statement;
};

std::vector<Ready> readyFaults(fakes::MemoryStoreForm& form) {
  std::vector<Ready> ready;
  for (std::int32_t k = 0; k < form.answer.Count(); k += 4) {
    const std::u16string& record = form.answer.FirstData(k);
    Ready fault{std::u16string(faultKind(record)),
                std::u16string(alarmClass(record)),
                processor(record),
                form.answer.FirstData(k + 1),
                form.faultDecoder(true).GetFaultMessage(record, form.answer.FirstData(k + 2),
                                                        form.answer.FirstData(k + 3)),
                {}};
    fault.statement = findFault(1, {fault.fault, fault.alarm, fault.cpu, fault.date, fault.description});
    ready.push_back(std::move(fault));
  }
  return ready;
}

void storeReady(database::Database& database, const std::vector<Ready>& ready) {
  database.beginBatch();
  const auto rows = database.openRecordset(addFaults);
  for (const Ready& fault : ready) {
    if (database.openRecordset(fault.statement)->recordCount() > 0) continue;
    rows->addNew();
    rows->set(u"ID", std::int16_t{1});
    rows->set(u"Fault", fault.fault);
    rows->set(u"Alarm", fault.alarm);
    rows->set(u"CPU", fault.cpu);
    rows->set(u"Date", fault.date);
    rows->set(u"Description", fault.description);
    rows->update();
  }
  database.endBatch();
}

struct Measured {
  std::string name;
  std::vector<double> ratios;
  double storeSeconds = 0, engineSeconds = 0;
};

void note(std::vector<Measured>& table, const std::string& name, double store, double engine) {
  auto found = std::find_if(table.begin(), table.end(), [&](const auto& line) { return line.name == name; });
  if (found == table.end()) found = table.insert(table.end(), Measured{name, {}, 0, 0});
  found->ratios.push_back(engine / store);
  found->storeSeconds = store;
  found->engineSeconds = engine;
}

void measureLists(std::vector<Measured>& table, int lists, const std::string& name,
                  fakes::MemoryStoreForm& form, FaultStore& store, database::Database& engine) {
  double storeTime = 0, engineTime = 0;
  for (int list = 0; list < lists; ++list) {
    fillAnswer(form.answer, list);
    const auto ready = readyFaults(form);
    engineTime += seconds([&] { storeReady(engine, ready); });
    storeTime += seconds([&] { store.IngestFaultList(); });
  }
  note(table, name, storeTime, engineTime);
}

void measureGrid(std::vector<Measured>& table, FaultStore& store, database::Database& engine) {
  constexpr std::array<std::u16string_view, 6> fields = {u"Fault", u"Alarm",       u"Date",
                                                         u"CPU",   u"Description", u"Count"};
  const auto ordered = [&](SortKey key) {
    return seconds([&] { engine.openRowList(faultsOfExchange(1, key), fields); });
  };
  note(table, "select the exchange", seconds([&] { store.RefreshDisplay(); }), ordered(7));
  for (int column = 0; column < sortableColumns; ++column) {
    const double time = seconds([&] { store.headingClicked(column); });
    note(table, "sort by column " + std::to_string(column), time, ordered(store.sortKey()));
  }
  const auto all = engine.openRowList(faultsOfExchange(1, 7), fields);
  std::vector<database::Value> row;
  const double fetching = seconds([&] {
    for (std::size_t i = 0; i < all->size(); ++i) all->fetch(i, row);
  });
  note(table, "look up what is nowhere", seconds([&] { store.lookUp(u"nowhere", -1); }), fetching);
}

void measure(std::vector<Measured>& table, int lists) {
  BenchFile storeFile, engineFile;
  fakes::MemoryStoreForm form;
  form.database = storeFile.open();
  const auto engine = engineFile.open();
  FaultStore store(form);
  store.SetSortFlags();
  measureLists(table, lists, "take in new faults", form, store, *engine);
  measureLists(table, lists, "take in known faults", form, store, *engine);
  measureGrid(table, store, *engine);
  store.close();
}

}  // namespace
}  // namespace vordane::store

int main(int argc, char** argv) {
  using namespace vordane::store;
  const int lists = argc > 1 ? std::atoi(argv[1]) : 25;
  const int runs = argc > 2 ? std::atoi(argv[2]) : 5;
  std::vector<Measured> table;
  for (int run = 0; run < runs; ++run) measure(table, lists);
  std::printf("%d lists of %d faults, %d runs; ratio = engine alone / store, median (lowest to highest)\n",
              lists, faultsInList, runs);
  for (Measured& line : table) {
    std::sort(line.ratios.begin(), line.ratios.end());
    std::printf("%-26s %5.2f (%.2f to %.2f)   last run %.3f s, engine alone %.3f s\n", line.name.c_str(),
                line.ratios[line.ratios.size() / 2], line.ratios.front(), line.ratios.back(),
                line.storeSeconds, line.engineSeconds);
  }
}
