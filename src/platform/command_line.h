// What the command line of an automation server asks for. Pure.
#pragma once

#include <string>
#include <string_view>

namespace vordane::platform {

enum class Start { byHand, byAutomation, registerServer, unregisterServer };

struct CommandLine {
  Start start = Start::byHand;
  // Of a start by hand: without surrounding blanks and one pair of enclosing quotes. Of a registration: what
  // stands behind the switch.
  std::u16string text;
};

// `text` is everything behind the program's own name. The switches -Embedding, /Embedding, /RegServer,
// -RegServer, /UnregServer and -UnregServer are known in any case; the first two stand alone, behind the
// others a blank and more may follow.
CommandLine parseCommandLine(std::u16string_view text);

// What a process ends with that could not begin at all, or register itself. Whoever started it by hand learns
// the number of its entry in the event log; a host and a registration get what they always got.
int exitCodeOfBroken(Start start);

// Everything behind the program's own name (quoted or not) in a whole command line.
std::u16string_view withoutProgramName(std::u16string_view commandLine);

}  // namespace vordane::platform
