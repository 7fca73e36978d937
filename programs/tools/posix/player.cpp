#include "player.h"

#include "lines.h"

namespace vordane::tools {

std::optional<replay::Difference> playHere(const replay::Recording&, const replay::Play&, const PlayPlace&,
                                           const PlayPrograms&, int) {
  throw ToolError(
      "a conversation is played on Windows. Here --only-write writes what it would be played from");
}

std::filesystem::path ownProgram() {
  return std::filesystem::read_symlink("/proc/self/exe");
}

}  // namespace vordane::tools
