// Whole stories, line by line.
#include <gmock/gmock.h>

#include "fakes/memory_folder.h"
#include "startup/conversation.h"
#include "trace/traced_stories.h"

namespace vordane::trace {
namespace {

using startup::Lines;
using testing::ElementsAre;

class TracedStory : public startup::Conversation {
 protected:
  TracedStory() {
    startup::makeBetween() = [this](const startup::Workstation& station) {
      auto made = record(std::make_unique<fakes::MemoryFolder>(folder), wish, [this] { return ++now; });
      recorder = made;
      return std::make_unique<TracedBetween>(station, std::move(made));
    };
  }
  ~TracedStory() override { startup::makeBetween() = nullptr; }

  // The lines since the last time, without their times.
  Lines traced() {
    if (const auto alive = recorder.lock()) alive->flush();
    const std::string all = folder.all();
    Lines lines;
    for (std::size_t end; (end = all.find('\n', read)) != all.npos; read = end + 1) {
      std::string line = all.substr(read, end - read);
      EXPECT_TRUE(line.starts_with(R"({"at":"2026-11-23T06:45:12.)")) << line;
      line.erase(0, std::string(R"({"at":"2026-11-23T06:45:12.345678Z",)").size());
      if (const auto took = line.find(R"("took":)"); took != line.npos)
        line.erase(took,
                   line.find_first_of(",}", took) - took + (line[line.find_first_of(",}", took)] == ','));
      lines.push_back(std::move(line));
    }
    return lines;
  }
  void pressTraced(int action) { view.events->buttonPressed(action); }
  void tickTraced() {
    view.timer = 0;
    view.events->tick();
  }

  Moment now = 1'795'416'312'000'000;
  Wish wish;
  fakes::MemoryFolderState folder;
  std::weak_ptr<Recorder> recorder;
  std::size_t read = 0;
};

TEST_F(TracedStory, AStartAndARegistration) {
  start();
  layer = createLayer();
  registerPbx(u"PBX-1");
  EXPECT_THAT(traced(), ElementsAre("?"));
}

TEST_F(TracedStory, AListIsFetched) {
  startWithHost();
  traced();
  pressTraced(0);
  tickTraced();
  exchange().answer(0, oneFault());
  tickTraced();
  exchange().answerLamps(u"00");
  tickTraced();
  EXPECT_THAT(traced(), ElementsAre("?"));
}

}  // namespace
}  // namespace vordane::trace
