// The embedded engine under the documented statements against its own bare statements in the same run.
//
//   store_bench [--quick] [more|screen|sort|lookup|filter|flood|select|delete]     a tenth of the rows; one
//   piece of work alone
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <random>

#include "bench/common/measure.h"
#include "bench/store/bare_store.h"
#include "bench/store/filter_bench.h"
#include "bench/store/made_faults.h"
#include "platform/sqlite/engine.h"
#include "startup/databases.h"
#include "store/fault_database.h"
#include "tools/sqlite/database_writer.h"

namespace vordane::bench {
namespace {

std::size_t scale = 1;  // what the numbers of rows are divided by

class Folder {
 public:
  Folder()
      : path_(std::filesystem::temp_directory_path() /
              ("vordane-bench-" + std::to_string(std::random_device{}()))) {
    std::filesystem::create_directories(path_);
  }
  ~Folder() { std::filesystem::remove_all(path_); }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  const std::filesystem::path& path() const { return path_; }
  std::filesystem::path fresh(std::string_view name) const {
    const auto file = path_ / name;
    tools::createDatabase(file.u16string(), store::faultTables, true);
    // The engine's first opening lays out its index.
    const auto database = sqlite::makeEngine(startup::databases)->open(file.u16string(), false);
    database->openRecordset(u"SELECT * FROM FaultDisplay Order by [Date] Desc")->isEmpty();
    return file;
  }

 private:
  std::filesystem::path path_;
};

void oneMore(const Folder& folder) {
  constexpr std::size_t times = 50;
  const std::size_t stored = 1000000 / scale;
  Comparison comparison("one more fault, " + thousands(stored) + " stored", "the same, 1,000 stored",
                        timeAtMost(1.5));
  const auto manyFile = folder.fresh("many"), fewFile = folder.fresh("few");
  const auto engine = sqlite::makeEngine(startup::databases);
  const auto many = engine->open(manyFile.u16string(), false), few = engine->open(fewFile.u16string(), false);
  ingest(*many, makeFaults(1, stored));
  ingest(*few, makeFaults(1, 1000));
  const auto more = makeFaults(1, times * runs, 2000000);
  for (std::size_t run = 0; run < runs; ++run) {
    const std::vector<Fault> faults(more.begin() + static_cast<std::ptrdiff_t>(run * times),
                                    more.begin() + static_cast<std::ptrdiff_t>((run + 1) * times));
    const auto addTo = [&](database::Database& database) {
      return processorSeconds([&] {
        for (const Fault& fault : faults) ingest(database, {fault});
      });
    };
    const double ours = addTo(*many);
    comparison.add(ours, addTo(*few));
  }
  comparison.print(times);
}

// A long list is there before all of it is read.
std::unique_ptr<database::RowList> whole(std::unique_ptr<database::RowList> rows) {
  while (!rows->isRead()) rows->readOn();
  return rows;
}

struct Sorting {
  const char* name;
  const char* bare;
  std::u16string_view clause;
};
constexpr Sorting sortings[] = {
    {"Fault", "Fault, Alarm, Date, Count",
     u" Order by [Fault] Asc, [Alarm] Asc, [Date] Asc, [Count] Asc, [CPU] Asc, [Description] Asc"},
    {"Fault, descending", "Fault DESC, Alarm DESC, Date DESC, Count DESC",
     u" Order by [Fault] Desc, [Alarm] Desc, [Date] Desc, [Count] Desc, [CPU] Desc, [Description] Desc"},
    {"Alarm", "Alarm, Fault, Date, Count",
     u" Order by [Alarm] Asc, [Fault] Asc, [Date] Asc, [Count] Asc, [CPU] Asc, [Description] Asc"},
    {"Alarm, descending", "Alarm DESC, Fault DESC, Date DESC, Count DESC",
     u" Order by [Alarm] Desc, [Fault] Desc, [Date] Desc, [Count] Desc, [CPU] Desc, [Description] Desc"},
    {"Date", "Date, Count",
     u" Order by [Date] Asc, [Count] Asc, [Fault] Asc, [Alarm] Asc, [CPU] Asc, [Description] Asc"},
    {"Date, descending", "Date DESC, Count DESC",
     u" Order by [Date] Desc, [Count] Desc, [Fault] Desc, [Alarm] Desc, [CPU] Desc, [Description] Desc"},
    {"CPU", "CPU, Fault, Alarm, Date, Count",
     u" Order by [CPU] Asc ,[Fault] Asc, [Alarm] Asc, [Date] Asc, [Count] Asc, [Description] Asc"},
    {"CPU, descending", "CPU DESC, Fault DESC, Alarm DESC, Date DESC, Count DESC",
     u" Order by [CPU] Desc ,[Fault] Desc, [Alarm] Desc, [Date] Desc, [Count] Desc, [Description] Desc"},
    {"Description", "Description, Fault, Alarm, Date, Count",
     u" Order by [Description] Asc, [Fault] Asc, [Alarm] Asc, [Date] Asc, [Count] Asc, [CPU] Asc"},
    {"Description, descending", "Description DESC, Fault DESC, Alarm DESC, Date DESC, Count DESC",
     u" Order by [Description] Desc, [Fault] Desc, [Alarm] Desc, [Date] Desc, [Count] Desc, [CPU] Desc"},
};

// Each order against the engine's own answer to the same clause in the same tables; the order of time also
// against a bare walk along the index that holds it.
void sorting(const Folder& folder) {
  const auto file = folder.fresh("sorted");
  const auto database = sqlite::makeEngine(startup::databases)->open(file.u16string(), false);
  ingest(*database, makeFaults(1, 1000000 / scale));
  BareStore bare(file.string());
  const std::u16string_view columns[] = {u"Count"};
  const auto list = [&](std::u16string_view exchange, const Sorting& sorting) {
    whole(database->openRowList(
        u"SELECT * FROM FaultDisplay WHERE ID = " + std::u16string(exchange).append(sorting.clause),
        columns));
  };
  const auto ours = [&](const Sorting& sorting) {
    list(u"2", sorting);  // the engine knows the exchange that was shown last
    return processorSeconds([&] { list(u"1", sorting); });
  };
  const std::string rows = thousands(1000000 / scale);
  for (const Sorting& sorting : sortings) {
    Comparison comparison("select " + rows + ", sort by " + sorting.name, "the engine's own ordered scan",
                          timeAtMost(1.3));
    for (int run = 0; run < runs; ++run) {
      const double mine = ours(sorting);
      comparison.add(mine, processorSeconds([&] { bare.orderedKeys(1, sorting.bare); }));
    }
    comparison.print();
  }
  Comparison comparison("select " + rows + ", newest first", "bare walk along the index", noGoal);
  for (int run = 0; run < runs; ++run) {
    const double mine = ours(sortings[5]);
    comparison.add(mine, processorSeconds([&] { bare.scanKeys(1); }));
  }
  comparison.print();
}

// Selecting an exchange: the stored-year step, its row, its faults newest first.
void select(database::Database& database, std::int16_t id) {
  const auto newest = database.openRecordset(u"SELECT * FROM FaultDisplay Order by [Date] Desc");
  if (!newest->isEmpty()) newest->get(u"Date");
  newest->close();
  const std::u16string_view columns[] = {u"Count"};
  // The engine knows the exchange that was shown last, so another one, without faults, is shown before.
  for (const std::int16_t shown : {std::int16_t{0}, id})
    database.openRowList(u"SELECT * FROM FaultDisplay WHERE ID = " +
                             decimal(static_cast<std::size_t>(shown)) + std::u16string(sortings[5].clause),
                         columns);
}

// From the choice of an exchange to the rows of its first screen; the rest of a long list is read later.
void firstScreen(const Folder& folder) {
  constexpr int times = 20;
  constexpr std::size_t screen = 40;
  const std::size_t stored = 1000000 / scale;
  const auto manyFile = folder.fresh("long"), fewFile = folder.fresh("short");
  const auto engine = sqlite::makeEngine(startup::databases);
  const auto many = engine->open(manyFile.u16string(), false), few = engine->open(fewFile.u16string(), false);
  ingest(*many, makeFaults(1, stored));
  ingest(*few, makeFaults(1, 1000));
  Comparison comparison("choose an exchange with " + thousands(stored) + ", to its first screen",
                        "the same with 1,000", timeAtMost(1.5));
  const std::u16string_view columns[] = {u"Fault", u"Alarm", u"Date", u"CPU", u"Description", u"Count"};
  const auto show = [&](database::Database& database) {
    return processorSeconds([&] {
      std::vector<database::Value> row;
      for (int i = 0; i < times; ++i) {
        // The engine knows the exchange that was shown last, so another one, without faults, is shown before.
        database.openRowList(u"SELECT * FROM FaultDisplay WHERE ID = 0" + std::u16string(sortings[5].clause),
                             columns);
        const auto newest = database.openRecordset(u"SELECT * FROM FaultDisplay Order by [Date] Desc");
        if (!newest->isEmpty()) newest->get(u"Date");
        newest->close();
        const auto rows = database.openRowList(
            u"SELECT * FROM FaultDisplay WHERE ID = 1" + std::u16string(sortings[5].clause), columns);
        for (std::size_t position = 0; position < screen; ++position) rows->fetch(position, row);
      }
    });
  };
  for (int run = 0; run < runs; ++run) {
    const double ours = show(*many);
    comparison.add(ours, show(*few));
  }
  comparison.print(times);
}

void selectAmongOthers(const Folder& folder) {
  constexpr int times = 100;
  const auto exchanges = static_cast<std::int16_t>(1000 / scale);
  const auto crowdedFile = folder.fresh("crowded"), aloneFile = folder.fresh("alone");
  const auto engine = sqlite::makeEngine(startup::databases);
  const auto crowded = engine->open(crowdedFile.u16string(), false),
             alone = engine->open(aloneFile.u16string(), false);
  for (std::int16_t id = 1; id <= exchanges; ++id) ingest(*crowded, makeFaults(id, 1000));
  ingest(*alone, makeFaults(7, 1000));
  Comparison comparison("select 1,000 faults among " + thousands(1000000 / scale),
                        "the same, nothing else stored", timeAtMost(1.5));
  const auto selectFrom = [&](database::Database& database) {
    return processorSeconds([&] {
      for (int i = 0; i < times; ++i) select(database, 7);
    });
  };
  for (int run = 0; run < runs; ++run) {
    const double ours = selectFrom(*crowded);
    comparison.add(ours, selectFrom(*alone));
  }
  comparison.print(times);
}

// The bare statements take the same rows from the table and from the index.
void deletion(const Folder& folder) {
  const auto faults = makeFaults(1, 1000000 / scale);
  Comparison comparison("delete an exchange with " + thousands(faults.size()), "the two statements alone",
                        timeAtMost(1.1));
  const auto full = folder.fresh("full");
  ingest(*sqlite::makeEngine(startup::databases)->open(full.u16string(), false), faults);
  const auto copy = [&] {
    const auto file = folder.fresh("deleted");
    std::filesystem::remove(file);  // not every library's copying overwrites
    std::filesystem::copy_file(full, file);
    return file;
  };
  for (int run = 0; run < runs; ++run) {
    const auto ourFile = copy();
    auto database = sqlite::makeEngine(startup::databases)->open(ourFile.u16string(), false);
    const double ours = processorSeconds([&] {
      database->execute(u"DELETE FROM PBXList WHERE ID = 1");
      database->execute(u"DELETE FROM FaultDisplay WHERE ID = 1");
    });
    database.reset();
    BareStore bare(copy().string());
    comparison.add(ours, processorSeconds([&] { bare.deleteExchange(1); }));
  }
  comparison.print();
}

// An exchange's faults in all columns, newest first, as the grid has them, and bare access to the same file.
struct ShownFaults {
  explicit ShownFaults(const std::filesystem::path& file)
      : database(sqlite::makeEngine(startup::databases)->open(file.u16string(), false)) {
    ingest(*database, makeFaults(1, 1000000 / scale));
    bare.emplace(file.string());
    const std::u16string_view columns[] = {u"Fault", u"Alarm", u"Date", u"CPU", u"Description", u"Count"};
    rows = whole(database->openRowList(
        u"SELECT * FROM FaultDisplay WHERE ID = 1" + std::u16string(sortings[5].clause), columns));
  }

  std::unique_ptr<database::Database> database;
  std::optional<BareStore> bare;
  std::unique_ptr<database::RowList> rows;
};

// What is nowhere, so that every row is looked at; the baseline reads the same columns in the same order and
// looks at nothing.
void lookUp(const Folder& folder) {
  ShownFaults shown(folder.fresh("looked-up"));
  Comparison comparison("look up in " + thousands(shown.rows->size()) + " faults what is nowhere",
                        "bare reading of the same rows", noGoal);
  for (int run = 0; run < runs; ++run) {
    const double ours = processorSeconds([&] { shown.rows->find(u"nowhere", 0, {}); });
    comparison.add(ours, processorSeconds([&] { shown.bare->readAll(1); }));
  }
  comparison.print();
}

void filter(const Folder& folder) {
  ShownFaults shown(folder.fresh("filtered"));
  measureFilter(*shown.rows, *shown.bare, thousands(shown.rows->size()));
  measureSaving(*shown.rows, *shown.bare, folder.path(), thousands(shown.rows->size()));
}

// One fault in three minutes, so that every row has to be looked at, and twelve in the first of them.
void flood(const Folder& folder) {
  const auto file = folder.fresh("flooded");
  const auto database = sqlite::makeEngine(startup::databases)->open(file.u16string(), false);
  auto faults = makeFaults(1, 1000000 / scale);
  for (std::size_t i = 12; i < faults.size(); ++i) faults[i].date = minuteText(3 * i);
  for (std::size_t i = 0; i < 12; ++i) faults[i].date = minuteText(0);
  ingest(*database, faults);
  const std::u16string_view columns[] = {u"Fault", u"Alarm", u"Date", u"CPU", u"Description", u"Count"};
  const auto list = [&](const char16_t* exchange) {
    return whole(database->openRowList(
        u"SELECT * FROM FaultDisplay WHERE ID = " + std::u16string(exchange).append(sortings[5].clause),
        columns));
  };
  const auto rows = list(u"1");
  measureFlood(
      *rows, [&] { list(u"2"), list(u"1"); }, thousands(rows->size()));
}

}  // namespace
}  // namespace vordane::bench

int main(int count, char** values) {
  using namespace vordane::bench;
  std::string only;
  for (int i = 1; i < count; ++i) {
    if (std::strcmp(values[i], "--quick") == 0) {
      scale = 10;
    } else {
      only = values[i];
    }
  }
  const Folder folder;
  const std::pair<const char*, void (*)(const Folder&)> all[] = {{"more", oneMore},
                                                                 {"screen", firstScreen},
                                                                 {"sort", sorting},
                                                                 {"lookup", lookUp},
                                                                 {"filter", filter},
                                                                 {"flood", flood},
                                                                 {"select", selectAmongOthers},
                                                                 {"delete", deletion}};
  for (const auto& [name, work] : all)
    if (only.empty() || only == name) work(folder);
}
