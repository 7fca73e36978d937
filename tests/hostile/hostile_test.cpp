// Hosts and exchange servers that answer every call with every wrong thing, against the whole add-in in
// memory: in whatever state they leave it, it does not fail, and the next host that behaves finds everything
// as ever.
#include <cstdlib>
#include <iostream>

#include "hostile/attack.h"
#include "startup/story.h"

namespace vordane::hostile {
namespace {

using automation::AutomationError;
using automation::byVal;
using automation::ObjectRef;
using startup::Lines;

std::uint64_t setting(const char* name, std::uint64_t usual) {
  const char* text = std::getenv(name);
  return text == nullptr ? usual : std::strtoull(text, nullptr, 10);
}

// What a host that behaves sees of one whole conversation, and how it leaves the add-in.
struct Seen {
  Lines calls;
  std::vector<std::string> state;
  bool operator==(const Seen&) const = default;
};

class Hostile : public startup::Story, public Scene {
 protected:
  // --- the process
  void startProcess() {
    process.serving = true;
    process.ended = false;
    state = SharedState{};
    view.attached = view.shown = view.hourglass = false;
    view.inputEnabled = true;
    view.timer = 0;
    view.rows = nullptr;
    boxes.answer = 1;
    boxes.meanwhile = nullptr;
    start();
  }
  void endProcess() {
    layer = nullptr;
    if (attack) attack->keepLayers(0);
    EXPECT_TRUE(process.ended) << "the last release does not end the process";
    application.reset();
    attack.reset();
    plots.clear();
  }

  // --- the host that behaves
  ObjectRef registerRightHost() {
    right = std::make_shared<fakes::MemoryHost>(trace);
    right->sysInfo = std::int16_t{4};  // bit 8 of somebody else goes only with bit 4 set
    const ObjectRef good = createLayer();
    EXPECT_FALSE(automation::toBoolean(automation::call(
        *good, u"RegisterPBX",
        {byVal(std::u16string(u"RIGHT")), byVal(ObjectRef(right)), byVal(std::int16_t{7})})));
    return good;
  }
  Seen converse() {
    trace.clear();
    files.content.clear();
    press(0);
    tick();
    right->exchange->answer(0, oneFault());
    tick();
    right->exchange->answerLamps(u"10");
    tick();
    Seen seen{taken(), {}};
    const auto note = [&](auto value) { seen.state.push_back(std::to_string(value)); };
    note(state.busy);
    note(static_cast<int>(state.runMode));
    note(state.stepCode);
    note(state.WideFaultFields);
    note(view.hourglass);
    note(view.inputEnabled);
    note(view.timer);
    note(view.majorLit);
    note(view.minorLit);
    note(view.rows == nullptr ? 0 : view.rows->size());
    for (const auto& [part, text] : view.status) seen.state.push_back(text::toUtf8(text));
    seen.state.push_back(text::toUtf8(view.notice));
    seen.state.push_back(text::toUtf8(view.screen.empty() ? u"" : view.screen.front()));
    return seen;
  }
  // The first time may meet what the hostile ones stored or deleted.
  void expectAsEver(const char* where) {
    const ObjectRef good = registerRightHost();
    converse();
    const Seen now = converse();
    EXPECT_EQ(now.calls, reference.calls) << where;
    EXPECT_EQ(now.state, reference.state) << where;
  }

  // --- the ones that do not
  ObjectRef createLayer() override { return Story::createLayer(); }
  bool over() override { return process.ended; }
  bool tick() override { return Story::tick(); }
  void die() override { plots.back()->dead = true; }
  void press(int action) override { form().input().buttonPressed(action); }
  void pressKey(int code) override { form().input().keyPressed(code); }
  void clickHeading(int column) override { form().input().headingClicked(column); }
  void chooseExchange(std::uint64_t any) override {
    const std::size_t stored = form().form().control(u"drpPBXList").items().size();
    if (stored > 0) form().input().exchangeChosen(static_cast<int>(any % stored));
  }
  void closeWindow() override { form().input().closeAsked(); }
  void answerBoxesWith(int answer) override { boxes.answer = answer; }
  void wrong(const std::string& what) override { ADD_FAILURE() << what; }

  void hostileRound(std::uint64_t seed) {
    plots.push_back(std::make_unique<Conspiracy>(seed, calls));
    auto next = std::make_unique<Attack>(*plots.back(), *this);
    if (attack) next->layers = std::move(attack->layers);
    attack = std::move(next);
    boxes.meanwhile = [this] { attack->whileABoxStands(); };
    attack->begin();
    for (int step = 0; step < 40 && !process.ended; ++step) attack->step();
    boxes.meanwhile = nullptr;
    boxes.answer = 1;
    attack->rest();
    trace.clear();
  }

  // As far as ticks lead, and answers to what still waits for one.
  void settle() {
    for (int i = 0; i < 50 && !process.ended && !idle(); ++i)
      if (!tick()) attack->answer();
  }

  bool idle() {
    return !process.ended && form().alive() && form().loaded() && !state.busy && view.timer == 0 &&
           state.runMode == RunMode::interactive;
  }

  std::uint64_t calls = 0;
  Seen reference;
  std::vector<std::unique_ptr<Conspiracy>> plots;
  std::unique_ptr<Attack> attack;
  std::shared_ptr<fakes::MemoryHost> right;
};

TEST_F(Hostile, WhateverPeersAnswerTheNextOneThatBehavesFindsAllAsEver) {
  const std::uint64_t wanted = setting("VORDANE_HOSTILE_CALLS", 20000);
  const std::uint64_t first = setting("VORDANE_HOSTILE_SEED", 1);
  startProcess();
  {
    const ObjectRef good = registerRightHost();
    converse();
    converse();
    reference = converse();
    ASSERT_THAT(reference.calls, testing::Contains("ShowMessage nothing new"));
    ASSERT_EQ(reference.state[7], "1") << "the major lamp";
  }
  endProcess();

  std::uint64_t rounds = 0, inTheSameProcess = 0, processes = 1;
  while (calls < wanted && !HasFailure()) {
    const std::uint64_t seed = first + rounds++;
    SCOPED_TRACE("seed " + std::to_string(seed));
    if (!application) {
      startProcess();
      ++processes;
    }
    hostileRound(seed);
    settle();
    if (idle()) {
      expectAsEver("in the same process");
      ++inTheSameProcess;
      // Answers that come long after: nobody waits for them.
      attack->answerLate(*form().caller());
      if (seed % 4 != 0 && attack->layers.size() < 20 && idle()) {
        attack->keepLayers(1);  // the process goes on
        continue;
      }
    } else if (!process.ended && form().alive() && state.runMode == RunMode::interactive) {
      ADD_FAILURE() << "it still waits, though everything was answered";
    } else if (!process.ended && seed % 2 == 0 && !attack->layers.empty()) {
      automation::call(*attack->layers.front(), u"CancelSchedule");
    }
    endProcess();
    startProcess();
    ++processes;
    expectAsEver("in the next process");
    endProcess();
  }
  std::cout << calls << " calls in " << rounds << " rounds and " << processes << " processes, "
            << inTheSameProcess << " of them followed in the same process\n";
  EXPECT_GE(calls, wanted);
}

}  // namespace
}  // namespace vordane::hostile
