// Any lines: what can be read of them makes a scenario and a script that the exchange and the host read, and
// a conversation is itself.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "check.h"
#include "devhost/core/script.h"
#include "replay/replay_compare.h"
#include "replay/replay_script.h"
#include "zulsim/core/scenario_parser.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace vordane;
  std::vector<std::string> lines(1);
  for (std::size_t i = 0; i < size; ++i)
    if (bytes[i] == '\n')
      lines.emplace_back();
    else
      lines.back() += static_cast<char>(bytes[i]);
  replay::Notes notes;
  std::vector<replay::Recording> recordings;
  try {
    recordings = replay::readTrace(lines, notes);
  } catch (const replay::NewerFormat&) {
    return 0;
  }
  for (const replay::Recording& recording : recordings) {
    fuzz::require(!replay::compare(recording, recording));
    const replay::Play play = replay::playOf(recording);
    fuzz::require(zulsim::parseScenario(play.scenario).problems.empty());
    fuzz::require(devhost::parseScript(play.script).problems.empty());
  }
  return 0;
}
