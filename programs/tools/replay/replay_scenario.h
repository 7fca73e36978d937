// The exchange of a conversation as a scenario of the simulated one. Pure; any thread.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "replay/replay_trace.h"

namespace vordane::replay {

struct Scenario {
  std::string text;  // docs/scenarios.md
  // The answers that wait for a word, by the lines of their `called`; the word is answerWord(line).
  std::set<std::size_t> answers;
  bool identifiersShown = false;  // the trace shows log-in identifiers
};

// What can't be played is left out, with a note.
Scenario scenarioOf(const Recording& conversation, Notes& notes);
std::string answerWord(std::size_t line);

}  // namespace vordane::replay
