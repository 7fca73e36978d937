// Hostile programs between processes: a host and an exchange server that misbehave (EvilHost.exe,
// EvilExchange.exe) against the real add-in, round after round; after each of them a host that behaves must
// find everything as ever, in the same process where it goes on, else in the next one. From a third of the
// calls on one process goes through all rounds: it must be there at the end, with no more handles and memory.
//
//   director SUITE CALLS [SEED]   in an installed suite (its version directory)
//
// VORDANE_HOSTILE_LOG names a file that gets a line for each call, its end and each doing, with its time and
// process. Goes on until the hostile programs have answered that many calls of the add-in. Ends with 1 and a
// line that begins with FAILED when something is not as it should be.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include "board.h"
#include "desk.h"
#include "evil.h"
#include "patience.h"
#include "platform/windows/com/apartment.h"
#include "right_host.h"
#include "stored.h"
#include "text/utf8.h"
#include "watcher.h"
#include "windows/rounds/measuring.h"

namespace vordane::hostile {
namespace {

using automation::AutomationError;
using automation::byVal;

const std::wstring addIn = L"VORDANE.EXE";
// A window whose life is over gives few calls more, so that a round in which it may end is short.
constexpr std::int32_t stepsOfAWildRound = 120, mostStepsOfARound = 960, stepsAtOnce = 60, stepsByHand = 40;
// Where a program has died: more answers than these will not help.
constexpr int answersEnough = 100;
constexpr std::size_t linesOfAFailure = 600;

void require(bool good, const std::string& otherwise) {
  if (!good) throw std::runtime_error(otherwise);
}

struct Seen {
  Lines calls, boxes, rows;
  bool operator==(const Seen&) const = default;
};

void print(const char* what, const Lines& lines) {
  std::printf("%s\n", what);
  for (const std::string& line : lines) std::printf("  %s\n", line.c_str());
}

class Director {
 public:
  Director(std::u16string suite, std::int64_t wanted, std::int32_t seed)
      : suite_(std::move(suite)), wanted_(wanted), seed_(seed) {
    board_->mortal = true;
  }

  void run() {
    try {
      direct();
    } catch (...) {
      tellHowItCame();
      throw;
    }
  }

 private:
  void direct() {
    look();
    while (calls() < wanted_ / 3) wildRound();
    lasting();
    host_.end();
    std::printf(
        "%lld calls in %d rounds, %d of them by hand, and %d add-ins; %d times it went on in the same "
        "process, %d times a wait was given up whose answer had died; hosts died %d times, exchange servers "
        "%d times, %d of them killed while they hung; %d creations were tried again\n",
        static_cast<long long>(calls()), rounds_, byHand_, watcher_.addIns(), sameProcess_, givenUp_,
        board_->deaths[0].load(), board_->deaths[1].load(), watcher_.killed(), right_.creationsTriedAgain());
  }
  // The end of the log, and whether the add-in ends when everybody lets go.
  void tellHowItCame() {
    std::uint32_t from = 1;
    const Lines lines = board_.linesSince(from);
    const std::size_t first = lines.size() - std::min(lines.size(), linesOfAFailure);
    for (std::size_t i = first; i < lines.size(); ++i) std::printf("  %s\n", lines[i].c_str());
    std::fflush(stdout);
    for (const DWORD code : watcher_.takeBadEnds())
      std::printf("an add-in ended with code %lu\n", static_cast<unsigned long>(code));
    right_.release();
    host_.end();
    endPrograms(exchangeProgram);
    const bool gone = right_.waitUntil([] { return test::processesOf(addIn).empty(); }, patience());
    std::printf(gone ? "everybody has let go, and the add-in has ended\n"
                     : "everybody has let go, and the add-in stays\n");
  }

  std::int64_t calls() const { return static_cast<std::int64_t>(board_.calls()); }
  int deaths() const { return board_.deaths() + watcher_.killed(); }
  void tell(const char* what) {
    std::printf("  %.1f s: %s; host %lld calls, exchange servers %lld calls, %d deaths\n",
                static_cast<double>(GetTickCount64() - begun_) / 1000, what,
                static_cast<long long>(board_.calls(Role::host)),
                static_cast<long long>(board_.calls(Role::exchange)), deaths());
    std::fflush(stdout);
  }

  // --- the hostile programs
  // They begin nothing by themselves any more, and what they have begun is over.
  void quiet() {
    board_->playing = false;
    require(right_.waitUntil([this] { return !board_.somebodyActs(); }, patience()),
            "a hostile program does not come back from a call");
    require(board_.wrong().empty(), board_.wrong());
  }
  // All of them that run.
  void everybody(const wchar_t* order, Wish wish) {
    if (host_.alive()) host_.order(com::fromWide(order));
    exchanges(wish);
  }
  void exchanges(Wish wish) {
    board_.utter(wish);
    require(right_.waitUntil([this] { return !board_.somebodyOwes(); }, patience()),
            "a hostile exchange server does not do what it is told");
  }
  void letGo() {
    quiet();
    everybody(L"LetGo", Wish::letGo);
  }
  // The next round has exchange servers of its own.
  void leave() {
    const auto gone = [this] {
      if (test::processesOf(exchangeProgram).empty()) return true;
      board_.utter(Wish::leave);  // also to one that has just been started
      return false;
    };
    require(right_.waitUntil(gone, patience()), "a hostile exchange server does not end");
  }

  // --- what is always so
  void checkEnds() {
    const auto bad = watcher_.takeBadEnds();
    require(bad.empty(), "an add-in ended with code " + std::to_string(bad.empty() ? 0 : bad.front()));
  }
  // Everybody has let go.
  void expectGone() {
    require(right_.waitUntil([] { return test::processesOf(addIn).empty(); }, patience()),
            "a process stays after its last release");
    checkEnds();
  }
  DWORD onlyAddIn() {
    require(right_.waitUntil([] { return test::processesOf(addIn).size() == 1; }, patience()),
            std::to_string(test::processesOf(addIn).size()) + " add-ins run");
    return test::processesOf(addIn).front();
  }

  // --- the host that behaves
  Seen converse() {
    watcher_.takeBoxes();
    Seen seen{right_.converse(), {}, {}};
    for (const std::wstring& box : watcher_.takeBoxes())
      seen.boxes.push_back(text::toUtf8(com::fromWide(box)));
    seen.rows = storedFaults(suite_ + u"\\ADDINS\\DATABASE\\FAULT.MDB", u"RIGHT");
    return seen;
  }
  // The first time shows what it is.
  void look() {
    require(right_.take(), "the add-in could not load its window");
    converse();
    reference_ = {expectedCalls(), {"Fault Display: The exchange has no new faults."}, expectedRows()};
    expect(converse(), reference_, "at first");
    end();
  }
  // The first conversation may meet what the hostile ones stored, deleted or pressed, the second may not;
  // faults that they gave to the right exchange while it was waiting for theirs stay, as all that is stored
  // does.
  void expectAsEver(const char* where) {
    const Seen first = converse();
    if (!(first == reference_)) {
      const Lines& left = first.rows;
      require(std::includes(left.begin(), left.end(), reference_.rows.begin(), reference_.rows.end()),
              std::string("faults have gone ") + where);
      expect(converse(), {reference_.calls, reference_.boxes, left}, where);
    }
    tell(where);
  }
  static void expect(const Seen& now, const Seen& expected, const char* where) {
    if (now == expected) return;
    print("expected calls:", expected.calls);
    print("calls:", now.calls);
    print("expected boxes:", expected.boxes);
    print("boxes:", now.boxes);
    print("expected rows:", expected.rows);
    print("rows:", now.rows);
    require(false, std::string("a host that behaves sees something else ") + where);
  }
  void end() {
    right_.release();
    letGo();
    expectGone();
  }

  // --- rounds
  void begin(bool endings) {
    leave();
    std::printf("round %d, seed %d\n", rounds_, seed_);
    std::fflush(stdout);
    board_.note('D', "round " + std::to_string(rounds_));
    ++rounds_;
    ++seed_;
    deathsBefore_ = deaths();
    board_->seed = seed_;
    board_->endings = endings;
    board_->exchanges = 0;
    board_->jobMade = false;
    board_->playing = true;
  }
  void attack(std::int32_t steps) {
    bool lives = host_.order(u"Begin");
    for (std::int32_t done = 0; lives && done < steps; done += stepsAtOnce)
      lives = host_.order(u"Steps", {byVal(stepsAtOnce)});
    quiet();
    tell("attacked");
  }
  bool somebodyDied() const { return deaths() > deathsBefore_; }
  // Answers to what still waits for one, until the add-in has nothing to do. False where `lost` says that the
  // answer may have gone with whoever owed it, and it seems so: that is waited for without an end.
  bool comesToRest(bool lost) {
    bool rests = false;
    int answers = 0;
    const bool looked = right_.waitUntil(
        [&] {
          rests = right_.idle();
          if (rests || (lost && answers >= answersEnough)) return true;
          ++answers;
          everybody(L"Answer", Wish::answer);
          return false;
        },
        patience());
    require(looked, "it still waits, though everything was answered");
    return rests;
  }
  // A window whose life is over makes room for another process, and goes when everybody has let go of it: of
  // the other one too. False where there was none.
  bool leaveTheOldOne() {
    if (test::processesOf(addIn).size() < 2) return false;
    letGo();
    onlyAddIn();
    return true;
  }
  // False where the window's life is over.
  bool goesOn() {
    if (!right_.take()) return false;
    const bool left = leaveTheOldOne();
    if (!right_.registerIt()) return false;
    if (board_->jobMade) return giveUp();
    if (!comesToRest(left || somebodyDied())) {
      ++givenUp_;
      return giveUp();
    }
    return right_.registerIt();
  }
  // What a host has to end a job, and a wait that has no end.
  bool giveUp() {
    right_.cancel();
    return false;
  }
  void answersThatComeLate() {
    right_.takeLines();
    everybody(L"AnswerLate", Wish::answerLate);
    require(right_.idle(), "an answer that nobody waits for was taken");
    require(right_.takeLines().empty(), "an answer that nobody waits for was told");
  }

  void wildRound() {
    begin(true);
    if (seed_ % 6 == 5) return roundByHand();
    attack(stepsOfAWildRound);
    if (goesOn()) {
      expectAsEver("in the same process");
      answersThatComeLate();
      ++sameProcess_;
      if (seed_ % 4 != 0) return;
    }
    end();
    next();
  }
  void next() {
    require(right_.take(), "the next add-in could not load its window");
    expectAsEver("in the next process");
    if (seed_ % 2 == 0) end();
  }

  void roundByHand() {
    end();
    ++byHand_;
    board_->playing = true;
    const com::Handle process = startByHand();
    require(right_.waitUntil([] { return addInWindow() != nullptr; }, patience()), "no window by hand");
    Whims whims(static_cast<std::uint64_t>(seed_));
    for (int i = 0; i < stepsByHand; ++i) {
      const std::size_t deed = whims.below(6);
      if (deed < 3)
        pressButton(addInWindow(), deed == 0 ? static_cast<Action>(whims.below(4)) : Action::request);
      if (deed == 3) clickHeading(addInWindow(), static_cast<int>(whims.below(6)));
      if (deed == 4) chooseExchange(addInWindow(), whims.next());
      right_.pause(static_cast<int>(whims.below(40)));
    }
    exchanges(Wish::answer);
    const ULONGLONG since = GetTickCount64();
    const auto left = static_cast<ULONGLONG>(patience());
    for (askToClose(addInWindow()); !test::endsWithin(process.get(), 200); askToClose(addInWindow()))
      require(GetTickCount64() - since < left, "a window that was started by hand does not close");
    quiet();
    expectGone();
    tell("closed by hand");
    next();
  }
  com::Handle startByHand() const {
    STARTUPINFOW start{};
    start.cb = sizeof start;
    PROCESS_INFORMATION started{};
    const std::wstring folder(suite_.begin(), suite_.end());  // no simulator lies there
    std::wstring line = L"\"" + folder + L"\\ADDINS\\VORDANE.EXE\" EVIL";
    CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, folder.c_str(), &start,
                   &started);
    const com::Handle thread(started.hThread);
    return com::Handle(started.hProcess);
  }

  // --- one process for all rounds
  void lasting() {
    end();
    board_->mortal = false;
    require(right_.take(), "the add-in could not load its window");
    const DWORD id = onlyAddIn();
    const com::Handle process = test::openProcess(id);
    std::vector<test::Holding> samples;
    const auto steps = static_cast<std::int32_t>(
        std::clamp<std::int64_t>(wanted_ / 20, stepsOfAWildRound, mostStepsOfARound));
    while (calls() < wanted_ || samples.size() < 6) {
      begin(false);
      attack(steps);
      require(!somebodyDied(), "a program died that was to live");
      require(goesOn(), "the window's life is over, though nobody ended it");
      expectAsEver("in the process that lasts");
      answersThatComeLate();
      letGo();
      ++sameProcess_;
      require(onlyAddIn() == id, "the add-in is another one");
      samples.push_back(test::holdingOf(process.get()));
      std::printf("  %lu handles, %lu KB\n", samples.back().handles,
                  static_cast<unsigned long>(samples.back().privateBytes / 1024));
    }
    compare(samples);
    end();
  }
  // The lowest of the second and of the last third: the first is the warming up, and what a round has under
  // way holds something for its time.
  static void compare(const std::vector<test::Holding>& samples) {
    const auto lowest = [&](std::size_t from, std::size_t to, auto figure) {
      auto least = figure(samples[from]);
      for (std::size_t i = from; i < to; ++i) least = std::min(least, figure(samples[i]));
      return static_cast<long long>(least);
    };
    const std::size_t third = samples.size() / 3;
    const auto grown = [&](const char* what, auto figure, long long spare) {
      const long long early = lowest(third, 2 * third, figure);
      const long long late = lowest(2 * third, samples.size(), figure);
      std::printf("%s of the add-in that lasts: %lld, then %lld (%zu rounds)\n", what, early, late,
                  samples.size());
      require(early > 0, "nothing can be measured here");
      require(late - early <= spare, std::string(what) + " grew");
    };
    grown(
        "handles", [](const test::Holding& holding) { return holding.handles; }, 10);
    grown(
        "private kilobytes", [](const test::Holding& holding) { return holding.privateBytes / 1024; },
        12000);  // threads that are kept have a stack of 1 MB
  }

  const std::u16string suite_;
  const std::int64_t wanted_;
  std::int32_t seed_;
  const ULONGLONG begun_ = GetTickCount64();
  const Board board_;
  Watcher watcher_{board_};
  RightHost right_{[this](std::string_view line) { board_.note('D', line); }};
  EvilHost host_;
  Seen reference_;
  int rounds_ = 0, byHand_ = 0, sameProcess_ = 0, givenUp_ = 0, deathsBefore_ = 0;
};

int direct(std::u16string suite, std::int64_t calls, std::int32_t seed) {
  const com::Apartment apartment;
  try {
    Director(std::move(suite), calls, seed).run();
    return 0;
  } catch (const AutomationError& failure) {
    std::printf("FAILED: a call ended with 0x%08X\n", static_cast<unsigned>(failure.code()));
  } catch (const std::exception& failure) {
    std::printf("FAILED: %s\n", failure.what());
  }
  return 1;
}

}  // namespace
}  // namespace vordane::hostile

int wmain(int count, wchar_t** values) {
  const long long calls = count > 2 ? std::wcstoll(values[2], nullptr, 10) : 0;
  if (calls > 0 && count < 5) {
    const std::wstring suite = values[1];
    return vordane::hostile::direct({suite.begin(), suite.end()}, calls,
                                    count == 4 ? static_cast<int>(std::wcstol(values[3], nullptr, 10)) : 1);
  }
  std::fputs("usage: director SUITE CALLS [SEED]\n", stderr);
  return 2;
}
