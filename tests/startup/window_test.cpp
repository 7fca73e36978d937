// The window's own rules: place, timer, presses, help.
#include "faults/kind_lists.h"
#include "startup/story.h"

namespace vordane::startup {
namespace {

using Window = Story;

TEST_F(Window, StandsWhereTheHostSaysOnTheFirstRegistrationOnly) {
  host->data[u"MOVE"] = u"1200,900";
  startWithHost();
  EXPECT_EQ(view.place, std::pair(1200, 900));
  host->data[u"MOVE"] = u"1,2";
  registerPbx(u"PBX-1");
  EXPECT_EQ(view.place, std::pair(1200, 900));
}

TEST_F(Window, StandsInTheMiddleWithoutAReadablePlace) {
  for (const char16_t* saved : {u"", u"1200", u"x,900", u"1200,", u",", u"1e300,0"}) {
    host->data[u"MOVE"] = saved;
    start();
    layer = createLayer();
    view.place = {0, 0};
    registerPbx(u"P");
    EXPECT_EQ(view.place, std::pair(5100, 2400)) << text::toUtf8(saved);
    layer.reset();
    application.reset();
    view.timer = 0;
  }
}

TEST_F(Window, AFractionOfAPlaceIsReadWithAPoint) {
  host->data[u"MOVE"] = u"100.6, 50.2";
  startWithHost();
  EXPECT_EQ(view.place, std::pair(101, 50));
}

TEST_F(Window, AHostThatKeepsNoDataCentresTheWindow) {
  host->remove(u"GetComData");
  startWithHost();
  EXPECT_EQ(view.place, std::pair(5100, 2400));
}

TEST_F(Window, APressWhileAnotherIsUnderWayIsDropped) {
  startWithHost();
  press(0);
  press(4);
  tick();
  EXPECT_TRUE(state.busy) << "the first press counted";
  view.timer = 0;
  press(4);
  EXPECT_EQ(view.timer, 0);
}

TEST_F(Window, AnotherExchangeIsChosenOnlyBetweenRequests) {
  startWithHost(u"PBX-2");
  for (const char16_t* name : {u"PBX-1", u"PBX-2"}) {
    registerPbx(name);
    pressAndTick(0);
    exchange().answer(0, oneFault());
    tick();
    exchange().answerLamps(u"00");
    tick();
  }
  window::Control& list = form().form().control(u"drpPBXList");
  const int shown = list.listIndex();
  std::vector<std::u16string> changes;
  list.listen([&](window::Control&, std::u16string_view property) { changes.emplace_back(property); });
  press(0);
  form().input().exchangeChosen(1 - shown);
  EXPECT_EQ(list.listIndex(), shown);
  tick();
  form().input().exchangeChosen(1 - shown);
  EXPECT_EQ(list.listIndex(), shown);
  EXPECT_EQ(changes, (std::vector<std::u16string>{u"ListIndex", u"ListIndex"})) << "the view puts it back";
  exchange().answer(61);
  form().input().exchangeChosen(1 - shown);
  EXPECT_EQ(list.listIndex(), 1 - shown);
}

TEST_F(Window, ButtonsThatActOnFaultsNeedSome) {
  startWithHost();
  for (int action : {1, 2, 3}) {
    press(action);
    EXPECT_EQ(view.timer, 0);
  }
  press(4);
  EXPECT_EQ(view.timer, 100);
  automation::put(*layer, u"Visible", true);
  tick();
  EXPECT_FALSE(view.shown);
}

TEST_F(Window, AnUnknownActionDoesNothingAndLeavesTheTimerOff) {
  startWithHost();
  press(6);
  EXPECT_FALSE(tick());
  EXPECT_THAT(taken(), IsEmpty());
}

TEST_F(Window, ACodeWithoutAnActionDoesNothingAndLeavesTheTimerOff) {
  startWithHost();
  for (const std::int16_t code : {6, 7, 9, 13, -1, 98, 101}) {
    form().timer().enable(static_cast<Action>(code));
    EXPECT_EQ(view.timer, 100) << code;
    EXPECT_TRUE(tick());
    EXPECT_THAT(taken(), IsEmpty()) << code;
    EXPECT_FALSE(state.busy) << code;
    EXPECT_FALSE(tick()) << code;
    form().input().tick();
    EXPECT_TRUE(view.attached) << code;
  }
}

TEST_F(Window, TheFirstClickOnAHeadingOrdersAsTheLoadSaid) {
  startWithHost();
  fetchOneFault();
  const std::pair<int, bool> first[] = {{0, false}, {1, false}, {2, true}, {3, false}, {4, false}};
  for (const auto& [column, descending] : first) {
    form().input().headingClicked(column);
    EXPECT_EQ(view.sortColumn, column);
    EXPECT_EQ(view.sortDescending, descending) << column;
    form().input().headingClicked(column);
    EXPECT_EQ(view.sortDescending, !descending) << column;
  }
}

// A host may show the window before it registers an exchange: what is clicked then is ordered as ever.
TEST_F(Window, AHeadingClickedBeforeAnExchangeIsShownOrdersAsTheLoadSaid) {
  startWithHost();
  pressAndTick(0);
  exchange().answer(0, oneFault());
  tick();
  layer.reset();
  const std::pair<int, bool> first[] = {{0, false}, {1, false}, {2, true}, {3, false}, {4, false}};
  for (const auto& [column, descending] : first) {
    view.timer = 0;
    start();
    layer = createLayer();
    form().input().headingClicked(column);
    EXPECT_EQ(view.sortColumn, column);
    EXPECT_EQ(view.sortDescending, descending) << column;
    form().input().headingClicked(column);
    EXPECT_EQ(view.sortDescending, !descending) << column;
    layer.reset();
  }
}

TEST_F(Window, ATickInsideACallWaitsUntilItHasReturned) {
  startWithHost();
  host->meanwhile[u"TurnOffFlow"] = [&] {
    if (view.timer != 0) tick();
  };
  exchange().duringSend = [&] {
    exchange().answer(0, oneFault());
    tick();
    EXPECT_EQ(view.timer, 100) << "put off";
  };
  pressAndTick(0);
  exchange().duringSend = nullptr;
  EXPECT_EQ(view.visible(), false);
  tick();
  EXPECT_THAT(text::toUtf8(view.status[0]), testing::HasSubstr("1 received"));
}

TEST_F(Window, EachEnablingYieldsOneTick) {
  startWithHost();
  pressAndTick(0);
  taken();
  form().input().tick();
  EXPECT_THAT(taken(), IsEmpty()) << "a stale tick";
}

TEST_F(Window, TheEmptyGridSaysWhatToDoAgainAfterAWait) {
  startWithHost();
  EXPECT_EQ(view.notice, u"press to ask PBX-1");
  pressAndTick(0);
  exchange().answer(0);
  tick();
  EXPECT_EQ(view.notice, u"alarms of PBX-1");
  exchange().answerLamps(u"00");
  tick();
  EXPECT_EQ(view.notice, u"PBX-1 has no faults");
  EXPECT_EQ(view.noticeKind, window::NoticeKind::hint);
}

TEST_F(Window, TheListsOfTheKindsAreNeverSeen) {
  startWithHost();
  for (const KindList& list : kindLists) EXPECT_FALSE(form().form().control(list.name()).flag(u"Visible"));
}

TEST_F(Window, TheTimeOfTheListCanBeReadButNotWritten) {
  startWithHost();
  EXPECT_TRUE(form().form().control(u"txtTimeTag").flag(u"Locked"));
}

TEST_F(Window, F1AsksTheHostForHelp) {
  startWithHost();
  form().input().keyPressed(112);
  form().input().keyPressed(113);
  EXPECT_THAT(taken(), ElementsAre("DisplayHelp VORDANE.HLP&"));
}

TEST_F(Window, TheRightButtonOffersWhatsThis) {
  startWithHost();
  view.duringMenu = [&] { form().input().whatsThisChosen(); };
  for (const char16_t* name : {u"lblListups", u"lblMJ", u"lblMN", u"lblTimetag", u"txtTimeTag"}) {
    form().input().mousePressed(form().form().control(name), 2);
    const std::string help = std::u16string_view(name) == u"txtTimeTag" ? "When the list was taken" : "M224";
    EXPECT_THAT(taken(),
                ElementsAre("(menu mnuWhatsThis)", "(help " + text::toUtf8(name) + ": " + help + ")"));
    form().input().mousePressed(form().form().control(name), 1);
  }
  form().input().mousePressed(form().form().control(u"cmdPrint"), 2);
  form().input().whatsThisChosen();
  EXPECT_THAT(taken(), IsEmpty()) << "the target is forgotten";
}

TEST_F(Window, DeletingTheLastExchangeDisablesItsButtons) {
  startWithHost();
  fetchOneFault();
  boxes.answer = 6;
  pressAndTick(3);
  EXPECT_EQ(view.rows, nullptr);
  EXPECT_FALSE(state.busy);
  EXPECT_FALSE(form().form().control(u"cmdPrint").flag(u"Enabled"));
}

TEST_F(Window, ABoxTakesAReasonOfAnyLengthInBrief) {
  startWithHost();
  fetchOneFault();
  host->on(u"PrintReport", [](std::span<automation::Argument>) -> automation::Value {
    return std::u16string(300'000, u'x');
  });
  taken();
  pressAndTick(2);
  const Lines lines = taken();
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_THAT(lines[0], testing::EndsWith(std::string(4096, 'x') + "..."));
  EXPECT_LT(lines[0].size(), 4200U);
}

TEST_F(Window, AReportGoesToTheHostWithTheGridsOrder) {
  startWithHost();
  fetchOneFault();
  taken();
  pressAndTick(2);
  const Lines lines = taken();
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_THAT(lines[0],
              testing::StartsWith("PrintReport C:\\QUILMAR32\\30000\\ADDINS\\DATABASE\\FAULT.MDB&"));
  EXPECT_THAT(lines[0], testing::HasSubstr("{PbxList.PBXName} = 'PBX-1'"));
  EXPECT_FALSE(state.busy);
}

TEST_F(Window, ALoaderThatStopsIsNamedInTheStatusLineAndTheLoadGoesOn) {
  badControl = true;
  makeLanguage();
  startWithHost();
  EXPECT_FALSE(form().life().CheckLoadError());
  EXPECT_EQ(view.status[0], u"incomplete: tControls");
}

}  // namespace
}  // namespace vordane::startup
