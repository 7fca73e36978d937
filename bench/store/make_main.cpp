// Makes a FAULT.MDB with one exchange's faults, for the benchmarks of the window:
//
//   make_faults FILE EXCHANGE FAULTS
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "bench/store/made_faults.h"
#include "platform/sqlite/engine.h"
#include "startup/databases.h"
#include "store/fault_database.h"
#include "text/utf8.h"
#include "tools/sqlite/database_writer.h"

int main(int count, char** values) {
  using namespace vordane;
  if (count != 4) {
    std::fputs("usage: make_faults FILE EXCHANGE FAULTS\n", stderr);
    return 2;
  }
  const std::u16string path = std::filesystem::path(values[1]).u16string();
  tools::createDatabase(path, store::faultTables, true);
  const auto database = sqlite::makeEngine(startup::databases)->open(path, false);
  const auto exchange = database->openRecordset(u"Select * FROM PBXList");
  exchange->addNew();
  exchange->set(u"PBXName", text::fromUtf8(values[2]));
  exchange->set(u"TimeStamp", std::u16string(u"2026-11-20 21:14:05"));
  exchange->update();
  exchange->close();
  constexpr std::size_t list = 8000;
  const auto faults = static_cast<std::size_t>(std::atol(values[3]));
  for (std::size_t first = 0; first < faults; first += list)
    bench::ingest(*database, bench::makeFaults(1, std::min(list, faults - first), first));
}
