// What the add-in does in a test is written down, and played again from what was written.
#pragma once

#include <string>

#include "library/layout.h"
#include "library/program.h"

namespace vordane::suite {

// Where the add-in's traces of a test lie once it keeps them; until then it keeps none.
Path traceFolder();
void keepTraces();
std::wstring traceSetting(const wchar_t* name);  // empty when it is not set

// What vordane-tools says to playing that: a capsule, a trace or the folder of one. Of the installed suite
// nothing runs any more.
Ended playAgain(const Path& file);

// Whether each test is to be played again once it is over, from a capsule made of it: when VORDANE_PLAY_AGAIN
// is set. It takes as long as the tests themselves.
bool playsAll();
void expectPlayedAgain();

}  // namespace vordane::suite
