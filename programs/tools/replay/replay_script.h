// The host of a conversation as a script of the development host, and what else has to be done, and when, to
// play it again. Pure; any thread.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "replay/replay_scenario.h"
#include "replay/replay_trace.h"

namespace vordane::replay {

// Something that others did to the add-in. It is due when the add-in has done all that it did before.
struct Cue {
  enum class Kind : std::uint8_t {
    word,    // is given: the host or the exchange goes on
    person,  // does `what` to the window: a word of the trace's event, with its number
    box      // is answered with button `which`
  };
  Kind kind = Kind::word;
  std::size_t line = 0;  // of the trace; what stands there is what the cue brings about
  std::string what;      // the word
  std::int64_t which = 0;
  bool operator==(const Cue&) const = default;
};

// A job of the scheduler that does what the run of the trace did.
struct Job {
  std::int32_t key = 0;
  bool errorStop = false;
  std::int64_t runs = 1;
  bool ours = true;  // a job of another kind does nothing
  bool operator==(const Job&) const = default;
};

struct Play {
  std::string scenario;                 // a .zul text
  std::string script;                   // of the host; empty: started by hand
  std::string exchange;                 // that a start by hand names
  bool simulated = false;               // a start by hand found its exchange server
  bool identifiersShown = false;        // the trace shows log-in identifiers
  std::vector<Cue> cues;                // in the order of their lines
  std::vector<Job> jobs;                // by their keys
  std::optional<std::size_t> playedTo;  // the line before which the play ends; nothing: it is whole
  Notes notes;                          // why
};

inline constexpr const char* scenarioFile = "Zulsim.zul";
inline constexpr const char* endWord = "end";  // ends the script

Play playOf(const Recording& conversation);

}  // namespace vordane::replay
