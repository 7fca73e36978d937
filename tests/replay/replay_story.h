// A story whose trace can be taken, and a stage on which what a trace tells is played again: the add-in
// itself, the development host and the simulated exchange, all in this process.
#pragma once

#include <fstream>

#include "devhost/core/interpreter.h"
#include "devhost/core/script.h"
#include "fakes/memory_folder.h"
#include "replay/replay_compare.h"
#include "replay/replay_script.h"
#include "startup/conversation.h"
#include "trace/traced_stories.h"
#include "zulsim/fakes.h"

namespace vordane::replay {

class TracedStory : public startup::Conversation {
 protected:
  TracedStory() {
    startup::makeBetween() = [this](const startup::Workstation& station) {
      auto made = trace::record(std::make_unique<fakes::MemoryFolder>(held), wish);
      recorder = made;
      return std::make_unique<trace::TracedBetween>(station, std::move(made));
    };
  }
  ~TracedStory() override { startup::makeBetween() = nullptr; }

  std::vector<std::string> traced() {
    if (const auto alive = recorder.lock()) alive->flush();
    std::vector<std::string> lines;
    std::istringstream all(held->all());
    for (std::string line; std::getline(all, line);) lines.push_back(line);
    return lines;
  }
  Recording told() {
    Notes notes;
    auto read = readTrace(traced(), notes);
    return read.empty() ? Recording{} : read.front();
  }
  void pressTraced(int action) { view.events->buttonPressed(action); }
  void tickTraced() {
    view.timer = 0;
    view.events->tick();
  }

  trace::Wish wish;
  std::shared_ptr<fakes::MemoryFolderState> held = std::make_shared<fakes::MemoryFolderState>();
  std::weak_ptr<trace::Recorder> recorder;
};

class Stage : public TracedStory, private devhost::Environment {
 public:
  // What of `conversation` comes otherwise when it is played; nothing when it comes as it came.
  std::optional<Difference> play(const Recording& conversation) {
    const Play play = playOf(conversation);
    notes = play.notes;
    wish.identifiers = play.identifiersShown;
    conductor.emplace(conversation, play.cues, play.playedTo);
    std::ofstream(engine.folder() / scenarioFile, std::ios::binary) << play.scenario;
    boxes.meanwhile = [this] { conduct(); };
    start();
    const devhost::ParsedScript script = devhost::parseScript(play.script);
    EXPECT_TRUE(script.problems.empty()) << text::toUtf8(lines::listing(u"script", script.problems));
    devhost::Interpreter interpreter(*this, {{}, engine.folder().u16string(), nullptr});
    EXPECT_EQ(interpreter.run(script.statements), devhost::Outcome::done) << testing::PrintToString(printed);
    if (conductor->difference()) return conductor->difference();
    return conductor->over() ? std::nullopt : std::optional(conductor->missing());
  }
  using startup::Conversation::host;
  Notes notes;
  std::vector<std::string> printed;

 private:
  void TestBody() override {}
  void after(int milliseconds, std::function<void()> step) override {
    timers.after(milliseconds, std::move(step));
  }
  void pause(int milliseconds) override { timers.pause(milliseconds); }
  void log(std::u16string_view) override {}
  bool taken(std::u16string_view word) override { return timers.taken(word); }
  void give(std::u16string_view word) override { timers.give(word); }
  void vanish() override {}
  automation::ObjectRef create(std::u16string_view) override { return createLayer(); }
  void print(std::string_view line) override { printed.emplace_back(line); }
  std::u16string now() override { return {}; }

  bool waitUntil(const std::function<bool()>& done, int) override {
    for (int idle = 0, steps = 0; !done();) {
      if (++steps > 20000) {
        ADD_FAILURE() << testing::PrintToString(printed) << testing::PrintToString(traced());
        return false;
      }
      if (conductor->difference()) return false;
      if (conduct() || tickIfDue()) {
        idle = 0;
        continue;
      }
      timers.pass(20);
      if (conductor->over() || conductor->difference() || ++idle > 100) timers.give(u"end");
      if (idle > 200) return false;
    }
    return true;
  }

  bool tickIfDue() {
    if (view.timer == 0) return false;
    tickTraced();
    return true;
  }

  // Whether something was due.
  bool conduct() {
    const std::vector<std::string> lines = traced();
    for (; heard < lines.size(); ++heard) conductor->heard(lines[heard]);
    const auto cue = conductor->due();
    if (!cue) return false;
    if (cue->kind == Cue::Kind::word) timers.give(text::fromUtf8(cue->what));
    if (cue->kind == Cue::Kind::box) boxes.answer = static_cast<int>(cue->which);
    if (cue->kind == Cue::Kind::person) act(*cue);
    return true;
  }

  void act(const Cue& cue) {
    const int which = static_cast<int>(cue.which);
    if (cue.what == "button") view.events->buttonPressed(which);
    if (cue.what == "heading") view.events->headingClicked(which);
    if (cue.what == "exchange") view.events->exchangeChosen(which);
    if (cue.what == "close") view.events->closeAsked();
    if (cue.what == "key") view.events->keyPressed(which);
  }

  std::optional<Conductor> conductor;
  zulsim::HandTimers timers;
  std::size_t heard = 0;
};

}  // namespace vordane::replay
