// Every trace of a folder, as many conversations as there are: what VORDANE_TRACES names, which stories.py
// fills with the stories of one in VORDANE_ONE_IN.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "devhost/core/script.h"
#include "play_place.h"
#include "replay/replay_compare.h"
#include "replay/replay_script.h"
#include "zulsim/core/scenario_parser.h"

namespace vordane::replay {
namespace {

using testing::IsEmpty;

std::vector<Recording> recordings() {
  std::vector<Recording> all;
  const char* const folder = std::getenv("VORDANE_TRACES");
  if (folder == nullptr) return all;
  for (const tools::TraceOfProcess& trace : tools::readTraces(folder)) {
    Notes notes;
    for (Recording& recording : readTrace(trace.lines, notes)) all.push_back(std::move(recording));
    EXPECT_EQ(listed(notes), "");
  }
  return all;
}

TEST(ReplayStories, EachMakesAScenarioAndAScriptThatAreRead) {
  if (std::getenv("VORDANE_TRACES") == nullptr) GTEST_SKIP() << "no traces are named";
  std::size_t whole = 0, cues = 0;
  const std::vector<Recording> all = recordings();
  for (const Recording& recording : all) {
    const Play play = playOf(recording);
    ASSERT_THAT(zulsim::parseScenario(play.scenario).problems, IsEmpty()) << play.scenario;
    ASSERT_THAT(devhost::parseScript(play.script).problems, IsEmpty()) << play.script;
    for (const Note& note : play.notes) EXPECT_NE(note.line, 0U) << note.text;
    whole += play.playedTo ? 0 : 1;
    cues += play.cues.size();
  }
  std::cout << all.size() << " recordings, " << whole << " whole, " << cues << " cues\n";
  const char* const oneIn = std::getenv("VORDANE_ONE_IN");
  ASSERT_NE(oneIn, nullptr);
  EXPECT_GT(all.size() * std::stoul(oneIn), 300U);
  EXPECT_GT(2 * whole, all.size());
}

TEST(ReplayStories, EachIsItselfAndNoOtherWhenALineIsMissing) {
  if (std::getenv("VORDANE_TRACES") == nullptr) GTEST_SKIP() << "no traces are named";
  for (const Recording& recording : recordings()) {
    ASSERT_EQ(compare(recording, recording), std::nullopt);
    // Without its last timer it is another one.
    const auto last = std::find_if(recording.events.rbegin(), recording.events.rend(),
                                   [](const Event& event) { return event.name == "timer"; });
    if (last == recording.events.rend()) continue;
    Recording less = recording;
    less.events.erase(less.events.begin() + (recording.events.rend() - last - 1));
    const auto difference = compare(recording, less);
    ASSERT_TRUE(difference) << "without line " << last->line;
    ASSERT_GE(difference->line, last->line);
  }
}

}  // namespace
}  // namespace vordane::replay
