// The simulated exchange of the installed suite: what it answers, what it was asked, and the words that it
// waits for.
#pragma once

#include <string>
#include <string_view>

namespace vordane::suite {

// Answers from scenarios\NAME.zul from now on; a simulator that still runs is ended.
void useScenario(const std::wstring& name);
// Gives a word that a scenario or a host's script waits for.
void give(const std::wstring& word);

// The simulator keeps a log of every call from now on.
void keepLog();
// How many lines of that log hold the text.
std::size_t logged(std::string_view text);
// Waits until so many do.
void awaitLogged(std::string_view text, std::size_t times);

}  // namespace vordane::suite
