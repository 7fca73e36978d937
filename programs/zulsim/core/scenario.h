// What the simulated exchanges answer: the data behind a scenario file. docs/scenarios.md is its reference.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace vordane::zulsim {

// One entry of an answered record; the command is the request's own.
struct Entry {
  std::u16string FirstData, SecondData, ExtraData, DescriptionData;
  bool operator==(const Entry&) const = default;
};

// Faults made from a seed: the same seed gives the same list on every machine.
struct Generation {
  enum class Order : std::uint8_t { newestLast, newestFirst, mixed };
  std::int32_t count = 0;
  std::uint64_t seed = 1;
  std::int64_t fromMinute = 0, toMinute = 0;  // minutes since 1970-01-01 00:00, both ends included
  Order order = Order::newestLast;
  std::vector<std::uint8_t> kinds;  // empty: every kind
};

// What a call of the exchange server brings the caller at once.
struct Reply {
  enum class Kind : std::uint8_t { accept, text, raise, ignore };
  Kind kind = Kind::accept;
  std::u16string text;    // of the answer or of the error; empty with `accept`: the simulator's own
  std::int32_t code = 0;  // of the error
  int pause = 0;          // milliseconds before the call returns
};

// What comes later, through CallBack.
struct Answer {
  std::vector<std::variant<Entry, Generation>> parts;
  std::int32_t dropLast = 0;  // entries cut off the end, so that the groups of four don't come out
  std::int32_t errCode = 0;
  std::u16string message;
  int delay = 0;                     // milliseconds
  std::vector<std::u16string> when;  // words that the answer waits for, one after the other, behind its delay
  std::u16string then;  // the word that is given when the caller has taken the answer; empty: none
  bool never = false;
  bool early = false;                          // before SendRequest has returned
  bool twice = false;                          // the same answer once more
  bool sentRecord = false;                     // in the caller's own record instead of one of the server's
  std::optional<int> vanishAfter;              // the server's process ends after so many reads of the answer
  std::optional<std::u16string> loginId, tag;  // in place of the request's
  std::optional<std::u16string> alarm;         // the exchange's lamps from this answer on
  std::vector<std::u16string> omitted;         // members that the answered record lacks
};

// The answers of one command, used in turn.
struct Command {
  std::u16string key;  // "LEA0", "EA1/00", "EA1/00/CCC"
  std::vector<Answer> answers;
};

struct Exchange {
  std::u16string name;       // "*" answers for every name that has no exchange of its own
  std::uint64_t number = 0;  // within a range of names; added to the seeds, so that the lists differ
  std::u16string alarm = u"00";
  std::u16string cancelledWhen;  // the word that the answer of a cancelled request waits for; empty: its time
  bool repeatAll = false;        // a sequence starts over; otherwise its last step holds
  std::vector<Reply> login, send, logOut, cancel;  // empty: accepted
  std::vector<Command> commands;
};

struct Scenario {
  std::vector<Exchange> exchanges;
};

// The exchange of that name, else "*", else none.
const Exchange* findExchange(const Scenario& scenario, std::u16string_view name);
const Command* findCommand(const Exchange& exchange, std::u16string_view key);

// Step `use` (from 0) of a sequence that is not empty.
template <class Step>
const Step& stepOf(const std::vector<Step>& sequence, std::size_t use, bool repeatAll) {
  if (use < sequence.size()) return sequence[use];
  return repeatAll ? sequence[use % sequence.size()] : sequence.back();
}

// The entries of an answer as the record holds them.
std::vector<Entry> entriesOf(const Answer& answer, std::uint64_t seedOffset);

}  // namespace vordane::zulsim
