// Stations and servers that are killed in the middle of an ingestion: nothing that was told to be stored is
// lost, and the next fetch completes the list without storing anything twice. VORDANE_KILL_ROUNDS=n makes n
// rounds.
#include <signal.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>

#include "crash/lists.h"
#include "crash/process.h"
#include "odbc/proxy.h"
#include "odbc/server_story.h"
#include "platform/described.h"

namespace vordane::odbc {
namespace {

constexpr int shortRun = 6;         // rounds
constexpr int roundsOnAStore = 10;  // then a new one: every row of it is looked at in every round

int wantedRounds() {
  const char* wanted = std::getenv("VORDANE_KILL_ROUNDS");
  return wanted != nullptr ? std::atoi(wanted) : shortRun;
}

std::vector<std::string> linesOf(const std::filesystem::path& report) {
  std::vector<std::string> lines;
  std::ifstream in(report, std::ios::binary);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

int claimed(const std::vector<std::string>& report) {
  int stored = 0;
  for (const std::string& line : report)
    if (line.starts_with("Account ")) stored += std::atoi(line.c_str() + 8);
  return stored;
}

class KilledTest : public testing::Test {
 protected:
  crash::Order orderOf(int firstList, int lists) {
    return {sources_.writeThrough(wire_.folder(), store_).string(),
            (sources_.folder() / "report").string(),
            firstList,
            lists,
            false,
            false,
            false};
  }
  // The faults stored, after looking at each of them: those from 0 on, in their order, each once.
  int expectSound(int atLeast) {
    const auto link = connectTo(store_);
    const auto rows = link->query(
        "select \"Fault\", \"Alarm\", \"CPU\", \"Date\", \"Description\" from vordane.\"FaultDisplay\" order "
        "by "
        "\"Count\"");
    fakes::MemoryStoreForm form;
    for (std::size_t i = 0; i < rows.size(); ++i) {
      const crash::Row expected = crash::expectedRow(form, static_cast<int>(i));
      if (rows[i] == Fields(expected.begin(), expected.end())) continue;
      ADD_FAILURE() << "row " << i << " is not fault " << i;
      break;
    }
    EXPECT_EQ(text::toUtf8(link->query(postgres().countUnindexed(store::faultEvents)).at(0).at(0).value()),
              "0");
    EXPECT_LE(link->query("select \"ID\"::text from vordane.\"PBXList\"").size(), 1U);
    const int stored = static_cast<int>(rows.size());
    EXPECT_GE(stored, atLeast) << "told to be stored, and lost";
    return stored;
  }
  // The list that was cut short comes again: only what is missing is new.
  void fetchAgain(int stored) {
    const int list = stored / crash::faultsInList, known = stored % crash::faultsInList;
    crash::Order again = orderOf(list, 1);
    again.report += "-again";
    std::filesystem::remove(again.report);
    crash::takeLists(again, *makeEngine(startup::databases, systemLibrary()));
    const std::string account =
        "Account 500=" + std::to_string(crash::faultsInList - known) + "+" + std::to_string(known) + "+0";
    EXPECT_EQ(linesOf(again.report), (std::vector<std::string>{"ready", account, "Acknowledge"}));
    EXPECT_EQ(expectSound((list + 1) * crash::faultsInList), (list + 1) * crash::faultsInList);
    nextList_ = list + 1;
    midList_ += known > 0 ? 1 : 0;
  }
  // What goes over the wire while lists are taken in, of which a part is taken by chance.
  int messagesUntilKilled(int lists) {
    if (wholeMessages_ == 0) {
      const std::string real = std::exchange(store_, makeStore(database::Layout::faults));
      wire_.breakAt(Proxy::Breakage::none, 0);
      const crash::Order order = orderOf(0, lists);
      crash::takeLists(order, *makeEngine(startup::databases, systemLibrary()));
      std::filesystem::remove(order.report);
      wholeMessages_ = wire_.messages();
      store_ = real;
    }
    return 1 + static_cast<int>(random_() % static_cast<unsigned>(wholeMessages_));
  }
  // Waits for so many messages, or for the end of all that is to be done.
  void awaitMessages(int many, const std::string& report) {
    const auto patience = std::chrono::steady_clock::now() + std::chrono::minutes(2);
    while (wire_.messages() < many && std::chrono::steady_clock::now() < patience) {
      const auto lines = linesOf(report);
      if (!lines.empty() && lines.back() == "done") return;
      std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
  }
  static void startServerAgain() { ASSERT_EQ(std::system((serverFolder() / "start").string().c_str()), 0); }

  static constexpr int lists_ = 4;
  DataSources sources_;
  std::string store_ = makeStore(database::Layout::faults);
  Proxy wire_;
  std::mt19937 random_{20061127};
  int nextList_ = 0, wholeMessages_ = 0;
  int told_ = 0, midList_ = 0, underWay_ = 0;
};

TEST_F(KilledTest, AStationLosesNothingThatItToldAndTheNextListCompletesIt) {
  const int rounds = wantedRounds();
  for (int round = 0; round < rounds && !HasFailure(); ++round) {
    SCOPED_TRACE("round " + std::to_string(round));
    if (round > 0 && round % roundsOnAStore == 0) {
      store_ = makeStore(database::Layout::faults);
      nextList_ = 0;
    }
    const int moment = messagesUntilKilled(lists_);
    crash::Order order = orderOf(nextList_, lists_);
    order.slow = round % 4 == 3;
    order.stays = true;
    std::filesystem::remove(order.report);
    wire_.breakAt(Proxy::Breakage::none, 0);
    crash::Process station(crash::toArguments(order));
    awaitMessages(moment, order.report);
    station.kill();
    EXPECT_LT(station.wait(), 0) << "the station ended by itself";
    const auto report = linesOf(order.report);
    underWay_ += report.empty() || report.back() != "done" ? 1 : 0;
    told_ += claimed(report) > 0 ? 1 : 0;
    const int stored = expectSound(nextList_ * crash::faultsInList + claimed(report));
    if (!HasFailure()) fetchAgain(stored);
  }
  std::printf("%d stations killed, %d under way, %d after a list was told, %d with a part of one saved\n",
              rounds, underWay_, told_, midList_);
}

TEST_F(KilledTest, AServerLosesNothingThatWasToldAndTheSameStationGoesOn) {
  // A list is saved in several pieces.
  const auto engine = makeEngine(startup::databases, systemLibrary(), {.longestUnsavedMilliseconds = 5});
  fakes::MemoryStoreForm form;
  std::vector<std::string> report;
  form.meanwhile = [&](const std::string& line) { report.push_back(line); };
  form.database = engine->open(text::fromUtf8(orderOf(0, 1).file), false);
  store::FaultStore faults(form, form.around());
  faults.setSortFlags();
  wire_.breakAt(Proxy::Breakage::none, 0);
  crash::receiveList(form, nextList_++);
  form.ingest(faults);
  wholeMessages_ = wire_.messages();
  const int rounds = wantedRounds();
  for (int round = 0; round < rounds && !HasFailure(); ++round) {
    SCOPED_TRACE("round " + std::to_string(round));
    const int moment = messagesUntilKilled(1);
    wire_.breakAt(Proxy::Breakage::none, 0);
    std::atomic<bool> over = false;
    std::thread killer([&] {
      while (wire_.messages() < moment && !over) std::this_thread::sleep_for(std::chrono::microseconds(100));
      signalServer(SIGKILL);
    });
    report.clear();
    crash::receiveList(form, nextList_);
    form.ingest(faults);
    over = true;
    killer.join();
    startServerAgain();
    const bool acknowledged = std::count(report.begin(), report.end(), "Acknowledge") > 0;
    underWay_ += acknowledged ? 0 : 1;
    const int stored =
        expectSound(nextList_ * crash::faultsInList + (acknowledged ? crash::faultsInList : 0));
    midList_ += stored % crash::faultsInList > 0 ? 1 : 0;
    report.clear();
    for (int times = 0; times < 3 && std::count(report.begin(), report.end(), "Acknowledge") == 0; ++times) {
      crash::receiveList(form, nextList_);
      form.ingest(faults);
    }
    EXPECT_EQ(std::count(report.begin(), report.end(), "Acknowledge"), 1);
    ++nextList_;
    EXPECT_EQ(expectSound(nextList_ * crash::faultsInList), nextList_ * crash::faultsInList);
  }
  faults.close();
  std::printf("the server killed %d times, %d under way, %d with a part of the list saved\n", rounds,
              underWay_, midList_);
}

}  // namespace
}  // namespace vordane::odbc
