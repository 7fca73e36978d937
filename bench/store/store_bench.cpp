// The fault store's work against the engine's bare work in the same run. Prints one line for each:
// median of both, their ratio and the spread of the runs.
//
//   store_bench [--quick]     a tenth of the rows, for a first look
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <functional>
#include <random>

#include "platform/sqlite/engine.h"
#include "platform/sqlite/schema.h"
#include "store/bare_store.h"
#include "text/utf8.h"

namespace vordane::bench {
namespace {

constexpr int runs = 5;
std::size_t scale = 1;  // what the numbers of rows are divided by

std::u16string decimal(std::size_t number) {
  return text::fromUtf8(std::to_string(number));
}

// Faults of one exchange, four in a minute, as an exchange sends them: oldest first.
std::vector<Fault> makeFaults(std::int16_t id, std::size_t count, std::size_t first = 0) {
  constexpr const char16_t* kinds[] = {u"01", u"05", u"0A", u"13", u"17", u"2B", u"48", u"58"};
  std::mt19937 random(static_cast<unsigned>(first + 1));
  std::vector<Fault> faults;
  for (std::size_t i = first; i < first + count; ++i) {
    char date[32];
    const std::size_t minute = i / 4;
    std::snprintf(date, sizeof date, "20%02zu/%02zu/%02zu %02zu:%02zu", 10 + minute / 483840 % 80,
                  1 + minute / 40320 % 12, 1 + minute / 1440 % 28, minute / 60 % 24, minute % 60);
    const auto* kind = kinds[random() % 8];
    std::u16string description = std::u16string(u"Fault of the line circuit, kind ") + kind +
                                 u"\r\n Module group: 01, unit: 02\r\n Port number: " +
                                 decimal(random() % 4096) + u"\r\n Data: ";
    while (description.size() < 250) description += decimal(random());
    faults.push_back({id, kind, i % 3 == 0 ? u"MJ" : u"MN", i % 2 == 0 ? u"MP   " : u"LP 12",
                      text::fromUtf8(date), description});
  }
  return faults;
}

std::u16string findSame(const Fault& fault) {
  return u"Select * FROM FaultDisplay WHERE ID = " + decimal(static_cast<std::size_t>(fault.id)) +
         u" AND Fault = '" + fault.fault + u"' AND CPU = '" + fault.cpu + u"' AND Alarm = '" + fault.alarm +
         u"' AND Date = '" + fault.date + u"' AND Description = \"" + fault.description + u"\"";
}

// An ingestion as the store makes it: a statement built for each fault, a recordset for the additions.
void ingest(database::Database& database, const std::vector<Fault>& faults) {
  const auto rows = database.openRecordset(u"Select * from FaultDisplay");
  database.beginBatch();
  for (const Fault& fault : faults) {
    if (database.openRecordset(findSame(fault))->recordCount() > 0) continue;
    rows->addNew();
    rows->set(u"ID", fault.id);
    rows->set(u"Fault", fault.fault);
    rows->set(u"Alarm", fault.alarm);
    rows->set(u"CPU", fault.cpu);
    rows->set(u"Date", fault.date);
    rows->set(u"Description", fault.description);
    rows->update();
  }
  database.endBatch();
}

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
  std::filesystem::path fresh(std::string_view name) const {
    const auto file = path_ / name;
    sqlite::createDatabase(file.u16string(), sqlite::schema::faultDatabase(), true);
    // The engine's first opening lays out its index.
    const auto database = sqlite::makeEngine()->open(file.u16string(), false);
    database->openRecordset(u"SELECT * FROM FaultDisplay Order by [Date] Desc")->isEmpty();
    return file;
  }

 private:
  std::filesystem::path path_;
};

double seconds(const std::function<void()>& work) {
  const auto begin = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

struct Times {
  std::vector<double> ours, bare;
  void print(const char* what, double rows) {
    std::sort(ours.begin(), ours.end());
    std::sort(bare.begin(), bare.end());
    const double mine = ours[ours.size() / 2], theirs = bare[bare.size() / 2];
    std::printf("%-44s %10.4f s (%8.4f-%8.4f) %10.4f s (%8.4f-%8.4f)  time ratio %5.2f", what, mine,
                ours.front(), ours.back(), theirs, bare.front(), bare.back(), mine / theirs);
    if (rows > 0) std::printf("  %9.0f rows/s, rate ratio %4.2f", rows / mine, theirs / mine);
    std::printf("\n");
    std::fflush(stdout);
  }
};

void ingestion(const Folder& folder) {
  const std::size_t list = 8000 / scale;
  std::vector<std::vector<Fault>> lists;
  std::vector<std::vector<FaultKeys>> keys;
  for (std::size_t i = 0; i < 25; ++i) {
    lists.push_back(makeFaults(1, list, i * list));
    keys.push_back(keysOf(lists.back()));
  }
  Times added, again;
  for (int run = 0; run < runs; ++run) {
    {
      const auto file = folder.fresh("ours");
      const auto database = sqlite::makeEngine()->open(file.u16string(), false);
      added.ours.push_back(seconds([&] {
        for (const auto& faults : lists) ingest(*database, faults);
      }));
      again.ours.push_back(seconds([&] {
        for (const auto& faults : lists) ingest(*database, faults);
      }));
    }
    BareStore bare(folder.fresh("bare").string());
    added.bare.push_back(seconds([&] {
      for (std::size_t i = 0; i < 25; ++i) bare.ingest(lists[i], keys[i]);
    }));
    again.bare.push_back(seconds([&] {
      for (std::size_t i = 0; i < 25; ++i) bare.lookUp(lists[i], keys[i]);
    }));
  }
  added.print("ingest 25 new lists", 25.0 * static_cast<double>(list));
  again.print("ingest the same lists again", 25.0 * static_cast<double>(list));
}

void oneMore(const Folder& folder) {
  Times times;
  const auto manyFile = folder.fresh("many"), fewFile = folder.fresh("few");
  const auto engine = sqlite::makeEngine();
  const auto many = engine->open(manyFile.u16string(), false), few = engine->open(fewFile.u16string(), false);
  ingest(*many, makeFaults(1, 1000000 / scale));
  ingest(*few, makeFaults(1, 1000));
  const auto more = makeFaults(1, 50 * runs, 2000000);
  const auto part = [&](int run) {
    return std::vector<Fault>(more.begin() + run * 50, more.begin() + (run + 1) * 50);
  };
  for (int run = 0; run < runs; ++run) {
    const auto faults = part(run);
    times.ours.push_back(seconds([&] {
                           for (const Fault& fault : faults) ingest(*many, {fault});
                         }) /
                         50);
    times.bare.push_back(seconds([&] {
                           for (const Fault& fault : faults) ingest(*few, {fault});
                         }) /
                         50);
  }
  times.print("one more with 1,000,000 (bare: with 1,000)", 0);
}

struct Sorting {
  const char* name;
  const char* bare;
  std::u16string_view clause;
};
constexpr Sorting sortings[] = {
    {"select and sort by Fault", "Fault, Alarm, Date, Count",
     u" Order by [Fault] Asc, [Alarm] Asc, [Date] Asc, [Count] Asc, [CPU] Asc, [Description] Asc"},
    {"select and sort by Alarm, descending", "Alarm DESC, Fault DESC, Date DESC, Count DESC",
     u" Order by [Alarm] Desc, [Fault] Desc, [Date] Desc, [Count] Desc, [CPU] Desc, [Description] Desc"},
    {"select and sort by Date, descending", "Date DESC, Count DESC",
     u" Order by [Date] Desc, [Count] Desc, [Fault] Desc, [Alarm] Desc, [CPU] Desc, [Description] Desc"},
    {"select and sort by CPU", "CPU, Fault, Alarm, Date, Count",
     u" Order by [CPU] Asc ,[Fault] Asc, [Alarm] Asc, [Date] Asc, [Count] Asc, [Description] Asc"},
    {"select and sort by Description", "Description, Fault, Alarm, Date, Count",
     u" Order by [Description] Asc, [Fault] Asc, [Alarm] Asc, [Date] Asc, [Count] Asc, [CPU] Asc"},
};

void sorting(const Folder& folder) {
  const auto file = folder.fresh("sorted");
  const auto database = sqlite::makeEngine()->open(file.u16string(), false);
  ingest(*database, makeFaults(1, 1000000 / scale));
  BareStore bare(file.string());
  const std::u16string_view columns[] = {u"Count"};
  for (const Sorting& sorting : sortings) {
    Times times;
    const std::u16string statement =
        u"SELECT * FROM FaultDisplay WHERE ID = 1" + std::u16string(sorting.clause);
    for (int run = 0; run < runs; ++run) {
      times.ours.push_back(seconds([&] { database->openRowList(statement, columns); }));
      times.bare.push_back(seconds([&] { bare.orderedKeys(1, sorting.bare); }));
    }
    times.print(sorting.name, 0);
  }
}

// The order that the index holds, read by the engine alone.
void keyScan(const Folder& folder) {
  const auto file = folder.fresh("scan");
  const auto database = sqlite::makeEngine()->open(file.u16string(), false);
  ingest(*database, makeFaults(1, 1000000 / scale));
  BareStore bare(file.string());
  bare.run("CREATE INDEX Bare ON FaultDisplay(ID, Date, Count)");
  const std::u16string_view columns[] = {u"Count"};
  for (const Sorting& sorting : sortings) {
    Times times;
    const std::u16string statement =
        u"SELECT * FROM FaultDisplay WHERE ID = 1" + std::u16string(sorting.clause);
    for (int run = 0; run < runs; ++run) {
      times.ours.push_back(seconds([&] { database->openRowList(statement, columns); }));
      times.bare.push_back(seconds([&] { bare.orderedKeys(1, "Date DESC, Count DESC"); }));
    }
    times.print((std::string(sorting.name) + " (bare: covered scan)").c_str(), 0);
  }
}

// Selecting an exchange: the stored-year step, its row, its faults newest first.
void select(database::Database& database, std::int16_t id) {
  const auto newest = database.openRecordset(u"SELECT * FROM FaultDisplay Order by [Date] Desc");
  if (!newest->isEmpty()) newest->get(u"Date");
  newest->close();
  const std::u16string_view columns[] = {u"Count"};
  database.openRowList(u"SELECT * FROM FaultDisplay WHERE ID = " + decimal(static_cast<std::size_t>(id)) +
                           std::u16string(sortings[2].clause),
                       columns);
}

void selectAmongOthers(const Folder& folder) {
  const auto crowdedFile = folder.fresh("crowded"), aloneFile = folder.fresh("alone");
  const auto engine = sqlite::makeEngine();
  const auto crowded = engine->open(crowdedFile.u16string(), false),
             alone = engine->open(aloneFile.u16string(), false);
  for (std::int16_t id = 1; id <= static_cast<std::int16_t>(1000 / scale); ++id)
    ingest(*crowded, makeFaults(id, 1000));
  ingest(*alone, makeFaults(7, 1000));
  Times times;
  for (int run = 0; run < runs; ++run) {
    times.ours.push_back(seconds([&] {
                           for (int i = 0; i < 100; ++i) select(*crowded, 7);
                         }) /
                         100);
    times.bare.push_back(seconds([&] {
                           for (int i = 0; i < 100; ++i) select(*alone, 7);
                         }) /
                         100);
  }
  times.print("select 1,000 among 1,000,000 (bare: alone)", 0);
}

void deletion(const Folder& folder) {
  const auto faults = makeFaults(1, 1000000 / scale);
  Times times;
  for (int run = 0; run < (scale == 1 ? 3 : runs); ++run) {
    for (bool ours : {true, false}) {
      const auto file = folder.fresh("deleted");
      auto database = sqlite::makeEngine()->open(file.u16string(), false);
      ingest(*database, faults);
      if (ours) {
        times.ours.push_back(seconds([&] {
          database->execute(u"DELETE FROM PBXList WHERE ID = 1");
          database->execute(u"DELETE FROM FaultDisplay WHERE ID = 1");
        }));
      } else {
        database.reset();
        BareStore bare(file.string());
        times.bare.push_back(seconds([&] { bare.deleteExchange(1); }));
      }
    }
  }
  times.print("delete an exchange", 0);
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
  const std::pair<const char*, void (*)(const Folder&)> all[] = {
      {"ingest", ingestion},         {"more", oneMore},   {"sort", sorting}, {"scan", keyScan},
      {"select", selectAmongOthers}, {"delete", deletion}};
  std::printf("%-44s %-34s %-34s\n", "", "ours: median (range)", "bare: median (range)");
  for (const auto& [name, work] : all)
    if (only.empty() || only == name) work(folder);
}
