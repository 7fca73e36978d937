// A process is killed at random moments while it takes fault lists in. Whatever the moment: the file is
// sound, no row is half there, what had been shown as stored is stored, and the next list completes it.
// VORDANE_KILL_ROUNDS=n makes n rounds.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <random>
#include <thread>

#include "crash/lists.h"
#include "crash/process.h"
#include "database/embedded.h"
#include "text/utf8.h"

namespace vordane::crash {
namespace {

using sqlite::EmbeddedUnderTest;

constexpr int shortRun = 6;       // rounds
constexpr int roundsOnAFile = 5;  // then a new one

int wantedRounds() {
  const char* wanted = std::getenv("VORDANE_KILL_ROUNDS");
  return wanted != nullptr ? std::atoi(wanted) : shortRun;
}

// The file as any SQLite tool sees it.
class RawFile {
 public:
  explicit RawFile(const std::u16string& path) { sqlite3_open(text::toUtf8(path).c_str(), &handle_); }
  ~RawFile() { sqlite3_close(handle_); }
  RawFile(const RawFile&) = delete;
  RawFile& operator=(const RawFile&) = delete;

  // Every column of every row as text, or the error as the only one.
  std::vector<Row> rows(const char* sql) {
    std::vector<Row> all;
    sqlite3_stmt* statement = nullptr;
    int result = sqlite3_prepare_v2(handle_, sql, -1, &statement, nullptr);
    while (result == SQLITE_OK || result == SQLITE_ROW) {
      if ((result = sqlite3_step(statement)) != SQLITE_ROW) break;
      Row& row = all.emplace_back();
      for (int i = 0; i < sqlite3_column_count(statement); ++i) row.push_back(textAt(statement, i));
    }
    if (result != SQLITE_DONE) all = {{text::fromUtf8(sqlite3_errmsg(handle_))}};
    sqlite3_finalize(statement);
    return all;
  }

 private:
  static std::u16string textAt(sqlite3_stmt* statement, int column) {
    const void* characters = sqlite3_column_text16(statement, column);
    if (characters == nullptr) return u"Null";
    return {static_cast<const char16_t*>(characters),
            static_cast<std::size_t>(sqlite3_column_bytes16(statement, column)) / 2};
  }
  sqlite3* handle_ = nullptr;
};

std::vector<std::string> linesOf(const std::filesystem::path& report) {
  std::vector<std::string> lines;
  std::ifstream in(report, std::ios::binary);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

// How many faults a report's accounts claim to be stored: each list is told whole, as new or as known.
int claimed(const std::vector<std::string>& report) {
  int stored = 0;
  for (const std::string& line : report)
    if (line.starts_with("Account ")) stored += std::atoi(line.c_str() + 8);
  return stored;
}

class Killed : public testing::Test {
 protected:
  void newFile(bool onNetwork) {
    if (!file.empty())
      for (const char* ending : {"", "-wal", "-shm", "-journal"})
        std::filesystem::remove(std::filesystem::path(file).concat(ending));
    file = under.make(database::Layout::faults);
    order = {text::toUtf8(file), (under.folder() / "report").string(), 0, 6, false, onNetwork, false};
    nextList = 0;
  }

  // How many bytes the file and its journals have.
  std::uintmax_t size() const {
    std::uintmax_t bytes = 0;
    for (const char* ending : {"", "-wal", "-journal"}) {
      std::error_code none;
      const auto part = std::filesystem::file_size(std::filesystem::path(order.file).concat(ending), none);
      if (!none) bytes += part;
    }
    return bytes;
  }

  // Waits until the process of the order has begun and written `grown` bytes, or has nothing more to do.
  void awaitGrowth(std::uintmax_t grown) const {
    const auto patience = std::chrono::steady_clock::now() + std::chrono::minutes(2);
    const std::uintmax_t before = size();
    while (std::chrono::steady_clock::now() < patience) {
      const auto report = linesOf(order.report);
      if (!report.empty() && (size() >= before + grown || report.back() == "done")) return;
      std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
  }

  // What all lists of an order add to a new file here when nothing happens to them.
  std::uintmax_t wholeGrowth() {
    if (wholeGrowth_ == 0) {
      const Order wanted = order;
      order.slow = false;
      order.stays = true;
      order.file = text::toUtf8(under.make(database::Layout::faults));
      const std::uintmax_t before = size();
      Process process(toArguments(order));
      awaitGrowth(std::numeric_limits<std::uintmax_t>::max() / 2);
      wholeGrowth_ = size() - before;
      process.kill();
      process.wait();
      std::filesystem::remove(order.report);
      order = wanted;
    }
    return wholeGrowth_;
  }

  // Starts an ingestion and kills it when it has written a number of bytes of chance; what it had told
  // outside by then. It waits to be killed, so that a busy machine changes no outcome.
  std::vector<std::string> killAtRandom() {
    const std::filesystem::path report(order.report);
    std::filesystem::remove(report);
    order.firstList = nextList;
    order.slow = random() % 8 == 0;
    order.stays = true;
    const std::uintmax_t moment = wholeGrowth() * (random() % 900) / 1000;
    Process process(toArguments(order));
    awaitGrowth(moment);
    process.kill();
    const int code = process.wait();
    EXPECT_LT(code, 0) << "the process ended by itself";
    const auto lines = linesOf(report);
    underWay += lines.empty() || lines.back() != "done" ? 1 : 0;
    told += claimed(lines) > 0 ? 1 : 0;
    return lines;
  }

  // The faults stored, after looking at each of them.
  int expectSound(int atLeast) {
    RawFile raw(file);
    EXPECT_EQ(raw.rows("PRAGMA integrity_check"), (std::vector<Row>{{u"ok"}}));
    const auto rows =
        raw.rows("SELECT Fault, Alarm, CPU, Date, Description, ID FROM FaultDisplay ORDER BY Count");
    fakes::MemoryStoreForm form;
    for (std::size_t i = 0; i < rows.size(); ++i) {
      Row expected = expectedRow(form, static_cast<int>(i));
      expected.push_back(u"1");
      if (rows[i] != expected) {
        ADD_FAILURE() << "row " << i << " is not fault " << i;
        break;
      }
    }
    const int stored = static_cast<int>(rows.size());
    EXPECT_GE(stored, atLeast) << "shown as stored, and lost";
    EXPECT_EQ(raw.rows("SELECT PBXName, TimeStamp FROM PBXList").size(), stored > 0 ? 1U : exchanges(raw));
    expectIndex(raw);
    return stored;
  }
  static std::size_t exchanges(RawFile& raw) {
    const std::size_t found = raw.rows("SELECT PBXName FROM PBXList").size();
    EXPECT_LE(found, 1U);
    return found;
  }
  // The index, where there is one already, holds each row of the table and no other, and the counts say so.
  static void expectIndex(RawFile& raw) {
    if (raw.rows("SELECT 1 FROM sqlite_schema WHERE name = 'VordaneFaultIndex'").empty()) return;
    EXPECT_EQ(raw.rows("SELECT ID, Count FROM FaultDisplay EXCEPT SELECT ID, Count FROM VordaneFaultIndex"),
              std::vector<Row>{});
    EXPECT_EQ(
        raw.rows("SELECT (SELECT count(*) FROM VordaneFaultIndex) - (SELECT count(*) FROM FaultDisplay)"),
        (std::vector<Row>{{u"0"}}));
    EXPECT_EQ(raw.rows("SELECT ID, count(*) FROM FaultDisplay GROUP BY ID"),
              raw.rows("SELECT ID, Faults FROM VordaneFaultCounts ORDER BY ID"));
  }

  // The list that was cut short comes again: only what is missing is new.
  void fetchAgain(int stored) {
    const int list = stored / faultsInList, known = stored % faultsInList;
    Order again = order;
    again.report += "-again";
    std::filesystem::remove(again.report);
    again.firstList = list;
    again.lists = 1;
    again.slow = false;
    again.stays = false;
    takeLists(again);
    const std::string account =
        "Account 500=" + std::to_string(faultsInList - known) + "+" + std::to_string(known) + "+0";
    EXPECT_EQ(linesOf(again.report), (std::vector<std::string>{"ready", account, "Acknowledge"}));
    EXPECT_EQ(expectSound((list + 1) * faultsInList), (list + 1) * faultsInList);
    nextList = list + 1;
    midList += known > 0 ? 1 : 0;
  }

  EmbeddedUnderTest under;
  std::u16string file;
  Order order;
  std::mt19937 random{20061127};
  int nextList = 0;
  int underWay = 0, told = 0, midList = 0;
  std::uintmax_t wholeGrowth_ = 0;
};

TEST_F(Killed, NothingShownAsStoredIsLostAndTheNextListCompletesIt) {
  const int rounds = wantedRounds();
  for (int round = 0; round < rounds && !HasFailure(); ++round) {
    SCOPED_TRACE("round " + std::to_string(round));
    if (round % roundsOnAFile == 0) newFile(round / roundsOnAFile % 3 == 2);
    const int before = nextList * faultsInList;
    const int stored = expectSound(before + claimed(killAtRandom()));
    if (!HasFailure()) fetchAgain(stored);
  }
  std::printf(
      "%d killed, %d of them under way, %d after a list was told to be stored, %d with a part of it saved\n",
      rounds, underWay, told, midList);
}

}  // namespace
}  // namespace vordane::crash
