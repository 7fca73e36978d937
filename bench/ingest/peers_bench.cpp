// Taking 200,000 new faults in, from the received answers to the refreshed window, against programs of others
// that are given the finished rows as text and hold them to be unique: SQLite's own shell, and a PostgreSQL
// server in whose surroundings (tests/odbc/with-server.sh) this is run. And looking through them all for a
// text, from the opening of the file on, against a viewer of logs that is given them as lines.
#include <sys/resource.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/common/measure.h"
#include "bench/common/texts.h"
#include "bench/ingest/lists.h"
#include "text/csv.h"
#include "text/utf8.h"

namespace vordane::bench {
namespace {

// The columns in the order in which a fault is looked for.
constexpr const char* uniqueTable =
    "CREATE TABLE faults(ID INTEGER, Fault TEXT, Alarm TEXT, CPU TEXT, Date TEXT, Description TEXT, "
    "UNIQUE (ID, Fault, CPU, Alarm, Date, Description));\n";

// What garbage an exchange sends may hold a zero, which neither peer takes, and a line of "\." alone, at
// which one of them stops reading.
std::string takenByAll(std::string text) {
  std::replace(text.begin(), text.end(), '\0', ' ');
  std::replace(text.begin(), text.end(), '\\', '/');
  return text;
}

std::string oneLine(const std::u16string& text) {
  std::string line = takenByAll(text::toUtf8(text));
  std::replace_if(
      line.begin(), line.end(), [](char c) { return c == '\r' || c == '\n'; }, ' ');
  return line;
}

double childrenSeconds() {
  rusage usage{};
  getrusage(RUSAGE_CHILDREN, &usage);
  const auto of = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
  };
  return of(usage.ru_utime) + of(usage.ru_stime);
}

void run(const std::string& command) {
  if (std::system(command.c_str()) != 0) throw std::runtime_error("failed: " + command);
}

class Peers {
 public:
  Peers() : folder_(std::filesystem::temp_directory_path() / "vordane-peers") {
    std::filesystem::create_directory(folder_);
    form_.texts = decoderTexts();
    std::ofstream rows(folder_ / "rows.csv", std::ios::binary),
        lines(folder_ / "faults.log", std::ios::binary);
    for (std::size_t i = 0; i < lists; ++i) {
      answers_.push_back(answerOf(i, 8000));
      for (const Fault& row : rowsOf(form_, answers_.back())) {
        rows << row.id;
        for (const std::u16string& text : {row.fault, row.alarm, row.cpu, row.date, row.description})
          rows << ',' << text::csvQuoted(takenByAll(text::toUtf8(text)));
        rows << '\n';
        lines << oneLine(row.date + u" " + row.alarm + u" " + row.fault + u" " + row.cpu + u" " +
                         row.description)
              << '\n';
      }
    }
    write("shell", std::string("PRAGMA journal_mode = WAL; PRAGMA synchronous = FULL;\n") + uniqueTable +
                       ".mode csv\n.import '" + (folder_ / "rows.csv").string() + "' faults\n");
    // COPY ends at the first row that is there already, so it goes into a table of its own first.
    write("server", std::string("DROP TABLE IF EXISTS faults;\n") + uniqueTable +
                        "CREATE TEMP TABLE rows (LIKE faults);\n\\copy rows FROM '" +
                        (folder_ / "rows.csv").string() +
                        "' CSV\nINSERT INTO faults SELECT * FROM rows ON CONFLICT DO NOTHING;\n");
  }
  ~Peers() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }
  Peers(const Peers&) = delete;
  Peers& operator=(const Peers&) = delete;

  void measure() {
    Comparison shell("decode and take in 200,000 new faults", "sqlite3 importing ready text, unique",
                     timeAtMost(0.4));
    Comparison server("the same, by the clock", "PostgreSQL copying ready text, unique", noGoal);
    Comparison viewer("open 200,000 faults, look for a text", "lnav reading and filtering them as lines",
                      noGoal);
    const char* serverFolder = std::getenv("VORDANE_SERVER");
    for (int i = 0; i < runs; ++i) {
      BenchFile file("ours");
      form_.database = file.open();
      store::FaultStore store(form_, form_.around());
      store.setSortFlags();
      double ours = 0;
      const double clock = seconds([&] { ours = takeIn(form_, store, answers_); });
      store.close();
      form_.database.reset();
      shell.add(ours, importByShell());
      viewer.add(processorSeconds([&] { lookThrough(*file.open()); }), lookThroughByViewer());
      if (serverFolder != nullptr)
        server.add(clock, seconds([&] {
                     run("psql -q -v ON_ERROR_STOP=1 -h " + std::string(serverFolder) +
                         "/socket -U administrator -d postgres -f " + (folder_ / "server").string() +
                         " >/dev/null");
                   }));
    }
    shell.print();
    if (serverFolder != nullptr) server.print();
    viewer.print();
  }

 private:
  double importByShell() {
    const std::string file = (folder_ / "shell.db").string();
    const double before = childrenSeconds();
    // A fault that came twice is named, and left out.
    run("sqlite3 " + file + " <" + (folder_ / "shell").string() + " >/dev/null 2>&1");
    const double time = childrenSeconds() - before;
    for (const char* suffix : {"", "-wal", "-shm"}) std::filesystem::remove(file + suffix);
    return time;
  }
  static void lookThrough(database::Database& database) {
    constexpr std::u16string_view columns[] = {u"Fault", u"Alarm", u"Date", u"CPU", u"Description", u"Count"};
    const auto rows = database.openRowList(
        u"SELECT * FROM FaultDisplay WHERE ID = 1 Order by [Date] Desc, [Count] Desc, [Fault] Desc, "
        u"[Alarm] Desc, [CPU] Desc, [Description] Desc",
        columns);
    if (rows->size() < lists * 7000) throw std::runtime_error("rows are missing");
    if (rows->find(u"nowhere", 0, nullptr, database::Walk::forwards))
      throw std::runtime_error("found somewhere");
    database.close();
  }
  double lookThroughByViewer() {
    const double before = childrenSeconds();
    const std::string folder = folder_.string();
    run("HOME=" + folder + " lnav -n -N -c ':filter-in nowhere' " + folder + "/faults.log >" + folder +
        "/seen");
    if (std::filesystem::file_size(folder_ / "seen") != 0)
      throw std::runtime_error("the viewer shows something");
    return childrenSeconds() - before;
  }
  void write(const char* name, const std::string& text) {
    std::ofstream(folder_ / name, std::ios::binary) << text;
  }

  std::filesystem::path folder_;
  fakes::MemoryStoreForm form_;
  std::vector<Answer> answers_;
};

}  // namespace
}  // namespace vordane::bench

int main() {
  vordane::bench::Peers().measure();
}
