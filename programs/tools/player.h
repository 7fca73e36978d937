// Plays a recorded conversation on this workstation: starts the add-in of the place's suite and its host, or
// the exchange server of a start by hand, does what a person did, and follows what the add-in does.
#pragma once

#include <filesystem>
#include <optional>

#include "play_place.h"
#include "replay/replay_compare.h"

namespace vordane::tools {

// The programs that are played with: each a file.
struct PlayPrograms {
  std::filesystem::path addin, host, simulator;
};

// What went otherwise than in `recording`; nothing when it all came again. The place holds the written play.
// Throws ToolError when it can't be played: on a system other than Windows, while a fault display runs, when
// a program can't be started.
std::optional<replay::Difference> playHere(const replay::Recording& recording, const replay::Play& play,
                                           const PlayPlace& place, const PlayPrograms& programs,
                                           int patienceSeconds);

// The file of this program.
std::filesystem::path ownProgram();

}  // namespace vordane::tools
