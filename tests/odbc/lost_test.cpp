// A server that goes away, hangs or answers late, and a wire that loses what goes over it: no step waits
// long, nothing is lost or stored twice, and the same objects go on.
#include <signal.h>

#include <thread>

#include "database/contract.h"
#include "odbc/proxy.h"
#include "odbc/server_story.h"

namespace vordane::odbc {
namespace {

using database::addFault;
using database::Database;
using database::Fault;
using database::isStored;
using database::Layout;
using database::numberOfError;
using std::chrono::milliseconds, std::chrono::seconds, std::chrono::steady_clock;

// The server and all its processes stand still while it lives.
class Stopped {
 public:
  Stopped() : processes_(signalServer(SIGSTOP)) {}
  ~Stopped() {
    for (const int each : processes_) kill(each, SIGCONT);
  }
  Stopped(const Stopped&) = delete;
  Stopped& operator=(const Stopped&) = delete;

 private:
  std::vector<int> processes_;
};

// Too short for a busy machine: whoever uses it takes a server that was given up for no reason, too.
constexpr Options hasty{
    .connectMilliseconds = 1000, .answerMilliseconds = 500, .askMilliseconds = 400, .pauseMilliseconds = 0};

// Long enough for an answer of a busy machine, short enough to be waited for.
constexpr Options steady{
    .connectMilliseconds = 3000, .answerMilliseconds = 2500, .askMilliseconds = 2000, .pauseMilliseconds = 0};

// For what must come through, however busy the machine.
constexpr Options patient{.connectMilliseconds = 60'000, .answerMilliseconds = 60'000};

// A step behind the loss, tried until it comes through, which it never does where nobody connects again.
template <class Step>
auto goesOn(const Step& step) -> decltype(step()) {
  const auto last = steady_clock::now() + seconds(60);
  for (;;) try {
      return step();
    } catch (const database::DatabaseError& error) {
      if (error.number() != 3151 || steady_clock::now() > last) throw;
    }
}

Fault lossFault(int number) {
  return {1, u"01", u"MJ", u"MP", u"2006/11/27 10:15", u"Fault " + text::decimal(number)};
}

class LostServer : public testing::Test {
 protected:
  LostServer() { path_ = under_.make(Layout::faults); }
  std::unique_ptr<Database> open(const Options& options = steady, bool throughWire = false) {
    engines_.push_back(makeEngine(startup::databases, systemLibrary(), options));
    const std::u16string path =
        throughWire ? sources_.writeThrough(wire_.folder(), under_.database()).u16string() : path_;
    return engines_.back()->open(path, false);
  }
  std::string one(const std::string& question) {
    return text::toUtf8(connectTo(under_.database())->query(question).at(0).at(0).value_or(u"Null"));
  }
  static steady_clock::duration timeOf(const std::function<void()>& step) {
    const auto begun = steady_clock::now();
    step();
    return steady_clock::now() - begun;
  }

  ServerUnderTest under_;
  std::u16string path_;
  DataSources sources_;
  Proxy wire_;
  std::vector<std::unique_ptr<database::Engine>> engines_;
};

TEST_F(LostServer, OneThatStandsStillIsGivenUpAndTheNextStepGoesOn) {
  const auto database = open();
  addFault(*database, lossFault(1));
  for (int times = 0; times < 2; ++times) {
    {
      const Stopped server;
      EXPECT_EQ(numberOfError([&] { isStored(*database, lossFault(1)); }), 3151);
      EXPECT_EQ(numberOfError([&] { isStored(*database, lossFault(1)); }), 3151);
    }
    EXPECT_TRUE(goesOn([&] { return isStored(*database, lossFault(1)); }));
  }
}

TEST_F(LostServer, ABatchThatItStoppedInIsNotStored) {
  const auto database = open();
  database->beginBatch();
  EXPECT_FALSE(isStored(*database, lossFault(1)));
  addFault(*database, lossFault(1));
  {
    const Stopped server;
    EXPECT_EQ(numberOfError([&] { database->checkpoint(); }), 3151);
    EXPECT_EQ(numberOfError([&] { database->endBatch(); }), 0) << "nothing is left to save";
  }
  EXPECT_FALSE(goesOn([&] { return isStored(*database, lossFault(1)); }));
  database->beginBatch();
  EXPECT_FALSE(isStored(*database, lossFault(1)));
  addFault(*database, lossFault(1));
  database->endBatch();
  EXPECT_EQ(one("select count(*)::text from vordane.\"FaultDisplay\""), "1");
}

TEST_F(LostServer, WithTheLimitsOfAStationNoStepHangsTenSeconds) {
  const auto database = open({});
  const auto another = open({});
  const Stopped server;
  EXPECT_LT(timeOf([&] { EXPECT_EQ(numberOfError([&] { isStored(*database, lossFault(1)); }), 3151); }),
            seconds(10));
  EXPECT_LT(timeOf([&] { EXPECT_EQ(numberOfError([&] { isStored(*database, lossFault(1)); }), 3151); }),
            milliseconds(500))
      << "what follows at once does not wait again";
  EXPECT_LT(timeOf([&] { EXPECT_EQ(numberOfError([&] { open({}); }), 3151); }), seconds(10));
}

TEST_F(LostServer, AWireThatSwallowsEverythingIsGivenUpToo) {
  const auto database = open(steady, true);
  addFault(*database, lossFault(1));
  wire_.swallow(true);
  EXPECT_EQ(numberOfError([&] { isStored(*database, lossFault(1)); }), 3151);
  EXPECT_EQ(numberOfError([&] { open(steady, true); }), 3151);
  wire_.swallow(false);
  EXPECT_TRUE(goesOn([&] { return isStored(*database, lossFault(1)); }));
}

TEST_F(LostServer, AnAnswerThatTheServerIsAtWorkOnIsWaitedFor) {
  const auto database = open({.answerMilliseconds = 500, .askMilliseconds = 20'000});
  const auto other = connectTo(under_.database());
  other->begin();
  other->query("select pg_advisory_xact_lock(1987014244, 1)::text");
  std::thread later([&] {
    std::this_thread::sleep_for(milliseconds(1500));
    other->commit();
  });
  EXPECT_GT(timeOf([&] { addFault(*database, lossFault(1)); }), milliseconds(1000)) << "the numbers' lock";
  later.join();
  EXPECT_TRUE(isStored(*database, lossFault(1)));
}

TEST_F(LostServer, WhatALostConnectionHeldIsFreeAtOnce) {
  const auto database = open(steady, true), another = open(patient);
  const auto names = database->openRecordset(u"Select * FROM PBXList");
  names->addNew();
  names->set(u"PBXName", std::u16string(u"PBX-1"));
  names->update();
  database->beginBatch();
  EXPECT_FALSE(isStored(*database, lossFault(1)));
  addFault(*database, lossFault(1));
  wire_.breakAt(Proxy::Breakage::drop, 1);
  EXPECT_EQ(numberOfError([&] { database->endBatch(); }), 3151);
  EXPECT_LT(timeOf([&] {
              another->beginBatch();
              EXPECT_FALSE(isStored(*another, lossFault(1)));
              addFault(*another, lossFault(1));
              another->endBatch();
            }),
            milliseconds(patient.lockWaitMilliseconds));
  EXPECT_EQ(one("select count(*)::text from vordane.\"FaultDisplay\""), "1");
}

TEST_F(LostServer, WhileItIsWaitedForTheWindowPaints) {
  const auto database = open();
  int painted = 0;
  database->setProgress([&](std::size_t, std::size_t) { ++painted; });
  const Stopped server;
  EXPECT_EQ(numberOfError([&] { isStored(*database, lossFault(1)); }), 3151);
  EXPECT_GT(painted, 3);
}

TEST_F(LostServer, AStationThatOpensComesThroughWhateverBreaks) {
  using Breakage = Proxy::Breakage;
  for (const Breakage what : {Breakage::cut, Breakage::drop}) {
    int opened = 0;
    for (int at = 1; opened == 0; at += what == Breakage::cut ? 1 : 5) {
      wire_.breakAt(what, at);
      const int number = numberOfError([&] {
        const auto database = open(hasty, true);
        if (!wire_.broke()) ++opened;
      });
      EXPECT_TRUE(number == 0 || number == 3151) << number << " at " << at;
      EXPECT_EQ(numberOfError([&] { open(patient, true); }), 0) << at;
      ASSERT_LT(at, 200);
    }
  }
}

}  // namespace
}  // namespace vordane::odbc

namespace vordane::startup {
namespace {

using odbc::Proxy;
using Breakage = Proxy::Breakage;

class BrokenWire : public ServerStory {
 protected:
  BrokenWire() { useServer(odbc::hasty, sources_.writeThrough(wire_.folder(), store_)); }
  ~BrokenWire() override { layer.reset(); }

  std::string stored() {
    return ask(
        "select count(*) || ' ' || count(distinct (\"ID\", \"Date\", \"Description\")) from "
        "vordane.\"FaultDisplay\"");
  }
  // Whether the alarms are asked for, as behind a list that was taken in.
  bool tryToFetch(const std::vector<std::u16string>& entries) {
    trace.clear();
    pressAndTick(0);
    if (!exchange().request) return false;
    exchange().answer(0, entries);
    tick();
    const Lines lines = taken();
    const bool acknowledged = std::any_of(lines.begin(), lines.end(), [](const std::string& line) {
      return line.starts_with("SendRequest EA1");
    });
    if (acknowledged) {
      exchange().answerLamps(u"00");
      tick();
    }
    return acknowledged;
  }
  // As a person does, again and again.
  static bool until(const std::function<bool()>& done) {
    const auto last = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!done())
      if (std::chrono::steady_clock::now() > last) return false;
    return true;
  }
  bool fetchAll(const std::vector<std::u16string>& entries) {
    return until([&] { return tryToFetch(entries); });
  }
  // The display may have been what was broken.
  bool refresh(std::size_t rows) {
    constexpr int keyF5 = 116;
    return until([&] {
      form().input().keyPressed(keyF5);
      return shown() == rows;
    });
  }
  std::size_t shown() const { return view.rows != nullptr ? view.rows->size() : 0; }
  // Breaks the fetch of five new faults at each of its messages, or every `step`th.
  void breakEach(Breakage what, int step) {
    constexpr int many = 5;
    startWithHost();
    ASSERT_TRUE(fetchAll(faults(0, many)));
    int fetched = many, broken = 0;
    for (int at = 1;; at += step, ++broken) {
      const auto list = faults(fetched, many);
      wire_.breakAt(what, at, std::chrono::milliseconds(900));
      const std::string before = std::to_string(fetched), after = std::to_string(fetched + many);
      const bool first = tryToFetch(list);
      const bool broke = wire_.broke();
      wire_.breakAt(Breakage::none, 0);
      if (first) {
        EXPECT_EQ(stored(), after + " " + after) << at << ": acknowledged and not stored";
      }
      EXPECT_TRUE(first || fetchAll(list)) << at;
      EXPECT_FALSE(state.busy);
      ASSERT_EQ(stored(), after + " " + after) << at;
      fetched += many;
      EXPECT_TRUE(refresh(static_cast<std::size_t>(fetched))) << at << ": " << shown();
      if (!broke) break;
      ASSERT_LT(at, 1000);
    }
    EXPECT_GT(broken, 10);
  }
  // Each wait takes its time, so not all of them are waited for in every run of the tests.
  static int stepOfWaits() { return std::getenv("VORDANE_KILL_ROUNDS") != nullptr ? 1 : 13; }

  Proxy wire_;
};

TEST_F(BrokenWire, ThatEndsAtEachMessageOfAFetchLosesNothing) {
  breakEach(Breakage::cut, 1);
}

TEST_F(BrokenWire, ThatSwallowsFromEachMessageOfAFetchOnLosesNothing) {
  breakEach(Breakage::drop, stepOfWaits());
}

TEST_F(BrokenWire, ThatIsTooLateWithEachMessageOfAFetchStoresNothingTwice) {
  breakEach(Breakage::delay, stepOfWaits());
}

TEST_F(BrokenWire, AServerThatStandsStillIsToldInOneBox) {
  startWithHost();
  ASSERT_TRUE(fetchAll(faults(0, 5)));
  {
    const odbc::Stopped server;
    pressAndTick(0);
    exchange().answer(0, faults(0, 10));
    trace.clear();
    tick();
  }
  const Lines lines = taken();
  EXPECT_EQ(std::count_if(lines.begin(), lines.end(),
                          [](const std::string& line) {
                            return line.starts_with("Box 102") &&
                                   line.find("No connection to the database server") != line.npos;
                          }),
            1)
      << testing::PrintToString(lines);
  EXPECT_FALSE(state.busy);
  EXPECT_TRUE(fetchAll(faults(0, 10)));
  EXPECT_EQ(stored(), "10 10");
  EXPECT_TRUE(refresh(10)) << shown();
}

}  // namespace
}  // namespace vordane::startup
