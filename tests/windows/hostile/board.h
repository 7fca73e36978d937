// What the director and the hostile programs of a run share: who runs, whether they may act by themselves,
// what all exchange servers are asked for, how much they have answered, and what happened in which order. It
// stands in memory of the system's own, so that nothing of it goes down with a program that dies in the
// middle.
#pragma once

#include <windows.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/windows/com/owned.h"

namespace vordane::hostile {

enum class Role : std::uint8_t { host, exchange };

// How a program ends that is meant to: by its own hand, or by the director's because it hangs.
inline constexpr UINT diedInACall = 42;
inline constexpr UINT killedWhileItHung = 43;

// What every exchange server is asked for at once, since nobody knows which of them an answer is waited from.
enum class Wish : std::int32_t { none, answer, answerLate, letGo, leave };

// One program that runs, or has run.
struct Seat {
  std::atomic<DWORD> process;
  Role role;
  std::uint64_t calls;              // that it has answered
  std::atomic<std::int32_t> acts;   // its own doings under way, nested ones too
  std::atomic<std::int32_t> heard;  // the number of the last wish it has dealt with
  std::atomic<bool> hangs;          // in a call that it will never answer
};

// Zeros are its beginning.
struct Shared {
  std::atomic<std::int32_t> seed;        // of the round
  std::atomic<bool> endings;             // the window's own end may be brought about
  std::atomic<bool> mortal;              // programs may die and hang
  std::atomic<bool> playing;             // they may act by themselves
  std::atomic<std::uint32_t> exchanges;  // servers that have been created in this round
  std::atomic<bool> jobMade;             // a job was created
  std::atomic<std::int32_t> deaths[2];   // by role, of their own hand
  std::atomic<Wish> wish;
  std::atomic<std::int32_t> wishes;  // so many have been uttered
  std::atomic<bool> isWrong;
  char wrong[256];  // the first answer that nobody may get

  static constexpr std::size_t mostSeats = 8192, keptLines = 16384;
  std::atomic<std::uint32_t> seats;
  Seat seat[mostSeats];
  struct Line {
    std::atomic<std::uint32_t> number;  // from 1; 0 while it is written
    char text[152];
  };
  std::atomic<std::uint32_t> lines;
  Line line[keptLines];
};

class Board {
 public:
  Board();  // throws std::runtime_error when the system has no room for it
  ~Board();
  Board(const Board&) = delete;
  Board& operator=(const Board&) = delete;

  Shared* operator->() const { return shared_; }
  // A seat for this process. Throws std::runtime_error when none is left.
  Seat& sit(Role role) const;

  std::uint64_t calls(Role role) const;
  std::uint64_t calls() const { return calls(Role::host) + calls(Role::exchange); }
  int deaths() const { return shared_->deaths[0] + shared_->deaths[1]; }
  // Programs that run and are in the middle of a doing of their own.
  bool somebodyActs() const;
  // An exchange server that runs and has not dealt with the last wish.
  bool somebodyOwes() const;
  void utter(Wish wish) const;
  // Those that hang now; each is named once.
  std::vector<DWORD> takeHanging() const;
  void setWrong(std::string_view what) const;
  std::string wrong() const;  // empty: nothing

  // One line of the log; any program, any thread.
  void note(char who, std::string_view what) const;
  // The lines from number `from` on (the first is 1) that are still kept, in their order; `from` becomes the
  // next one's number.
  std::vector<std::string> linesSince(std::uint32_t& from) const;

 private:
  bool anyRunning(const std::function<bool(Seat&)>& is) const;
  com::Handle mapping_;
  Shared* shared_ = nullptr;
};

}  // namespace vordane::hostile
