// The shared store on a database server, against the fastest bare way through the same driver to tables of
// the same server: the values of a whole list as arrays, one statement a list, each fault looked for in one
// index. Run beside a server that syncs (bench/run). Times are the clock's, since most of the work is the
// server's.
//
//   server_bench [--quick]     a tenth of the faults
#include <cstring>
#include <string>
#include <vector>

#include "bench/common/measure.h"
#include "bench/common/texts.h"
#include "bench/server/bare_driver.h"
#include "bench/server/server_lists.h"
#include "odbc/server_store.h"
#include "platform/odbc/data_source.h"
#include "platform/odbc/library.h"
#include "platform/odbc/values.h"
#include "startup/databases.h"
#include "store/sort_orders.h"

namespace vordane::bench {
namespace {

std::size_t scale = 1;  // what the numbers of faults are divided by

std::u16string connectionOf(const std::filesystem::path& source) {
  return odbc::DataSource::read(source.u16string()).connection(64, odbc::postgres().driverSettings());
}

// Each column of a list's rows as one array.
std::vector<std::u16string> arraysOf(const std::vector<Fault>& rows) {
  std::vector<std::u16string> arrays(6);
  for (const Fault& row : rows) {
    odbc::appendToArray(arrays[0], text::decimal(row.id));
    const std::u16string* texts[] = {&row.fault, &row.alarm, &row.cpu, &row.date, &row.description};
    for (std::size_t i = 0; i < std::size(texts); ++i) odbc::appendToArray(arrays[i + 1], *texts[i]);
  }
  for (std::u16string& array : arrays) array.push_back(u'}');
  return arrays;
}

// Tables of the same columns, each fault once by one index of all that is compared.
class BareTables {
 public:
  explicit BareTables(const std::filesystem::path& source) : driver_(connectionOf(source)) {
    driver_.run("create schema bare");
    driver_.run(
        "create table bare.faults (count integer generated always as identity primary key, id integer, fault "
        "text collate \"C\", alarm text collate \"C\", cpu text collate \"C\", date text collate \"C\", "
        "description text collate \"C\", unique (id, date, fault, alarm, cpu, description))");
  }
  void empty() { driver_.run("truncate bare.faults"); }
  void add(const std::vector<std::u16string>& arrays) {
    driver_.run("insert into bare.faults (id, fault, alarm, cpu, date, description) select * from " + rows_ +
                    " on conflict do nothing",
                arrays);
  }
  std::size_t lookUp(const std::vector<std::u16string>& arrays) {
    return driver_
        .numbers("select found.count from " + rows_ +
                     " as r(o, f, a, c, d, t) cross join lateral (select b.count from bare.faults b where "
                     "b.id = r.o and b.date = r.d and b.fault = r.f and b.alarm = r.a and b.cpu = r.c and "
                     "b.description = r.t limit 1) found",
                 arrays)
        .size();
  }

 private:
  const std::string rows_ =
      "unnest(cast(? as integer[]), cast(? as text[]), cast(? as text[]), cast(? as text[]), cast(? as "
      "text[]), cast(? as text[]))";
  BareDriver driver_;
};

class Lists {
 public:
  Lists() : length_(8000 / scale) {
    form_.texts = decoderTexts();
    for (std::size_t i = 0; i < number_; ++i) {
      answers_.push_back(keptAnswerOf(form_, i, length_));
      arrays_.push_back(arraysOf(rowsOf(form_, answers_.back())));
    }
  }

  void measure() {
    const std::string work = std::to_string(number_) + " lists of " + thousands(length_) + ", ";
    Comparison added(work + "new, server", "unnest and INSERT, one index", rateAtLeast(0.6));
    Comparison addedFromTexts(work + "new, server", "decoding, arrays, INSERT, all bare", noGoal);
    Comparison known(work + "again, server", "unnest and look-up, one index", rateAtLeast(0.6));
    Comparison knownFromTexts(work + "again, server", "decoding, arrays, look-up, all bare", noGoal);
    const odbc::DataSources sources;
    const auto bareSource = sources.write(odbc::makeStore(database::Layout::faults));
    BareTables bare(bareSource);
    for (int run = 0; run < runs; ++run) {
      const auto engine = odbc::makeEngine(startup::databases, odbc::systemLibrary());
      form_.database =
          engine->open(sources.write(odbc::makeStore(database::Layout::faults)).u16string(), false);
      store::FaultStore store(form_, form_.around());
      store.setSortFlags();
      bare.empty();
      const double decoding = seconds([&] {
        for (const Answer& answer : answers_) arraysOf(rowsOf(form_, answer));
      });
      compare(takeIn(store), eachList([&](const auto& arrays) { bare.add(arrays); }), decoding, added,
              addedFromTexts);
      compare(takeIn(store), eachList([&](const auto& arrays) { bare.lookUp(arrays); }), decoding, known,
              knownFromTexts);
      store.close();
      form_.database.reset();
    }
    for (const Comparison* comparison : {&added, &addedFromTexts, &known, &knownFromTexts})
      comparison->print(static_cast<double>(number_ * length_));
  }

 private:
  static void compare(double ours, double bare, double decoding, Comparison& ready, Comparison& fromTexts) {
    ready.add(ours, bare);
    fromTexts.add(ours, bare + decoding);
  }
  double takeIn(store::FaultStore& store) {
    double time = 0;
    for (const Answer& answer : answers_) time += takeByClock(form_, store, answer);
    return time;
  }
  template <class Step>
  double eachList(Step step) {
    return seconds([&] {
      for (const auto& arrays : arrays_) step(arrays);
    });
  }

  const std::size_t number_ = 5;
  std::size_t length_;
  fakes::MemoryStoreForm form_;
  std::vector<Answer> answers_;
  std::vector<std::vector<std::u16string>> arrays_;
};

void select() {
  const std::size_t stored = 1000000 / scale;
  const std::string name = odbc::makeStore(database::Layout::faults);
  odbc::runOn(name, "insert into vordane.\"PBXList\" (\"PBXName\") values ('PBX-1')");
  odbc::runOn(name,
              "insert into vordane.\"FaultDisplay\" (\"ID\", \"Fault\", \"Alarm\", \"CPU\", \"Date\", "
              "\"Description\") select 1, '15', 'MJ', 'LP 1', "
              "to_char(timestamp '2020-01-01' + i / 4 * interval '1 minute', 'YYYY/MM/DD HH24:MI'), "
              "repeat('Port number: ' || i % 4096 || ' ', 15) from generate_series(1, " +
                  std::to_string(stored) + ") as i");
  odbc::runOn(name, "vacuum analyze");
  const odbc::DataSources sources;
  const auto source = sources.write(name);
  const auto database =
      odbc::makeEngine(startup::databases, odbc::systemLibrary())->open(source.u16string(), false);
  BareDriver driver(connectionOf(source));
  const std::u16string_view columns[] = {u"Count"};
  const std::string work = "select " + thousands(stored) + ", newest first, server";
  const std::string keys =
      "select i.\"Key\" from vordane.\"VordaneEventIndex\" i where i.\"Owner\" = 1 order by i.\"Moment\" "
      "desc nulls last, i.\"Key\" desc";
  Comparison comparison(work, "bare fetch of their keys", timeAtMost(1.5));
  Comparison asOne(work, "their keys as one text", noGoal);
  for (int run = 0; run < runs; ++run) {
    const double ours = seconds([&] {
      const auto rows = database->openRowList(
          u"SELECT * FROM FaultDisplay WHERE ID = 1" + std::u16string(store::sortClauses[7]), columns);
      while (!rows->isRead()) rows->readOn();
    });
    comparison.add(ours, seconds([&] { driver.numbers(keys); }));
    asOne.add(ours, seconds([&] {
                driver.numbers("select length(string_agg(k::text, ',')) from (" + keys + ") as q(k)");
              }));
  }
  comparison.print();
  asOne.print();
}

}  // namespace
}  // namespace vordane::bench

int main(int count, char** values) {
  if (count > 1 && std::strcmp(values[1], "--quick") == 0) vordane::bench::scale = 10;
  vordane::bench::Lists().measure();
  vordane::bench::select();
}
