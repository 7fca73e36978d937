// Hosts and exchange servers that answer every call with every wrong thing, against the whole add-in in
// memory: in whatever state they leave it, it does not fail, and the next host that behaves finds everything
// as ever.
#include <cstdlib>
#include <iostream>

#include "hostile/peers.h"
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

class Hostile : public startup::Story {
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
    keepLayers(0);
    EXPECT_TRUE(process.ended) << "the last release does not end the process";
    application.reset();
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
  // Whatever a layer's member or the window does for somebody outside may fail as a call, and in no other
  // way.
  void attempt(const std::function<void()>& step) {
    try {
      step();
    } catch (const AutomationError&) {
    }
  }
  // A release may lead to others that are made or let go of meanwhile.
  void keepLayers(std::size_t count) {
    if (layers.size() <= count) return;
    std::vector<ObjectRef> gone(std::make_move_iterator(layers.begin() + static_cast<std::ptrdiff_t>(count)),
                                std::make_move_iterator(layers.end()));
    layers.resize(count);
  }
  ObjectRef someLayer() {
    Whims& whims = plots.back()->whims;
    if (layers.empty() || whims.once(30)) layers.push_back(createLayer());
    return layers[whims.below(layers.size())];
  }
  void callLayer() {
    Whims& whims = plots.back()->whims;
    const ObjectRef held = someLayer();
    switch (whims.below(8)) {
      case 0:
      case 1:
        return attempt([&] {
          automation::call(
              *held, u"RegisterPBX",
              {byVal(whims.once(3) ? whims.text() : u"EVIL"),
               byVal(whims.once(6) ? plots.back()->anyObject() : evilHost), byVal(std::int16_t{3})});
        });
      case 2:
        return attempt([&] { automation::put(*held, u"Visible", whims.value()); });
      case 3:
        return attempt([&] { automation::get(*held, u"Visible"); });
      case 4:
        return attempt([&] { automation::call(*held, u"SetBackGround", {byVal(whims.value())}); });
      case 5:
        if (!whims.once(8)) return;
        return attempt([&] {
          automation::call(*held, u"CreateSchedule", {byVal(whims.number()), byVal(std::int16_t{1})});
        });
      case 6: {
        if (!whims.once(8)) return;
        const auto answer = automation::toInteger(automation::call(
            *held, u"RunSchedule",
            {byVal(whims.once(3) ? whims.text()
                                 : text::decimal(static_cast<std::int64_t>(1 + whims.below(9))))}));
        EXPECT_TRUE(answer == 0 || answer == 10001 || answer == 10000) << answer;
        return;
      }
      case 7:
        if (!whims.once(12)) return;
        EXPECT_EQ(automation::toInteger(automation::call(*held, u"CancelSchedule")), 0);
    }
  }
  void callWindow() {
    Conspiracy& plot = *plots.back();
    Whims& whims = plot.whims;
    if (!plot.caller) return;
    const ObjectRef window = plot.caller;
    const auto call = [&](std::u16string_view member, automation::Value value) {
      attempt([&] { automation::call(*window, member, {byVal(std::move(value))}); });
    };
    switch (whims.below(9)) {
      case 0:
        return attempt([&] { automation::put(*window, u"PBXName", whims.knownText()); });
      case 1:
        return attempt(
            [&] { automation::put(*window, u"Parent", whims.once(2) ? evilHost : plot.anyObject()); });
      case 2:
        return attempt([&] { automation::put(*window, u"Key", whims.value()); });
      case 3:
        return attempt([&] { automation::call(*window, u"FrmPositionSave"); });
      case 4:
        return call(u"ShowWhatsThis", whims.oneOf<std::u16string>({u"lblMJ", u"grdDisplayFault", u"", u"x"}));
      case 5:
        return call(u"CallBack", whims.value());
      case 6:
        return call(u"FrmMove", whims.once(2) ? automation::Value(plot.anyObject()) : whims.value());
      default:
        return callBack();
    }
  }
  // The server never hears of an error of ours.
  static void answer(automation::Object& window, const ObjectRef& record) {
    EXPECT_NO_THROW(automation::call(window, u"CallBack", {byVal(record)}));
  }
  void callBack() {
    Conspiracy& plot = *plots.back();
    if (!plot.caller) return;
    const ObjectRef window = plot.caller;
    const ObjectRef record = plot.whims.once(5) ? plot.anyObject() : plot.makeRecord();
    if (plot.whims.once(10)) plot.late.push_back(record);
    const bool twice = plot.whims.once(5);
    answer(*window, record);
    if (twice) answer(*window, record);
  }
  void chooseExchange() {
    const std::size_t stored = form().form().control(u"drpPBXList").items().size();
    if (stored > 0) form().input().exchangeChosen(static_cast<int>(plots.back()->whims.below(stored)));
  }
  void person() {
    Whims& whims = plots.back()->whims;
    switch (whims.below(8)) {
      case 0:
        return form().input().keyPressed(112);
      case 1:
        return form().input().headingClicked(static_cast<int>(whims.below(6)));
      case 2:
        return chooseExchange();
      case 3:
        if (whims.once(4)) form().input().closeAsked();
        return;
      case 4:
        boxes.answer = whims.oneOf({1, 2, 4, 6, 7, 0});
        return;
      default:
        form().input().buttonPressed(whims.once(2) ? 0 : static_cast<int>(whims.below(6)));
    }
  }
  // One thing that comes from outside; `inside` a call it may also be the end.
  void outside(bool inside) {
    Conspiracy& plot = *plots.back();
    Whims& whims = plot.whims;
    switch (whims.below(10)) {
      case 0:
      case 1:
      case 2:
        return callLayer();
      case 3:
      case 4:
        return callWindow();
      case 5:
        return callBack();
      case 6:
        if (!inside || !whims.once(20)) return person();
        plot.dead = whims.once(2);
        keepLayers(0);  // the last release, or the death of whoever held them
        return;
      default:
        if (!inside || whims.once(4)) person();
        tick();
    }
  }

  void hostileRound(std::uint64_t seed) {
    plots.push_back(std::make_unique<Conspiracy>(seed, calls));
    Conspiracy& plot = *plots.back();
    plot.meddle = [this] {
      if (!process.ended) outside(true);
    };
    boxes.meanwhile = [this] {
      if (plots.back()->whims.once(8) && !process.ended) outside(true);
    };
    evilHost = plot.makePeer();
    layers.push_back(createLayer());
    attempt([&] {
      automation::call(*layers.front(), u"RegisterPBX",
                       {byVal(std::u16string(u"EVIL")), byVal(evilHost), byVal(std::int16_t{3})});
    });
    for (int step = 0; step < 40 && !process.ended; ++step) outside(false);
    boxes.meanwhile = nullptr;
    boxes.answer = 1;
    plot.meddle = nullptr;
    trace.clear();
  }

  // As far as ticks lead, and answers to what still waits for one.
  void settle() {
    Conspiracy& plot = *plots.back();
    for (int i = 0; i < 50 && !process.ended && !idle(); ++i)
      if (!tick() && plot.caller) answer(*plot.caller, plot.makeRecord());
  }

  bool idle() {
    return !process.ended && form().alive() && form().loaded() && !state.busy && view.timer == 0 &&
           state.runMode == RunMode::interactive;
  }

  std::uint64_t calls = 0;
  Seen reference;
  ObjectRef evilHost;
  std::vector<ObjectRef> layers;
  std::vector<std::unique_ptr<Conspiracy>> plots;
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
      for (const ObjectRef& record : std::exchange(plots.back()->late, {})) answer(*form().caller(), record);
      if (seed % 4 != 0 && layers.size() < 20 && idle()) {
        keepLayers(1);  // the process goes on
        continue;
      }
    } else if (!process.ended && form().alive() && state.runMode == RunMode::interactive) {
      ADD_FAILURE() << "it still waits, though everything was answered";
    } else if (!process.ended && seed % 2 == 0 && !layers.empty()) {
      automation::call(*layers.front(), u"CancelSchedule");
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
