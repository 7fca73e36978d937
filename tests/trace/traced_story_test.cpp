// Whole stories, line by line.
#include <gmock/gmock.h>

#include <atomic>
#include <regex>

#include "fakes/memory_folder.h"
#include "fakes/watched_database.h"
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
      auto made = record(std::make_unique<fakes::MemoryFolder>(held), wish, [time = now] { return ++*time; });
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
      static const std::regex took(R"(,"took":\d+)");
      lines.push_back(std::regex_replace(line, took, ""));
    }
    return lines;
  }
  void pressTraced(int action) { view.events->buttonPressed(action); }
  void tickTraced() {
    view.timer = 0;
    view.events->tick();
  }

  // Asked by two threads.
  std::shared_ptr<std::atomic<Moment>> now = std::make_shared<std::atomic<Moment>>(1'795'416'312'000'000);
  Wish wish;
  std::shared_ptr<fakes::MemoryFolderState> held = std::make_shared<fakes::MemoryFolderState>();
  fakes::MemoryFolderState& folder = *held;
  std::weak_ptr<Recorder> recorder;
  std::size_t read = 0;
};

TEST_F(TracedStory, AStartAndARegistration) {
  start();
  layer = createLayer();
  registerPbx(u"PBX-1");
  EXPECT_THAT(traced(), ElementsAre("GOLDEN"));
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
  EXPECT_THAT(traced(), ElementsAre("GOLDEN"));
}

TEST_F(TracedStory, IdentifiersAreLeftOut) {
  startWithHost();
  pressTraced(0);
  tickTraced();
  EXPECT_THAT(traced(), testing::Each(testing::Not(testing::ContainsRegex("[^A-Z0-9]L1[^0-9]"))));
}

TEST_F(TracedStory, IdentifiersStandInItWhenTheyAreAskedFor) {
  wish.identifiers = true;
  startWithHost();
  pressTraced(0);
  tickTraced();
  EXPECT_THAT(traced(), testing::Contains(testing::HasSubstr(R"("answer":"L1")")));
}

TEST_F(TracedStory, CallsThatFail) {
  startWithHost();
  exchange().loginRaises = true;
  traced();
  pressTraced(0);
  tickTraced();
  EXPECT_THAT(traced(), ElementsAre("GOLDEN"));
}

TEST_F(TracedStory, WhatAPersonDoesAndIsAsked) {
  startWithHost();
  fetchOneFault();
  traced();
  boxes.answer = 6;
  view.events->headingClicked(2);
  view.events->keyPressed(112);
  view.events->exchangeChosen(0);
  pressTraced(3);
  tickTraced();
  view.events->closeAsked();
  EXPECT_THAT(traced(), ElementsAre("GOLDEN"));
}

TEST_F(TracedStory, ATickInsideACallDoesNothing) {
  startWithHost();
  exchange().duringLogin = [&] { view.events->tick(); };
  traced();
  pressTraced(0);
  tickTraced();
  EXPECT_THAT(traced(), testing::Contains(testing::HasSubstr(R"("event":"tick",)")).Times(2));
  EXPECT_THAT(traced(), testing::IsEmpty());
}

TEST_F(TracedStory, StatementsThatFail) {
  bool fails = false;
  engine.between = [&](std::u16string_view path, std::unique_ptr<database::Database> inner) {
    auto watched = std::make_unique<fakes::WatchedDatabase>(std::move(inner));
    if (path.ends_with(u"FAULT.MDB"))
      watched->before = [&](std::u16string_view step) {
        if (fails && step == u"update") throw database::DatabaseError(3026, u"no \"room\"");
        if (fails && step.starts_with(u"SELECT * FROM FaultDisplay"))
          throw database::DatabaseError(3049, u"damaged");
      };
    return std::unique_ptr<database::Database>(std::move(watched));
  };
  startWithHost();
  pressTraced(0);
  tickTraced();
  exchange().answer(0, oneFault());
  traced();
  fails = true;
  tickTraced();
  EXPECT_THAT(traced(), ElementsAre("GOLDEN"));
}

TEST_F(TracedStory, AFileThatIsMissingAndAnEndAtOnce) {
  std::filesystem::remove(engine.folder() / "Common.LNG");
  EXPECT_THROW(start(), startup::ProcessEnded);
  EXPECT_THAT(traced(), ElementsAre("GOLDEN"));
}

TEST_F(TracedStory, AStartByHandWithoutAndWithAnExchangeServer) {
  startStandAlone(u"PBX-1");
  EXPECT_THAT(traced(), ElementsAre("GOLDEN"));
  creator.server = host->exchange;
  startStandAlone(u"PBX-1");
  EXPECT_THAT(traced(), ElementsAre("GOLDEN"));
}

TEST_F(TracedStory, TheLastReleaseEndsIt) {
  startWithHost();
  automation::put(*layer, u"Visible", true);
  traced();
  layer = nullptr;
  EXPECT_THAT(traced(), ElementsAre("GOLDEN"));
  application.reset();
  between.reset();
  EXPECT_THAT(traced(), ElementsAre("GOLDEN"));
}

// An answer that is the exchange server's own, as between processes.
TEST_F(TracedStory, EntriesStandTogether) {
  startWithHost();
  pressTraced(0);
  tickTraced();
  traced();
  const auto record = std::make_shared<cListRequest>();
  record->Tag = u"10";
  for (const std::u16string& entry : oneFault()) record->AddToList(u"LEA0", entry);
  exchange().callBack(record);
  EXPECT_THAT(traced(), ElementsAre("GOLDEN"));
}

TEST_F(TracedStory, TextsThatMeanHarmStayInTheirPlaces) {
  startWithHost();
  pressTraced(0);
  tickTraced();
  traced();
  const std::u16string harm =
      std::u16string(u"\"}\n{\"at\":\"") + char16_t{0} + char16_t{0xD800} + u"\\u0022";
  const auto record = std::make_shared<cListRequest>();
  record->AddToList(u"LEA0", harm);
  record->AddToList(u"LEA0", std::u16string(1 << 20, u'x'));
  exchange().callBack(record);
  const Lines lines = traced();
  EXPECT_THAT(lines, testing::Contains(testing::EndsWith(
                         R"("first":0,"entries":[["LEA0","\"}\u000a{\"at\":\"\u0000\ud800\\u0022","",""],)"
                         R"(["LEA0",null,null,null]]})")));
  EXPECT_THAT(lines, testing::Contains(testing::EndsWith(R"("answer":{"cut":")" + std::string(65536, 'x') +
                                                         R"(","length":1048576}})")));
  EXPECT_THAT(lines, testing::Contains(testing::EndsWith(R"("first":1,"entries":[[null,null,"",""]]})")));
}

}  // namespace
}  // namespace vordane::trace
