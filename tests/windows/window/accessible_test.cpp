// What a screen reader is told of the window, from another process and from this one.
#include <gmock/gmock.h>

#include <oleacc.h>

#include <algorithm>

#include "click/windows/ear.h"
#include "fakes/memory_rows.h"
#include "platform/windows/window/geometry.h"
#include "platform/windows/window/handles.h"
#include "windows/window/outside_ear.h"
#include "windows/window/view_fixture.h"

namespace vordane::window::win32 {
namespace {

using click::Ear;
using fakes::MemoryRow;
using fakes::MemoryRows;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using testing::OutsideEar;

class Accessibility : public ViewTest {
 protected:
  // As another process is told.
  std::string tree(int most = 40, const OutsideEar::Wait& wait = OutsideEar::pumping) const {
    return OutsideEar::asks(view->window(), "tree", std::to_string(most), wait);
  }
  std::string treeOf(int id, int most) const {
    return OutsideEar::asks(item(id), "tree", std::to_string(most));
  }
  Ear window() const { return Ear::at(view->window()); }
  Ear grid() const { return Ear::at(item(idGrid)); }
  Ear row(long position) const { return grid().child(position + 1); }
  bool hasFocus(int id) const { return GetFocus() == item(id); }
  // 40 faults of two kinds, newest first.
  void store() {
    for (int number = 40; number >= 1; --number)
      stored.rows.push_back({number % 2 == 0 ? u"0A" : u"0B", u"MN", u"2026/11/20 10:00", u"MP   ",
                             number % 10 == 0 ? u"Door open" : u"Line fault", number});
    view->setRows(&stored);
    pump();
  }
  MemoryRows stored;
};

TEST_F(Accessibility, AnotherProcessIsToldWhatStandsAroundTheList) {
  view->setLamp(true, true);
  view->setStatus(countPart, u"100 faults");
  view->setStatus(accountPart, u"A list came & went");
  view->setStatus(processorPart, u"wide");
  pump();
  const std::string told = tree();
  EXPECT_THAT(told, HasSubstr("client \"Fault List (PBX-1)\"\n"
                              "  words \"Exchange\" [read-only]\n"
                              "  choice \"Exchange\" = \"PBX-1\" key Alt+X does Open\n"
                              "  words \"List received\" [read-only]\n"));
  EXPECT_THAT(told, HasSubstr("  group \"Alarms\"\n"
                              "    words \"MAJOR: alarm\" [read-only, high alarm]\n"
                              "    words \"MINOR: clear\" [read-only]\n"
                              "  button \"Request\" key Alt+R does Press [focused]\n"
                              "  button \"Reset alarms\" key Alt+A does Press\n"));
  EXPECT_THAT(told, HasSubstr("  group \"Look up\" [invisible]\n"));
  EXPECT_THAT(told, HasSubstr("  group \"Filter\" [invisible]\n"));
  EXPECT_THAT(told, HasSubstr("  status \"\"\n"
                              "    words \"A list came & went\" [read-only]\n"
                              "    words \"100 faults\" [read-only]\n"
                              "    words \"wide\" [read-only]\n"));
  view->setLamp(false, true);
  view->setLamp(true, false);
  EXPECT_EQ(treeOf(idMinor, 9), "words \"MINOR: alarm\" [read-only, alarm]\n");
  EXPECT_EQ(treeOf(idMajor, 9), "words \"MAJOR: clear\" [read-only]\n");
}

TEST_F(Accessibility, WhatIsToldOfTheLampsBesidesIsTheirDescriptionAndTheirTip) {
  const auto tip = [&](int id) {
    HWND tips = nullptr;
    while ((tips = FindWindowExW(nullptr, tips, TOOLTIPS_CLASSW, nullptr)) != nullptr)
      if (GetWindow(tips, GW_OWNER) == view->window()) break;
    wchar_t text[500] = {};
    TTTOOLINFOW tool{};
    tool.cbSize = sizeof tool;
    tool.hwnd = view->window();
    tool.uId = reinterpret_cast<UINT_PTR>(item(id));
    tool.lpszText = text;
    SendMessageW(tips, TTM_GETTEXTW, 500, reinterpret_cast<LPARAM>(&tool));
    return fromWide(text, wcslen(text));
  };
  EXPECT_EQ(tip(idMajor), u"");
  view->setLampNote(u"Last reset, confirmed");
  EXPECT_EQ(treeOf(idMajor, 9), "words \"MAJOR: clear\" about \"Last reset, confirmed\" [read-only]\n");
  EXPECT_EQ(treeOf(idMinor, 9), "words \"MINOR: clear\" about \"Last reset, confirmed\" [read-only]\n");
  EXPECT_EQ(tip(idMajor), u"Last reset, confirmed");
  form.control(u"lblMJ").set(u"ToolTipText", std::u16string(u"Of major alarms"));
  EXPECT_EQ(tip(idMajor), u"Of major alarms\r\nLast reset, confirmed");
  EXPECT_EQ(tip(idMinor), u"Last reset, confirmed");
  view->setLampNote(u"");
  EXPECT_EQ(tip(idMajor), u"Of major alarms");
  EXPECT_EQ(tip(idMinor), u"");
  EXPECT_EQ(treeOf(idMajor, 9), "words \"MAJOR: clear\" [read-only]\n");
}

TEST_F(Accessibility, AnotherProcessReadsRowsWithTheirCellsHeadingsAndThePane) {
  view->setSortMark(2, true);
  key(item(idGrid), VK_DOWN);
  SetFocus(item(idGrid));
  const std::string told = treeOf(idGrid, 8);
  EXPECT_THAT(
      told,
      HasSubstr("  row \"Line circuit fault, MJ, 2026/11/20 20:41, LP 2\" about \"No answer from line card "
                "[equipment C2D]\" does Select [selected, focused, read-only]\n"
                "    cell \"Kind\" = \"0A\" [read-only]\n"
                "    cell \"Class\" = \"MJ\" [read-only]\n"
                "    cell \"Date and time\" = \"2026/11/20 20:41\" [read-only]\n"
                "    cell \"Processor\" = \"LP 2\" [read-only]\n"
                "    cell \"Fault\" = \"Line circuit fault. No answer from line card [equipment C2D]\" "
                "[read-only]\n"
                "    cell \"No.\" = \"99\" [read-only]\n"));
  EXPECT_THAT(told, HasSubstr("    heading \"Kind\" key Ctrl+1 does Sort [read-only]\n"));
  EXPECT_THAT(
      told,
      HasSubstr("    heading \"Date and time\" about \"descending\" key Ctrl+3 does Sort [read-only]\n"));
  EXPECT_EQ(
      treeOf(idPane, 9),
      "text \"Selected fault\" = \"Line circuit fault||No answer from line card [equipment C2D]||Data [03 4C "
      "2D 00 00 00 00 00]\" [read-only]\n");
}

TEST_F(Accessibility, ANoteIsToldWithItsRowAndInItsBox) {
  rows.kept.notes[99] = {u"NORTH\\anna", u"2026/11/21 08:15", u"cable"};
  view->setRows(&rows);
  select(1);
  SetFocus(item(idGrid));
  EXPECT_THAT(
      treeOf(idGrid, 8),
      HasSubstr("about \"No answer from line card [equipment C2D]. Note (NORTH\\anna, 2026/11/21 08:15): "
                "cable\" does Select [selected, focused, read-only]\n"));
  EXPECT_THAT(tree(),
              HasSubstr("  words \"Note (NORTH\\anna, 2026/11/21 08:15):\" [read-only]\n"
                        "  text \"Note (NORTH\\anna, 2026/11/21 08:15):\" = \"cable\" [read-only]\n"));
  key(item(idGrid), VK_F2);
  EXPECT_THAT(tree(),
              HasSubstr("  words \"Note to No. 99:\" [read-only]\n"
                        "  text \"Note to No. 99:\" = \"cable\" [focused]\n"
                        "  words \"Enter keeps the note, Esc leaves it as it was. An empty one is taken "
                        "away.\" [read-only]\n"));
}

TEST_F(Accessibility, TheFindBarAndWhatItFoundAreTold) {
  store();
  keyWith(VK_CONTROL, item(idGrid), 'F');
  SetWindowTextW(item(idLookUpText), L"door");
  ASSERT_TRUE(pumpUntil([&] { return windowText(item(idLookUpMessage)) == u"1 of 4"; }));
  EXPECT_THAT(tree(), HasSubstr("  group \"Look up\"\n"
                                "    words \"Find:\" [read-only]\n"
                                "    text \"Find:\" = \"door\" key Alt+F [focused]\n"
                                "    button \"Next\" key Alt+N does Press\n"
                                "    button \"Close\" does Press\n"
                                "    words \"1 of 4\" [read-only]\n"));
}

TEST_F(Accessibility, TheFilterBarItsKindsAndTheHiddenListAreTold) {
  store();
  press(idFilter);
  SetWindowTextW(item(idFilterText), L"nothing like it");
  ASSERT_TRUE(pumpUntil([&] {
    return ListView_GetItemCount(item(idKindList)) == 3 && ListView_GetItemCount(item(idGrid)) == 0;
  }));
  press(idFilterKinds);
  pump();
  std::string told = tree();
  EXPECT_THAT(told, HasSubstr("  group \"Filter\"\n"
                              "    words \"Words:\" [read-only]\n"
                              "    text \"Words:\" = \"nothing like it\" key Alt+W\n"
                              "    tick \"Major\" key Alt+M does Untick [checked]\n"
                              "    tick \"Minor\" key Alt+I does Untick [checked]\n"
                              "    tick \"With a note\" does Tick\n"
                              "    button \"Kinds: all\" key Alt+K does Press\n"
                              "    list \"Kinds of faults\" [focused]\n"
                              "      tick \"all\" does Untick [selected, focused, checked]\n"
                              "      tick \"0A, Door open, 20\" does Untick [checked]\n"));
  EXPECT_THAT(
      told, HasSubstr("    words \"Print, Delete and Reset alarms go by all 40 faults of the exchange, shown "
                      "or not.\" [read-only]\n"));
  EXPECT_THAT(told, HasSubstr("  words \"None of the 40 stored faults passes the filter.\" [read-only]\n"
                              "  button \"Clear filter\" does Press\n"));
  // Unticked from outside.
  const Ear kinds = window().find(ROLE_SYSTEM_LIST, L"Kinds of faults");
  EXPECT_EQ(kinds.child(2).act(), S_OK);
  EXPECT_THAT(tree(), HasSubstr("      tick \"0A, Door open, 20\" does Tick\n"));
  EXPECT_EQ(windowText(item(idFilterKinds)), u"&Kinds: 1 of 2");
}

TEST_F(Accessibility, NewerFaultsAboveAreToldAndGoneToByTheirAction) {
  store();
  SetFocus(item(idGrid));
  select(20);
  for (int n = 41; n <= 47; ++n)
    stored.rows.insert(stored.rows.begin(),
                       MemoryRow{u"0A", u"MN", u"2026/11/20 10:01", u"MP   ", u"New", n});
  view->setRows(&stored);
  pump();
  EXPECT_THAT(tree(20), HasSubstr("  button \"7 newer faults above\" does Press\n"));
  EXPECT_EQ(OutsideEar::asks(view->window(), "press", "7 newer"), "0");
  ASSERT_TRUE(pumpUntil([&] { return ListView_GetNextItem(item(idGrid), -1, LVNI_SELECTED) == 0; }));
}

TEST_F(Accessibility, AFloodIsToldAndShownAloneByItsAction) {
  store();
  ASSERT_TRUE(pumpUntil([&] { return !windowText(item(idFlood)).empty(); }));
  EXPECT_THAT(tree(20), HasSubstr("  button \"40 faults in one minute, 2026/11/20 10:00."));
  EXPECT_EQ(OutsideEar::asks(view->window(), "press", "40 faults"), "0");
  ASSERT_TRUE(pumpUntil([&] { return IsWindowVisible(item(idFilterSince)) != FALSE; }));
  EXPECT_EQ(windowText(item(idFilterSince)), u"2026/11/20 10:00");
}

TEST_F(Accessibility, AMillionRowsCostNothingUntilOneIsAskedFor) {
  FakeRows many(Language::english, 1'000'000);
  view->setRows(&many);
  pump();
  tree(1);  // what is in sight has been drawn, and the first row is known
  const std::size_t before = many.fetched;
  EXPECT_THAT(treeOf(idGrid, 1), HasSubstr("of 1000001\n"));
  EXPECT_EQ(many.fetched, before);
  const Ear last = grid().child(1'000'000);
  EXPECT_EQ(many.fetched, before);
  EXPECT_EQ(last.child(6).value(), L"1");
  EXPECT_EQ(many.fetched, before + 1);
  keyWith(VK_CONTROL, item(idGrid), 'A');
  EXPECT_THAT(grid().selected(3), ElementsAre(1, 2, 3));
  EXPECT_EQ(many.fetched, before + 1);
  EXPECT_FALSE(grid().child(1'000'002)) << "behind the headings there is nothing";
  EXPECT_FALSE(grid().child(-1));
}

TEST_F(Accessibility, APartThatSomebodyHoldsOutlivesTheWindow) {
  const Ear frame = window(), cell = row(3).child(2), lamp = Ear::at(item(idMajor)),
            pane = Ear::at(item(idPane));
  const Ear find = frame.find(ROLE_SYSTEM_GROUPING, L"Look up");
  EXPECT_EQ(cell.failure(), S_OK);
  view->detach();
  for (const Ear& part : {frame, cell, lamp, pane, find}) {
    EXPECT_EQ(part.failure(), CO_E_OBJNOTCONNECTED);
    EXPECT_EQ(part.act(), CO_E_OBJNOTCONNECTED);
    EXPECT_EQ(part.children(), 0);
    EXPECT_FALSE(part.parent());
  }
  view->attach(form, events);
  view->setRows(&rows);
  EXPECT_EQ(cell.failure(), CO_E_OBJNOTCONNECTED) << "another window is not the one that it was of";
  EXPECT_EQ(row(3).failure(), S_OK);
  const Ear held = row(3);
  view = nullptr;
  EXPECT_EQ(held.failure(), CO_E_OBJNOTCONNECTED);
  view = makeWin32View(texts, settings);
  view->attach(form, events);
}

TEST_F(Accessibility, ARowGoesWithItsListAndAnotherOneIsNotTakenForIt) {
  store();
  const Ear held = row(0), cell = row(0).child(6);
  EXPECT_EQ(cell.value(), L"40");
  stored.rows.insert(stored.rows.begin(), MemoryRow{u"0A", u"MN", u"2026/11/20 10:01", u"MP   ", u"New", 41});
  view->setRows(&stored);
  EXPECT_EQ(held.failure(), CO_E_OBJNOTCONNECTED);
  EXPECT_EQ(cell.failure(), CO_E_OBJNOTCONNECTED);
  EXPECT_EQ(held.act(), CO_E_OBJNOTCONNECTED);
  EXPECT_EQ(row(0).child(6).value(), L"41");
}

TEST_F(Accessibility, RowsAreSelectedOneByOneAndTogether) {
  const auto chosen = [&] { return grid().selected(9); };
  EXPECT_EQ(row(4).select(SELFLAG_TAKESELECTION), S_OK);
  EXPECT_THAT(chosen(), ElementsAre(0)) << "one is given itself";
  EXPECT_EQ(row(6).select(SELFLAG_ADDSELECTION), S_OK);
  EXPECT_THAT(chosen(), ElementsAre(5, 7));
  EXPECT_EQ(row(8).select(SELFLAG_EXTENDSELECTION), S_OK);
  EXPECT_THAT(chosen(), ElementsAre(7, 8, 9));
  EXPECT_EQ(row(7).select(SELFLAG_REMOVESELECTION), S_OK);
  EXPECT_THAT(chosen(), ElementsAre(7, 9));
  EXPECT_EQ(row(7).state() & STATE_SYSTEM_SELECTED, 0U);
  EXPECT_NE(row(8).state() & STATE_SYSTEM_SELECTED, 0U);
  SetFocus(item(idRequest));
  EXPECT_EQ(row(2).act(), S_OK);
  EXPECT_TRUE(hasFocus(idGrid));
  EXPECT_EQ(grid().focused().child(6).value(), L"98");
  EXPECT_THAT(OutsideEar::asks(item(idPane), "tree", "1"), HasSubstr("Station out of service"));
  EXPECT_EQ(row(2).select(0x40), DISP_E_MEMBERNOTFOUND);
}

TEST_F(Accessibility, WhereAPartStandsIsTheirsWhoPointThere) {
  const Ear second = row(1);
  RECT place{};
  ListView_GetItemRect(item(idGrid), 1, &place, LVIR_BOUNDS);
  MapWindowPoints(item(idGrid), nullptr, reinterpret_cast<POINT*>(&place), 2);
  const RECT told = second.place();
  EXPECT_TRUE(EqualRect(&told, &place));
  const RECT cell = second.child(3).place();
  EXPECT_EQ(cell.top, place.top);
  EXPECT_EQ(cell.bottom, place.bottom);
  const POINT middle{(cell.left + cell.right) / 2, (cell.top + cell.bottom) / 2};
  EXPECT_EQ(window().hit(middle).hit(middle).name(), second.name());
  EXPECT_EQ(grid().hit(middle).hit(middle).value(), L"2026/11/20 20:41");
  RECT heading{};
  GetWindowRect(this->heading(), &heading);
  const POINT top{heading.left + 10, heading.top + 5};
  EXPECT_EQ(grid().hit(top).hit(top).name(), L"Kind");
  EXPECT_FALSE(grid().hit({-5, -5}));
  const RECT lamp = Ear::at(item(idMinor)).place();
  const POINT light{lamp.left + 3, lamp.top + 3};
  EXPECT_EQ(window().hit(light).hit(light).name(), L"MINOR: clear");
  EXPECT_EQ(Ear::at(item(idMinor)).window(), item(idMinor));
  EXPECT_EQ(second.window(), item(idGrid));
  EXPECT_NE(row(90).state() & STATE_SYSTEM_OFFSCREEN, 0U);
}

TEST_F(Accessibility, NeighboursParentsAndChildrenLeadRound) {
  EXPECT_EQ(row(1).next(NAVDIR_NEXT).child(6).value(), L"98");
  EXPECT_EQ(row(1).next(NAVDIR_UP).child(6).value(), L"100");
  EXPECT_FALSE(row(0).next(NAVDIR_PREVIOUS));
  EXPECT_EQ(row(1).child(2).next(NAVDIR_RIGHT).name(), L"Date and time");
  EXPECT_FALSE(row(1).child(6).next(NAVDIR_RIGHT));
  EXPECT_EQ(row(1).child(2).parent().name(), row(1).name());
  EXPECT_EQ(row(1).parent().children(), 101);
  EXPECT_EQ(grid().next(NAVDIR_LASTCHILD).children(), 6) << "the headings";
  EXPECT_EQ(grid().next(NAVDIR_NEXT).name(), L"Selected fault");
  EXPECT_EQ(grid().parent().name(), L"Fault List (PBX-1)");
  EXPECT_EQ(grid().parent().role(), ROLE_SYSTEM_CLIENT);
  EXPECT_TRUE(window().parent()) << "the frame, which is the system's";
  const Ear lamps = Ear::at(item(idMajor)).parent();
  EXPECT_EQ(lamps.name(), L"Alarms");
  EXPECT_EQ(lamps.next(NAVDIR_NEXT).name(), L"Request");
}

TEST_F(Accessibility, AnActionIsDoneWhenThePersonCouldDoIt) {
  EXPECT_EQ(OutsideEar::asks(view->window(), "press", "Request"), "0");
  ASSERT_TRUE(pumpUntil([&] { return !events.buttons.empty(); }));
  EXPECT_THAT(events.buttons, ElementsAre(static_cast<int>(Action::request)));
  EXPECT_EQ(grid().child(101).child(5).act(), S_OK);
  EXPECT_TRUE(events.headings.empty()) << "who asks has his answer before the list is sorted";
  ASSERT_TRUE(pumpUntil([&] { return !events.headings.empty(); }));
  EXPECT_THAT(events.headings, ElementsAre(4));
  EXPECT_EQ(Ear::at(item(idMajor)).act(), DISP_E_MEMBERNOTFOUND);

  form.control(u"cmdPrint").set(u"Enabled", false);
  EXPECT_EQ(window().find(ROLE_SYSTEM_PUSHBUTTON, L"Print").act(), E_ACCESSDENIED);
  press(idLookUp);
  press(idLookUpClose);
  EXPECT_EQ(window().find(ROLE_SYSTEM_PUSHBUTTON, L"Next").act(), E_ACCESSDENIED) << "nobody sees it";
  view->setInputEnabled(false);
  EXPECT_EQ(window().find(ROLE_SYSTEM_PUSHBUTTON, L"Request").act(), E_ACCESSDENIED);
  EXPECT_EQ(row(5).select(SELFLAG_TAKESELECTION), E_ACCESSDENIED);
  EXPECT_EQ(grid().child(101).child(1).act(), E_ACCESSDENIED);
  pump();
  EXPECT_EQ(events.buttons.size(), 1U);
  EXPECT_EQ(ListView_GetNextItem(item(idGrid), -1, LVNI_SELECTED), 0);
}

TEST_F(Accessibility, AWindowThatWaitsForAnAnswerStillTellsWhatItShows) {
  view->setInputEnabled(false);
  const std::string told = tree(2, OutsideEar::calling);
  EXPECT_THAT(told, HasSubstr("client \"Fault List (PBX-1)\""));
  EXPECT_THAT(OutsideEar::asks(item(idGrid), "row", "2", OutsideEar::calling),
              HasSubstr("cell \"No.\" = \"99\""));
}

// --- what is told by itself

class Announcements : public Accessibility {
 protected:
  void SetUp() override {
    Accessibility::SetUp();
    heard().clear();
    hook_ =
        SetWinEventHook(EVENT_MIN, EVENT_MAX, nullptr, note, GetCurrentProcessId(), 0, WINEVENT_OUTOFCONTEXT);
    ASSERT_NE(hook_, nullptr);
  }
  void TearDown() override {
    UnhookWinEvent(hook_);
    Accessibility::TearDown();
  }
  struct Event {
    DWORD event;
    int id;
    LONG object, child;
    bool operator==(const Event&) const = default;
  };
  static std::vector<Event>& heard() {
    static std::vector<Event> events;
    return events;
  }
  // Of one kind, until a mark of our own has come behind them. What comes behind the mark waits for the next
  // question.
  std::vector<int> told(DWORD event) {
    NotifyWinEvent(EVENT_OBJECT_HELPCHANGE, view->window(), OBJID_CLIENT, CHILDID_SELF);
    const auto mark = [] {
      return std::ranges::find(heard(), DWORD{EVENT_OBJECT_HELPCHANGE}, &Event::event);
    };
    EXPECT_TRUE(pumpUntil([&] { return mark() != heard().end(); }));
    std::vector<int> ids;
    for (auto each = heard().begin(); each != mark(); ++each)
      if (each->event == event) ids.push_back(each->id);
    if (mark() != heard().end()) heard().erase(heard().begin(), mark() + 1);
    return ids;
  }

 private:
  static void CALLBACK note(HWINEVENTHOOK, DWORD event, HWND window, LONG object, LONG child, DWORD, DWORD) {
    heard().push_back({event, GetDlgCtrlID(window), object, child});
  }
  HWINEVENTHOOK hook_ = nullptr;
};

TEST_F(Announcements, WhatAPersonShouldHearOfIsALiveRegion) {
  constexpr DWORD live = EVENT_OBJECT_LIVEREGIONCHANGED;
  store();
  // The faults are a flood, which is worked out meanwhile and told when that is done.
  ASSERT_TRUE(pumpUntil([this] { return IsWindowVisible(item(idFlood)) != FALSE; }));
  EXPECT_THAT(told(live), ::testing::Contains(idFlood));
  view->setStatus(accountPart, u"Received 7");
  EXPECT_THAT(told(live), ElementsAre(idAccount));
  view->setStatus(accountPart, u"Received 7");
  EXPECT_THAT(told(live), ElementsAre()) << "the same once more";
  view->setNoticeKind(NoticeKind::waiting);
  view->setNotice(u"Waiting");
  EXPECT_THAT(told(live), ElementsAre()) << "who waits has asked for it";
  view->setNoticeKind(NoticeKind::failure);
  view->setNotice(u"No answer");
  EXPECT_THAT(told(live), ElementsAre(idNotice));
  view->setVisible(false);
  view->setStatus(accountPart, u"Received 8");
  EXPECT_THAT(told(live), ElementsAre()) << "nobody can see it";
}

TEST_F(Announcements, OtherRowsAndSeveralSelectedOnesAreTold) {
  store();
  EXPECT_THAT(told(EVENT_OBJECT_REORDER), ::testing::Contains(idGrid));
  SetFocus(item(idGrid));
  told(EVENT_OBJECT_REORDER);
  keyWith(VK_CONTROL, item(idGrid), 'A');
  EXPECT_THAT(told(EVENT_OBJECT_SELECTIONWITHIN), ::testing::Contains(idGrid));
}

}  // namespace
}  // namespace vordane::window::win32
