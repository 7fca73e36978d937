// The real window over fakes: what the form says is shown, what a person does reaches the form.
#include <objbase.h>

#include "platform/windows/window/detail_pane.h"
#include "platform/windows/window/geometry.h"
#include "windows/window/outside_ear.h"
#include "windows/window/second_process.h"
#include "windows/window/view_fixture.h"

namespace vordane::window::win32 {
namespace {

TEST_F(ViewTest, eachButtonIsItsAction) {
  for (const int id : {idRequest, idReset, idPrint, idClear, idClose}) press(id);
  EXPECT_EQ(events.buttons, (std::vector<int>{0, 1, 2, 3, 4}));
}

TEST_F(ViewTest, lookUpButtonIsNoAction) {
  press(idLookUp);
  EXPECT_TRUE(events.buttons.empty());
  EXPECT_TRUE(IsWindowVisible(item(idLookUpText)));
}

TEST_F(ViewTest, aDisabledButtonTakesNoClickAndNoCommand) {
  form.control(u"cmdPrint").set(u"Enabled", false);
  EXPECT_FALSE(IsWindowEnabled(item(idPrint)));
  PostMessageW(view->window(), WM_COMMAND, MAKEWPARAM(idPrint, BN_CLICKED),
               reinterpret_cast<LPARAM>(item(idPrint)));
  pump();
  EXPECT_TRUE(events.buttons.empty());
}

TEST_F(ViewTest, whileInputIsDisabledOnlyTheFrameWorks) {
  form.control(u"cmdPrint").set(u"Enabled", false);
  view->setInputEnabled(false);
  for (const int id : {idRequest, idClose, idPrint})
    PostMessageW(view->window(), WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), reinterpret_cast<LPARAM>(item(id)));
  pump();
  choose(1, CBN_SELCHANGE);
  clickHeading(2);
  key(item(idGrid), VK_F1);
  key(view->window(), VK_F3);
  EXPECT_TRUE(events.buttons.empty());
  EXPECT_TRUE(events.exchanges.empty());
  EXPECT_TRUE(events.headings.empty());
  EXPECT_TRUE(events.keys.empty());
  EXPECT_TRUE(IsWindowEnabled(view->window()));
  SendMessageW(view->window(), WM_CLOSE, 0, 0);
  EXPECT_EQ(events.closes, 1);
  SetWindowPos(view->window(), nullptr, 10, 10, 900, 600, SWP_NOZORDER);
  RECT now;
  GetWindowRect(view->window(), &now);
  EXPECT_EQ(width(now), 900);

  view->setInputEnabled(true);
  EXPECT_TRUE(IsWindowEnabled(item(idRequest)));
  EXPECT_FALSE(IsWindowEnabled(item(idPrint)));  // as the form has it
}

TEST_F(ViewTest, aHeadingClickNamesTheColumnItself) {
  clickHeading(2);
  EXPECT_EQ(events.headings, (std::vector<int>{2}));
}

TEST_F(ViewTest, aMovedColumnKeepsItsIndex) {
  int order[] = {4, 5, 0, 1, 2, 3};
  ListView_SetColumnOrderArray(item(idGrid), 6, order);
  clickHeading(4);
  clickHeading(0);
  clickHeading(5);
  EXPECT_EQ(events.headings, (std::vector<int>{4, 0, 5}));
}

// The headings' texts come after the first rows at the start.
TEST_F(ViewTest, theSortMarkStandsOnOneHeading) {
  view->setSortMark(3, false);
  view->setSortMark(2, true);
  form.control(u"grdDisplayFault").set(u"Columns(2).Caption", std::u16string(u"Date and time"));
  for (int column = 0; column < 6; ++column) {
    HDITEMW info{};
    info.mask = HDI_FORMAT;
    Header_GetItem(heading(), column, &info);
    EXPECT_EQ((info.fmt & HDF_SORTDOWN) != 0, column == 2);
    EXPECT_EQ((info.fmt & HDF_SORTUP) != 0, false);
  }
}

TEST_F(ViewTest, closingAsksAndDoesNotClose) {
  SendMessageW(view->window(), WM_CLOSE, 0, 0);
  EXPECT_EQ(events.closes, 1);
  EXPECT_TRUE(IsWindow(view->window()));
}

TEST_F(ViewTest, f1ReachesTheFormFromEveryChild) {
  for (const int id : {idGrid, idExchange, idPane, idRequest}) key(item(id), VK_F1);
  EXPECT_EQ(events.keys, (std::vector<int>{112, 112, 112, 112}));
}

TEST_F(ViewTest, aRightPressOnTheExplainedControls) {
  for (const int id : {idExchangeLabel, idMajor, idMinor, idReceivedLabel, idReceived, idRequest, idExchange})
    SendMessageW(item(id), WM_RBUTTONDOWN, MK_RBUTTON, MAKELPARAM(3, 3));
  EXPECT_EQ(events.pressed, (std::vector<std::u16string>{u"lblListups 2", u"lblMJ 2", u"lblMN 2",
                                                         u"lblTimetag 2", u"txtTimeTag 2"}));
}

TEST_F(ViewTest, choosingAnExchange) {
  choose(2, CBN_SELCHANGE);
  EXPECT_EQ(events.exchanges, (std::vector<int>{2}));
  EXPECT_EQ(exchanges().listIndex(), 2);
}

TEST_F(ViewTest, aChoiceThatIsNotTakenIsUndone) {
  events.takesExchanges = false;
  choose(2, CBN_SELCHANGE);
  EXPECT_EQ(events.exchanges, (std::vector<int>{2}));
  EXPECT_EQ(exchanges().listIndex(), 0);
  EXPECT_EQ(SendMessageW(item(idExchange), CB_GETCURSEL, 0, 0), 0);
}

TEST_F(ViewTest, theListFollowsTheForm) {
  exchanges().clearItems();
  EXPECT_EQ(SendMessageW(item(idExchange), CB_GETCOUNT, 0, 0), 0);
  exchanges().addItem(u"Ж");
  exchanges().addItem(u"B");
  exchanges().setListIndex(1);
  EXPECT_EQ(SendMessageW(item(idExchange), CB_GETCOUNT, 0, 0), 2);
  EXPECT_EQ(SendMessageW(item(idExchange), CB_GETCURSEL, 0, 0), 1);
  wchar_t text[8];
  SendMessageW(item(idExchange), CB_GETLBTEXT, 0, reinterpret_cast<LPARAM>(text));
  EXPECT_STREQ(text, L"Ж");
  EXPECT_TRUE(events.exchanges.empty());  // only a person chooses
}

TEST_F(ViewTest, captionsFollowTheForm) {
  form.self().set(u"Caption", std::u16string(u"Список (PBX-2)"));
  form.control(u"cmdRequest").set(u"Caption", std::u16string(u"要求(&R)"));
  form.control(u"txtTimeTag").set(u"Text", std::u16string(u"12:00"));
  form.control(u"grdDisplayFault").set(u"Columns(4).Caption", std::u16string(u"Störung"));
  EXPECT_EQ(windowText(view->window()), u"Список (PBX-2)");
  EXPECT_EQ(windowText(item(idRequest)), u"要求(&R)");
  EXPECT_EQ(windowText(item(idReceived)), u"12:00");
  wchar_t text[32] = L"";
  HDITEMW info{};
  info.mask = HDI_TEXT;
  info.pszText = text;
  info.cchTextMax = 32;
  Header_GetItem(heading(), 4, &info);
  EXPECT_STREQ(text, L"Störung");
}

TEST_F(ViewTest, fontsFollowTheForm) {
  form.control(u"cmdRequest").set(u"FontSize", 18.0);
  pump();
  LOGFONTW font{};
  const auto handle = reinterpret_cast<HFONT>(SendMessageW(item(idRequest), WM_GETFONT, 0, 0));
  GetObjectW(handle, sizeof font, &font);
  EXPECT_EQ(-font.lfHeight, MulDiv(18, static_cast<int>(GetDpiForWindow(view->window())), 72));
}

TEST_F(ViewTest, lampsSayTheirStateInWords) {
  view->setLamp(true, true);
  view->setLamp(false, false);
  EXPECT_EQ(windowText(item(idMajor)), u"MAJOR: alarm");
  EXPECT_EQ(windowText(item(idMinor)), u"MINOR: clear");
  EXPECT_EQ(form.control(u"lblMJ").text(u"Caption"), u"MJ");
}

TEST_F(ViewTest, statusPartsHoldTheirTexts) {
  view->setStatus(0, u"account");
  view->setStatus(2, u"wide");
  wchar_t text[32] = L"";
  EXPECT_EQ(windowText(item(idAccount)), u"account");
  SendMessageW(item(idStatus), SB_GETTEXTW, 2, reinterpret_cast<LPARAM>(text));
  EXPECT_STREQ(text, L"wide");
}

TEST_F(ViewTest, theNoticeStandsWhereRowsAreMissing) {
  view->setRows(nullptr);
  view->setNotice(u"Press Request");
  pump();
  EXPECT_TRUE(IsWindowVisible(item(idNotice)));
  EXPECT_EQ(windowText(item(idNotice)), u"Press Request");
  RECT notice, grid;
  GetWindowRect(item(idNotice), &notice);
  GetWindowRect(item(idGrid), &grid);
  EXPECT_GE(notice.top, grid.bottom);
  EXPECT_GT(height(notice), 100);
  view->setRows(&rows);
  GetWindowRect(item(idNotice), &notice);
  GetWindowRect(item(idGrid), &grid);
  EXPECT_LE(notice.bottom, grid.top);
  view->setNotice(u"");
  EXPECT_FALSE(IsWindowVisible(item(idNotice)));
}

TEST_F(ViewTest, oneStartIsOneTick) {
  view->startTimer(20);
  pump(300);
  EXPECT_EQ(events.ticks, 1);
}

TEST_F(ViewTest, startingAnewIsStillOneTick) {
  view->startTimer(10);
  view->startTimer(30);
  pump(300);
  EXPECT_EQ(events.ticks, 1);
}

TEST_F(ViewTest, aStoppedTimerDoesNotTickThoughItsMessageWaits) {
  view->startTimer(10);
  Sleep(60);
  view->stopTimer();
  pump(100);
  EXPECT_EQ(events.ticks, 0);
}

TEST_F(ViewTest, aStaleMessageIsNoTick) {
  view->startTimer(60'000);
  for (WPARAM stale = 0x1000; stale < 0x1002; ++stale) PostMessageW(view->window(), WM_TIMER, stale - 1, 0);
  pump(50);
  EXPECT_EQ(events.ticks, 0);
}

TEST_F(ViewTest, aDueTickIsServedWithoutItsMessageAndOnlyOnce) {
  constexpr int wait = 1500;
  view->startTimer(wait);
  const ULONGLONG due = GetTickCount64() + wait;
  view->serveDueTick();
  EXPECT_EQ(events.ticks, 0);
  while (GetTickCount64() < due) Sleep(20);  // on a busy machine the system's clock may stand behind
  view->serveDueTick();
  EXPECT_EQ(events.ticks, 1);
  pump(100);
  view->serveDueTick();
  EXPECT_EQ(events.ticks, 1);
}

TEST_F(ViewTest, paintingInsideALongStepTakesNoInput) {
  PostMessageW(view->window(), WM_COMMAND, MAKEWPARAM(idRequest, BN_CLICKED),
               reinterpret_cast<LPARAM>(item(idRequest)));
  view->startTimer(1);
  Sleep(20);
  view->setNotice(u"step 1 of 2");
  view->paintNow();
  EXPECT_FALSE(GetUpdateRect(item(idNotice), nullptr, FALSE));
  EXPECT_TRUE(events.buttons.empty());
  EXPECT_EQ(events.ticks, 0);
  pump(50);
  EXPECT_EQ(events.buttons.size(), 1U);
  EXPECT_EQ(events.ticks, 1);
}

TEST_F(ViewTest, aMillionRowsFetchOnlyTheOnesInSight) {
  FakeRows million(Language::english, 1'000'000);
  view->setRows(&million);
  pump();
  view->paintNow();
  EXPECT_EQ(ListView_GetItemCount(item(idGrid)), 1'000'000);
  EXPECT_LT(million.fetched, 60U);
  million.fetched = 0;
  SendMessageW(item(idGrid), WM_KEYDOWN, VK_END, 1);
  pump();
  view->paintNow();
  EXPECT_EQ(ListView_GetNextItem(item(idGrid), -1, LVNI_SELECTED), 999'999);
  EXPECT_LT(million.fetched, 60U);
  view->setRows(nullptr);
}

// Attached twice before the first one's message loop has run; a host shows its window later.
TEST_F(ViewTest, aWindowThatNobodyHasShownIsLaidOut) {
  view->attach(form, events);
  view->attach(form, events);
  pump();
  EXPECT_FALSE(IsWindowVisible(view->window()));
  RECT grid;
  GetClientRect(item(idGrid), &grid);
  EXPECT_GT(grid.right, 500);
}

TEST_F(ViewTest, statusTextsGivenBeforeTheWindowIsLaidOutAreShown) {
  view->attach(form, events);
  const std::u16string_view given[] = {u"no list", u"Faults: 0", u"wide"};
  for (int part = 0; part < 3; ++part) view->setStatus(part, given[part]);
  view->setVisible(true);
  pump();
  const HWND status = item(idStatus);
  EXPECT_EQ(windowText(item(idAccount)), given[0]);
  for (WPARAM part = 1; part < 3; ++part) {
    wchar_t text[80] = L"";
    SendMessageW(status, SB_GETTEXTW, part, reinterpret_cast<LPARAM>(text));
    EXPECT_EQ(fromWide(text, wcslen(text)), given[part]);
    RECT place{};
    SendMessageW(status, SB_GETRECT, part, reinterpret_cast<LPARAM>(&place));
    EXPECT_GT(place.right - place.left, 20) << part;
  }
}

TEST_F(ViewTest, screenReadersGetTheCellsTexts) {
  wchar_t text[80] = L"";
  LVITEMW asked{};
  asked.iSubItem = 4;
  asked.pszText = text;
  asked.cchTextMax = 80;
  SendMessageW(item(idGrid), LVM_GETITEMTEXTW, 1, reinterpret_cast<LPARAM>(&asked));
  EXPECT_STREQ(text, L"Line circuit fault. No answer from line card [equipment C2D]");
}

TEST_F(ViewTest, thePaneShowsTheSelectedFaultWhole) {
  ListView_SetItemState(item(idGrid), 1, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
  pump();
  const std::u16string shown = windowText(item(idPane));
  EXPECT_NE(shown.find(u"Line circuit fault"), std::u16string::npos);
  EXPECT_NE(shown.find(u"Data [03 4C 2D 00 00 00 00 00]"), std::u16string::npos);
}

TEST_F(ViewTest, ctrlCCopiesTheSelectedFault) {
  BYTE keys[256] = {};
  keys[VK_CONTROL] = 0x80;
  SetFocus(item(idGrid));
  SetKeyboardState(keys);
  SendMessageW(item(idGrid), WM_KEYDOWN, 'C', 1);
  keys[VK_CONTROL] = 0;
  SetKeyboardState(keys);
  ASSERT_TRUE(OpenClipboard(view->window()));
  const auto* text = static_cast<const wchar_t*>(GlobalLock(GetClipboardData(CF_UNICODETEXT)));
  ASSERT_NE(text, nullptr);
  EXPECT_NE(std::wstring(text).find(L"Cause: program fault"), std::wstring::npos);
  CloseClipboard();
}

TEST_F(ViewTest, lookingUpGoesOnFromTheSelectedRow) {
  press(idLookUp);
  SetWindowTextW(item(idLookUpText), L"reset");
  events.hit = 5;
  press(idLookUpNext);
  EXPECT_EQ(events.lookUps.back(), (std::pair<std::u16string, std::ptrdiff_t>{u"reset", 0}));
  EXPECT_EQ(ListView_GetNextItem(item(idGrid), -1, LVNI_SELECTED), 5);
  events.hit = 12;
  key(item(idGrid), VK_F3);
  EXPECT_EQ(events.lookUps.back().second, 5);
  EXPECT_TRUE(pumpUntil([&] { return windowText(item(idLookUpMessage)) == u"2 of 14"; }));
  events.hit = 3;
  key(item(idGrid), VK_F3);
  EXPECT_EQ(windowText(item(idLookUpMessage)), u"14 found. Went on from the top.");
  EXPECT_EQ(events.lookUpWays, std::vector<LookUpWay>(3, LookUpWay::forwards));
  events.hit.reset();
  press(idLookUpNext);
  EXPECT_EQ(windowText(item(idLookUpMessage)), u"14 found. No fault shown here holds this text.");
  EXPECT_EQ(ListView_GetNextItem(item(idGrid), -1, LVNI_SELECTED), 3);
}

TEST_F(ViewTest, shiftF3AndShiftEnterLookBackwards) {
  press(idLookUp);
  SetWindowTextW(item(idLookUpText), L"reset");
  select(10);
  events.hit = 4;
  keyWith(VK_SHIFT, item(idGrid), VK_F3);
  EXPECT_EQ(events.lookUpWays.back(), LookUpWay::backwards);
  EXPECT_EQ(events.lookUps.back(), (std::pair<std::u16string, std::ptrdiff_t>{u"reset", 10}));
  EXPECT_TRUE(pumpUntil([&] { return windowText(item(idLookUpMessage)) == u"14 found"; }));
  events.hit = 60;
  SetFocus(item(idLookUpText));
  keyWith(VK_SHIFT, item(idLookUpText), VK_RETURN);
  EXPECT_EQ(events.lookUpWays.back(), LookUpWay::backwards);
  EXPECT_EQ(events.lookUps.back().second, 4);
  EXPECT_EQ(windowText(item(idLookUpMessage)), u"14 found. Went on from the bottom.");
  key(item(idGrid), VK_F3);
  EXPECT_EQ(events.lookUpWays.back(), LookUpWay::forwards);
}

TEST_F(ViewTest, escClosesTheLookUpBarAndNothingElse) {
  press(idLookUp);
  key(item(idLookUpText), VK_ESCAPE);
  EXPECT_FALSE(IsWindowVisible(item(idLookUpText)));
  key(item(idGrid), VK_ESCAPE);
  EXPECT_EQ(events.closes, 0);
}

TEST_F(ViewTest, lookingUpIsDeadWhileItsButtonIs) {
  form.control(u"cmdLookUp").set(u"Enabled", false);
  key(item(idGrid), VK_F3);
  EXPECT_FALSE(IsWindowVisible(item(idLookUpText)));
  EXPECT_TRUE(events.lookUps.empty());
}

TEST_F(ViewTest, aPlaceOffTheScreenIsPulledBack) {
  view->moveTo(2'000'000, 900'000);
  RECT now;
  GetWindowRect(view->window(), &now);
  RECT common;
  const RECT title{now.left, now.top, now.right, now.top + 20};
  const auto areas = workAreas();
  ASSERT_FALSE(areas.empty());
  EXPECT_TRUE(IntersectRect(&common, &title, &areas.front()));
}

TEST_F(ViewTest, aPlaceOnTheScreenComesBackInTwips) {
  view->moveTo(1500, 1350);  // whole pixels at 96 dots an inch
  pump();
  const auto at = view->position();
  EXPECT_NEAR(at.first, 1500, 15);
  EXPECT_NEAR(at.second, 1350, 15);
  const auto screen = view->screenSize();
  EXPECT_EQ(toPixels(screen.width, static_cast<int>(GetDpiForSystem())), GetSystemMetrics(SM_CXSCREEN));
  EXPECT_LE(view->windowSize().width, screen.width);
}

TEST_F(ViewTest, widthsAndOrderAreRemembered) {
  ListView_SetColumnWidth(item(idGrid), 0, scaled(123, static_cast<int>(GetDpiForWindow(view->window()))));
  int order[] = {5, 0, 1, 2, 3, 4};
  ListView_SetColumnOrderArray(item(idGrid), 6, order);
  view->detach();
  EXPECT_EQ(settings.values[u"VORDANE|Window|ColumnOrder"], u"5,0,1,2,3,4");
  EXPECT_EQ(settings.values[u"VORDANE|Window|ColumnWidths"].substr(0, 4), u"123,");
  view->attach(form, events);
  int again[6] = {};
  ListView_GetColumnOrderArray(item(idGrid), 6, again);
  EXPECT_EQ(again[0], 5);
  EXPECT_EQ(ListView_GetColumnWidth(item(idGrid), 0),
            scaled(123, static_cast<int>(GetDpiForWindow(view->window()))));
}

TEST_F(ViewTest, spoiltSettingsAreLeftOut) {
  view->detach();
  settings.values[u"VORDANE|Window|ColumnOrder"] = u"5,5,5";
  settings.values[u"VORDANE|Window|Place"] = u"99999999,x,1,1";
  view->attach(form, events);
  int order[6] = {};
  ListView_GetColumnOrderArray(item(idGrid), 6, order);
  EXPECT_EQ(order[0], 0);
  EXPECT_GT(view->windowSize().width, 1440);
}

TEST_F(ViewTest, anActionMayTakeTheWindowAway) {
  events.onButton = [this] { view->detach(); };
  press(idClose);
  EXPECT_EQ(view->window(), nullptr);
  pump(20);
  view->setNotice(u"late");
  view->setRows(nullptr);
  view->setInputEnabled(false);
  view->startTimer(1);
  view->stopTimer();
  EXPECT_EQ(events.buttons, (std::vector<int>{4}));
}

TEST_F(ViewTest, helpGoesWithTheNextKey) {
  view->showWhatsThis(form.control(u"lblMJ"), u"The major lamp.");
  const HWND popup = FindWindowW(L"VordaneHelp", nullptr);
  ASSERT_NE(popup, nullptr);
  EXPECT_EQ(windowText(popup), u"The major lamp.");
  key(item(idGrid), VK_ESCAPE);
  EXPECT_EQ(FindWindowW(L"VordaneHelp", nullptr), nullptr);
}

TEST_F(ViewTest, theSystemMenuOpensTheGuideAtWhatHasTheFocus) {
  const HMENU menu = GetSystemMenu(view->window(), FALSE);
  wchar_t caption[64] = {};
  GetMenuStringW(menu, guideCommand, caption, 64, MF_BYCOMMAND);
  EXPECT_STREQ(caption, L"&Guide");
  const auto ask = [&] { SendMessageW(view->window(), WM_SYSCOMMAND, guideCommand, 0); };
  for (const int id : {idRequest, idGrid, idPane, idExchange, idReceived}) {
    SetFocus(item(id));
    ask();
  }
  press(idLookUp);
  ask();
  EXPECT_EQ(events.guides, (std::vector<std::u16string>{u"cmdRequest", u"grdDisplayFault", u"pane",
                                                        u"drpPBXList", u"txtTimeTag", u"lookUpBar"}));
}

TEST_F(ViewTest, theGuideIsThereWhileNoInputIsTaken) {
  SetFocus(item(idGrid));
  view->setInputEnabled(false);
  SendMessageW(view->window(), WM_SYSCOMMAND, guideCommand, 0);
  EXPECT_EQ(events.guides, std::vector<std::u16string>{u"grdDisplayFault"});
}

TEST_F(ViewTest, theGuideIsGreyWhereItIsNotOffered) {
  const HMENU menu = GetSystemMenu(view->window(), FALSE);
  const auto greyWhen = [&](bool offered) {
    events.offersGuide = offered;
    SendMessageW(view->window(), WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(menu), MAKELPARAM(0, TRUE));
    return (GetMenuState(menu, guideCommand, MF_BYCOMMAND) & MF_GRAYED) != 0;
  };
  EXPECT_TRUE(greyWhen(false));
  EXPECT_FALSE(greyWhen(true));
}

TEST_F(ViewTest, theFormKnowsItsSizeForThePictures) {
  RECT client;
  GetClientRect(view->window(), &client);
  EXPECT_EQ(form.self().number(u"Width"),
            toTwips(client.right, static_cast<int>(GetDpiForWindow(view->window()))));
}

}  // namespace
}  // namespace vordane::window::win32

int main(int count, char** words) {
  if (vordane::window::testing::SecondProcess::served(count, words)) return 0;
  if (vordane::window::testing::OutsideEar::served(count, words)) return 0;
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  ::testing::InitGoogleTest(&count, words);
  return RUN_ALL_TESTS();
}
