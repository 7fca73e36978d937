// Many stations at one store: processes that take fault lists of their exchanges in, as the window does,
// until so many faults are stored. Then the same rows go through the server's own bulk load into another
// store, with its indexes and triggers, and once without triggers. Run beside a server that syncs:
//
//   VORDANE_SERVER_OPTIONS="-c fsync=on -c full_page_writes=on -c shared_buffers=128MB"
//   tests/odbc/with-server.sh
//     build/native/bench/server/stations [--stations 50] [--exchanges 1000] [--faults 10000000] [--list 500]
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/common/measure.h"
#include "bench/common/texts.h"
#include "bench/server/server_lists.h"
#include "odbc/server_store.h"
#include "platform/odbc/library.h"
#include "startup/databases.h"

namespace vordane::bench {
namespace {

struct Plan {
  int stations = 50, exchanges = 1000, faults = 10000000, list = 500;
  int listsOfEach() const { return std::max(1, faults / (exchanges * list)); }
};

constexpr std::string_view columns = "(\"ID\", \"Fault\", \"Alarm\", \"CPU\", \"Date\", \"Description\")";

// A moment for which several processes wait: each has come, then all go on.
class Gate {
 public:
  Gate() {
    if (pipe(come_.data()) != 0 || pipe(go_.data()) != 0) throw std::runtime_error("no pipe");
  }
  void comeAndWait() {  // in a station
    char byte = 0;
    close(go_[1]);
    if (write(come_[1], &byte, 1) != 1 || read(go_[0], &byte, 1) != 0) std::_Exit(1);
  }
  void awaitAll(int stations) {
    close(come_[1]);
    come_[1] = -1;
    char byte = 0;
    for (int i = 0; i < stations; ++i)
      if (read(come_[0], &byte, 1) != 1) throw std::runtime_error("a station has gone");
  }
  void open() { close(go_[1]); }

 private:
  std::array<int, 2> come_{}, go_{};
};

// How long a list took, from its answer to the refreshed window, and how many were not stored at once.
struct Taken {
  std::vector<double> seconds;
  int repeated = 0;
};

class Station {
 public:
  Station(const Plan& plan, int number, const std::filesystem::path& source)
      : plan_(plan), number_(number), engine_(odbc::makeEngine(startup::databases, odbc::systemLibrary())) {
    form_.texts = decoderTexts();
    answer_ = keptAnswerOf(form_, static_cast<std::size_t>(number), static_cast<std::size_t>(plan.list));
    form_.database = engine_->open(source.u16string(), false);
  }

  Taken takeAll() {
    store::FaultStore store(form_, form_.around());
    store.setSortFlags();
    Taken taken;
    for (int list = 0; list < plan_.listsOfEach(); ++list) {
      dateList(list);
      for (int exchange = number_; exchange < plan_.exchanges; exchange += plan_.stations)
        take(store, exchange, taken);
    }
    store.close();
    return taken;
  }

 private:
  void dateList(int list) {
    const std::size_t first = static_cast<std::size_t>(list) * static_cast<std::size_t>(plan_.list);
    for (std::size_t i = 1; i < answer_.size(); i += 4) answer_[i] = dateOf(first + i / 4);
  }
  // A list that was not acknowledged is asked for again, as a person would.
  void take(store::FaultStore& store, int exchange, Taken& taken) {
    form_.exchange = u"Exchange " + text::decimal(exchange);
    for (int times = 0;; ++times) try {
        taken.seconds.push_back(takeByClock(form_, store, answer_));
        return;
      } catch (const std::exception&) {
        if (times == 10) throw;
        ++taken.repeated;
      }
  }

  const Plan& plan_;
  int number_;
  std::unique_ptr<database::Engine> engine_;
  fakes::MemoryStoreForm form_;
  Answer answer_;
};

std::filesystem::path resultOf(const std::filesystem::path& folder, int station) {
  return folder / std::to_string(station);
}

void runStation(const Plan& plan, int number, const std::filesystem::path& folder, Gate& begin, Gate& end) {
  Station station(plan, number, folder / "store.dsn");
  begin.comeAndWait();
  const Taken taken = station.takeAll();
  {
    std::ofstream out(resultOf(folder, number));
    out << taken.repeated << '\n';
    for (const double each : taken.seconds) out << each << '\n';
  }
  end.comeAndWait();
}

Taken collect(const Plan& plan, const std::filesystem::path& folder) {
  Taken all;
  for (int i = 0; i < plan.stations; ++i) {
    std::ifstream in(resultOf(folder, i));
    int repeated = 0;
    in >> repeated;
    all.repeated += repeated;
    for (double each = 0; in >> each;) all.seconds.push_back(each);
  }
  return all;
}

double share(std::vector<double> values, double of) {
  std::sort(values.begin(), values.end());
  return values[std::min(values.size() - 1,
                         static_cast<std::size_t>(static_cast<double>(values.size()) * of))];
}

// Memory that the server's processes have for themselves, and each its part of what they share.
double serverMegabytes() {
  double kilobytes = 0;
  for (const int process : odbc::signalServer(0)) {
    std::ifstream in("/proc/" + std::to_string(process) + "/smaps_rollup");
    for (std::string line; std::getline(in, line);)
      if (line.starts_with("Pss:")) kilobytes += std::atof(line.c_str() + 4);
  }
  return kilobytes / 1024;
}

std::string ask(const std::string& database, const std::string& question) {
  return text::toUtf8(odbc::connectTo(database)->query(question).at(0).at(0).value_or(u""));
}

// The statements that the store's own bulk load is, in the server's own files.
class BulkLoad {
 public:
  explicit BulkLoad(std::string from) : from_(std::move(from)) {}
  // Of all faults, with or without the store's triggers; the seconds.
  double all(bool triggers) const {
    const std::string to = empty(triggers);
    write("rows", "");
    return seconds([&] { load(to, "rows"); });
  }
  // Of single lists, one after the other; the seconds of each.
  std::vector<double> lists(int number, int length) const {
    const std::string to = empty(true);
    std::vector<double> each;
    for (int i = 0; i < number; ++i) {
      write("list", " offset " + std::to_string(i * length) + " limit " + std::to_string(length));
      each.push_back(seconds([&] { load(to, "list"); }));
    }
    return each;
  }

 private:
  static std::string file(const std::string& name) {
    return "'" + (odbc::serverFolder() / ("copied-" + name)).string() + "'";
  }
  static std::string empty(bool triggers) {
    const std::string to = odbc::makeStore(database::Layout::faults);
    if (!triggers) odbc::runOn(to, "alter table vordane.\"FaultDisplay\" disable trigger user");
    return to;
  }
  void write(const std::string& name, const std::string& which) const {
    odbc::runOn(from_,
                "copy (select \"ID\", \"Fault\", \"Alarm\", \"CPU\", \"Date\", \"Description\" from "
                "vordane.\"FaultDisplay\" order by \"Count\"" +
                    which + ") to " + file(name));
  }
  static void load(const std::string& to, const std::string& name) {
    odbc::runOn(to, "copy vordane.\"FaultDisplay\" " + std::string(columns) + " from " + file(name));
  }
  std::string from_;
};

void printSizes(const std::string& store, double faults, const std::string& logBefore) {
  const auto bytes = [&](const std::string& what) {
    return std::stod(ask(store, "select " + what)) / faults;
  };
  std::printf(
      "bytes a fault: %.0f rows, %.0f index of Count, %.0f index rows, %.0f index of them; log %.0f\n",
      bytes("pg_table_size('vordane.\"FaultDisplay\"')::text"),
      bytes("pg_indexes_size('vordane.\"FaultDisplay\"')::text"),
      bytes("pg_table_size('vordane.\"VordaneEventIndex\"')::text"),
      bytes("pg_indexes_size('vordane.\"VordaneEventIndex\"')::text"),
      bytes("pg_wal_lsn_diff(pg_current_wal_lsn(), '" + logBefore + "')::text"));
  std::printf(
      "mean characters of a description: %s; sent by COPY: %s bytes a fault\n",
      ask(store, "select round(avg(length(\"Description\")))::text from vordane.\"FaultDisplay\"").c_str(),
      ask(store, "select round(avg(length(f::text)))::text from vordane.\"FaultDisplay\" f").c_str());
}

void simulate(const Plan& plan) {
  const odbc::DataSources sources;
  const std::filesystem::path folder = sources.folder();
  const std::string store = odbc::makeStore(database::Layout::faults);
  std::filesystem::copy_file(sources.write(store), folder / "store.dsn");
  const std::string logBefore = ask(store, "select pg_current_wal_lsn()::text");
  std::fflush(stdout);
  Gate begin, end;
  std::vector<pid_t> children;
  for (int i = 0; i < plan.stations; ++i) {
    const pid_t child = fork();
    if (child == 0) {
      prctl(PR_SET_PDEATHSIG, SIGKILL);
      int code = 0;
      try {
        runStation(plan, i, folder, begin, end);
      } catch (const std::exception& failure) {
        std::cerr << "station " << i << ": " << failure.what() << '\n';
        kill(getppid(), SIGTERM);  // which would wait for it
        code = 1;
      }
      std::_Exit(code);
    }
    children.push_back(child);
  }
  begin.awaitAll(plan.stations);
  const double clock = seconds([&] {
    begin.open();
    end.awaitAll(plan.stations);
  });
  const double megabytes = serverMegabytes();
  end.open();
  for (const pid_t child : children) waitpid(child, nullptr, 0);

  const Taken taken = collect(plan, folder);
  const double faults = std::stod(ask(store, "select count(*)::text from vordane.\"FaultDisplay\""));
  std::printf(
      "%d stations, %d exchanges, %zu lists of %d: %.0f faults in %.0f s, %.0f a second; %d lists asked for "
      "again\n",
      plan.stations, plan.exchanges, taken.seconds.size(), plan.list, faults, clock, faults / clock,
      taken.repeated);
  std::printf("a list: %.0f ms at 50 %%, %.0f ms at 99 %%\n", share(taken.seconds, 0.5) * 1000,
              share(taken.seconds, 0.99) * 1000);
  std::printf("memory of the server with %d stations: %.0f MB\n", plan.stations, megabytes);
  printSizes(store, faults, logBefore);

  const BulkLoad bulk(store);
  const double with = bulk.all(true), without = bulk.all(false);
  std::printf("the same rows by COPY: %.0f a second with triggers (ours: %.2f of it), %.0f without (%.2f)\n",
              faults / with, with / clock, faults / without, without / clock);
  const auto lists = bulk.lists(100, plan.list);
  std::printf("a list by COPY, alone: %.1f ms at 50 %% (ours: %.0f times), %.1f ms at 99 %% (%.0f times)\n",
              share(lists, 0.5) * 1000, share(taken.seconds, 0.5) / share(lists, 0.5),
              share(lists, 0.99) * 1000, share(taken.seconds, 0.99) / share(lists, 0.99));
}

}  // namespace
}  // namespace vordane::bench

int main(int count, char** values) {
  vordane::bench::Plan plan;
  const std::pair<std::string_view, int*> options[] = {{"--stations", &plan.stations},
                                                       {"--exchanges", &plan.exchanges},
                                                       {"--faults", &plan.faults},
                                                       {"--list", &plan.list}};
  for (int i = 1; i + 1 < count; i += 2)
    for (const auto& [name, place] : options)
      if (name == values[i]) *place = std::atoi(values[i + 1]);
  vordane::bench::simulate(plan);
}
