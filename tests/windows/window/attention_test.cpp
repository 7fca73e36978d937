// The person who looks elsewhere is called to a new alarm.
#include <gmock/gmock.h>

#include <oleacc.h>

#include "click/windows/ear.h"
#include "platform/windows/window/handles.h"
#include "windows/window/second_process.h"
#include "windows/window/view_fixture.h"

namespace vordane::window::win32 {
namespace {

using attention::Lamp;
using attention::Overlay;
using ::testing::ElementsAre;

struct NotedSignals : Signals {
  explicit NotedSignals(std::vector<std::u16string>& to) : noted(to) {}
  void flash(HWND) override { noted.push_back(u"flash"); }
  void sound(Lamp lamp) override { noted.push_back(lamp == Lamp::major ? u"major sound" : u"minor sound"); }
  void overlay(HWND, Overlay overlay, const std::u16string& words) override {
    noted.push_back(overlay == Overlay::none ? u"no overlay" : u"overlay " + words);
  }
  std::vector<std::u16string>& noted;
};

class NewAlarm : public ViewTest {
 protected:
  void SetUp() override {
    view = makeWin32View(texts, settings, std::make_unique<NotedSignals>(noted));
    ViewTest::SetUp();
    lamps(false, false);
    hook_ =
        SetWinEventHook(EVENT_MIN, EVENT_MAX, nullptr, note, GetCurrentProcessId(), 0, WINEVENT_OUTOFCONTEXT);
    told().clear();
  }
  void TearDown() override {
    UnhookWinEvent(hook_);
    ViewTest::TearDown();
  }
  void lamps(bool major, bool minor) {
    noted.clear();
    view->setLamp(true, major);
    view->setLamp(false, minor);
    pump();
  }
  // What screen readers were told of alarms: the event and the control, until a mark of our own has come.
  static std::vector<std::pair<DWORD, int>>& told() {
    static std::vector<std::pair<DWORD, int>> events;
    return events;
  }
  std::vector<std::pair<DWORD, int>> spoken() {
    NotifyWinEvent(EVENT_OBJECT_HELPCHANGE, view->window(), OBJID_CLIENT, CHILDID_SELF);
    EXPECT_TRUE(pumpUntil([] { return !told().empty() && told().back().first == EVENT_OBJECT_HELPCHANGE; }));
    told().pop_back();
    return std::exchange(told(), {});
  }
  static void CALLBACK note(HWINEVENTHOOK, DWORD event, HWND window, LONG, LONG, DWORD, DWORD) {
    if (event == EVENT_OBJECT_HELPCHANGE || event == EVENT_OBJECT_LIVEREGIONCHANGED ||
        event == EVENT_SYSTEM_ALERT)
      told().emplace_back(event, GetDlgCtrlID(window));
  }
  void chooseInSystemMenu(UINT entry) { SendMessageW(view->window(), WM_SYSCOMMAND, entry, 0); }
  UINT soundEntry() {
    const HMENU menu = GetSystemMenu(view->window(), FALSE);
    SendMessageW(view->window(), WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(menu), MAKELPARAM(0, TRUE));
    return GetMenuState(menu, soundCommand, MF_BYCOMMAND) & (MF_CHECKED | MF_GRAYED);
  }

  std::vector<std::u16string> noted;

 private:
  HWINEVENTHOOK hook_ = nullptr;
};

TEST_F(NewAlarm, BehindAnotherProgramsWindowTheButtonFlashesAndAnAlertIsTold) {
  const testing::SecondProcess host(L"--foreground");
  ASSERT_TRUE(host.ready);
  lamps(true, false);
  EXPECT_THAT(noted, ElementsAre(u"flash", u"overlay MAJOR: alarm"));
  EXPECT_THAT(spoken(), ElementsAre(std::pair{DWORD{EVENT_SYSTEM_ALERT}, int{idMajor}}));
  const click::Ear alert = click::Ear::at(item(idMajor), OBJID_ALERT);
  EXPECT_EQ(alert.role(), ROLE_SYSTEM_ALERT);
  EXPECT_EQ(alert.name(), L"MAJOR: alarm");
}

TEST_F(NewAlarm, InFrontItIsToldWhereTheLampStands) {
  ASSERT_EQ(GetForegroundWindow(), view->window());
  lamps(false, true);
  EXPECT_THAT(noted, ElementsAre(u"overlay MINOR: alarm"));
  EXPECT_THAT(spoken(), ElementsAre(std::pair{DWORD{EVENT_OBJECT_LIVEREGIONCHANGED}, int{idMinor}}));
  lamps(false, false);
  EXPECT_THAT(noted, ElementsAre(u"no overlay"));
  EXPECT_THAT(spoken(), ElementsAre());
}

TEST_F(NewAlarm, TheSoundIsOffUntilTheSystemMenuSwitchesItOnAndIsKept) {
  EXPECT_EQ(soundEntry(), UINT{MF_ENABLED});
  lamps(true, false);
  EXPECT_THAT(noted, ElementsAre(u"overlay MAJOR: alarm"));
  chooseInSystemMenu(soundCommand);
  EXPECT_EQ(soundEntry(), UINT{MF_CHECKED});
  lamps(true, true);
  EXPECT_THAT(noted, ElementsAre(u"minor sound"));
  EXPECT_EQ(settings.values.at(u"VORDANE|Window|AlarmSound"), u"1");
  chooseInSystemMenu(soundCommand);
  EXPECT_EQ(soundEntry(), UINT{MF_ENABLED});
  lamps(false, false);
  lamps(true, true);
  EXPECT_THAT(noted, ElementsAre(u"overlay MAJOR: alarm"));
}

TEST_F(NewAlarm, TheSwitchIsDeadLikeEveryControlWhileAnAnswerIsWaitedFor) {
  events.use = ListUse::later;
  EXPECT_EQ(soundEntry(), UINT{MF_GRAYED});
  chooseInSystemMenu(soundCommand);
  EXPECT_FALSE(settings.values.contains(u"VORDANE|Window|AlarmSound"));
  lamps(true, false);
  EXPECT_THAT(noted, ElementsAre(u"overlay MAJOR: alarm")) << "an alarm comes while one waits";
}

TEST_F(NewAlarm, InAScheduledRunNothingIsDone) {
  settings.values[u"VORDANE|Window|AlarmSound"] = u"1";
  events.use = ListUse::never;
  lamps(true, true);
  EXPECT_THAT(noted, ElementsAre());
  EXPECT_THAT(spoken(), ElementsAre());
}

TEST_F(NewAlarm, WhereNobodyCanSeeItNothingIsDone) {
  settings.values[u"VORDANE|Window|AlarmSound"] = u"1";
  view->setVisible(false);
  pump();
  lamps(true, true);
  EXPECT_THAT(noted, ElementsAre());
  EXPECT_THAT(spoken(), ElementsAre());
  noted.clear();
  view->setVisible(true);
  pump();
  EXPECT_THAT(noted, ElementsAre(u"overlay MAJOR: alarm")) << "shown, it says what is lit and calls nobody";

  TearDown();
  view = makeWin32View(texts, settings, nullptr);
  ViewTest::SetUp();
  lamps(false, false);
  lamps(true, true);
  EXPECT_THAT(noted, ElementsAre());
}

TEST_F(NewAlarm, AnotherExchangesAlarmIsNoNews) {
  settings.values[u"VORDANE|Window|AlarmSound"] = u"1";
  exchanges().setListIndex(1);
  lamps(true, false);
  EXPECT_THAT(noted, ElementsAre(u"overlay MAJOR: alarm"));
  EXPECT_THAT(spoken(), ElementsAre());
}

TEST_F(NewAlarm, ANewTaskBarButtonGetsTheOverlayAgain) {
  lamps(true, false);
  noted.clear();
  SendMessageW(view->window(), RegisterWindowMessageW(L"TaskbarButtonCreated"), 0, 0);
  pump();
  EXPECT_THAT(noted, ElementsAre(u"overlay MAJOR: alarm"));
}

// Without a task bar nothing of it fails.
TEST_F(NewAlarm, TheSystemsOwnSignalsDoNoHarm) {
  const auto signals = systemSignals();
  signals->overlay(view->window(), Overlay::major, u"alarm");
  signals->overlay(view->window(), Overlay::minor, u"alarm");
  signals->overlay(view->window(), Overlay::none, u"");
  signals->flash(view->window());
  signals->sound(Lamp::minor);
}

}  // namespace
}  // namespace vordane::window::win32
