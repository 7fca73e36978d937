// The window among other programs, screens and settings of the workstation.
#include <windows.h>

#include <commctrl.h>
#include <richedit.h>

#include "platform/windows/window/clipboard.h"
#include "platform/windows/window/fonts.h"
#include "platform/windows/window/geometry.h"
#include "platform/windows/window/theme.h"
#include "windows/window/counted_call.h"
#include "windows/window/listener.h"
#include "windows/window/pictures.h"
#include "windows/window/second_process.h"
#include "windows/window/view_fixture.h"

namespace vordane::window::win32 {
namespace {

RECT placeOf(HWND window) {
  RECT place{};
  GetWindowRect(window, &place);
  return place;
}

class DesktopTest : public ViewTest {
 protected:
  std::pair<LONG, LONG> paneSelection() const {
    CHARRANGE range{};
    SendMessageW(item(idPane), EM_EXGETSEL, 0, reinterpret_cast<LPARAM>(&range));
    return {range.cpMin, range.cpMax};
  }
  void selectInPane(LONG begin, LONG end) {
    const CHARRANGE range{begin, end};
    SendMessageW(item(idPane), EM_EXSETSEL, 0, reinterpret_cast<LPARAM>(&range));
  }
  LRESULT buttonFont() const { return SendMessageW(item(idRequest), WM_GETFONT, 0, 0); }
  int selectedRow() const { return ListView_GetNextItem(item(idGrid), -1, LVNI_SELECTED); }
  POINT rowPoint(int row) const {
    RECT place{};
    ListView_GetItemRect(item(idGrid), row, &place, LVIR_BOUNDS);
    return {place.left + 30, (place.top + place.bottom) / 2};
  }
  std::u16string clipboardText() const {
    if (!OpenClipboard(view->window())) return u"(held)";
    const HANDLE data = GetClipboardData(CF_UNICODETEXT);
    const auto* text = data != nullptr ? static_cast<const wchar_t*>(GlobalLock(data)) : L"";
    const std::u16string found = fromWide(text, wcslen(text));
    CloseClipboard();
    return found;
  }
};

// --- shown

// Wine gives the foreground to any window that is activated, Windows only to one that asks for it.
TEST_F(DesktopTest, shownIsOnTopAndInTheForegroundAlsoWhenItWasShownBefore) {
  const testing::SecondProcess host(L"--foreground");
  ASSERT_TRUE(host.ready);
  ASSERT_NE(GetForegroundWindow(), view->window());
  view->setVisible(true);
  EXPECT_EQ(GetForegroundWindow(), view->window());
  const HWND other = FindWindowW(L"STATIC", L"Host");
  bool below = false;
  for (HWND next = view->window(); next != nullptr; next = GetWindow(next, GW_HWNDNEXT))
    below |= next == other;
  EXPECT_TRUE(below);
}

TEST_F(DesktopTest, eachTimeItIsShownItAsksForTheForegroundAndHiddenItDoesNot) {
  const testing::ForegroundCalls asked;
  view->setVisible(true);
  EXPECT_EQ(asked.calls(), 1);
  view->setVisible(true);
  EXPECT_EQ(asked.calls(), 2);
  view->setVisible(false);
  EXPECT_EQ(asked.calls(), 2);
}

// Without a window manager the system below takes the maximising back when it next speaks: nothing is served
// in between.
TEST_F(DesktopTest, aMaximisedWindowComesBackMaximisedAndKeepsItsOwnPlace) {
  SetWindowPos(view->window(), nullptr, 60, 70, 900, 600, SWP_NOZORDER);
  ShowWindow(view->window(), SW_MAXIMIZE);
  view->detach();
  EXPECT_EQ(settings.values[u"VORDANE|Window|Maximised"], u"1");
  view->attach(form, events);
  EXPECT_FALSE(IsWindowVisible(view->window()));
  view->moveTo(1500, 1350);
  EXPECT_FALSE(IsWindowVisible(view->window()));
  EXPECT_EQ(view->position(), (std::pair<std::int32_t, std::int32_t>{1500, 1350}));
  view->setVisible(true);
  EXPECT_TRUE(IsZoomed(view->window()));
  ShowWindow(view->window(), SW_RESTORE);
  EXPECT_FALSE(IsZoomed(view->window()));
  const RECT now = placeOf(view->window());
  EXPECT_EQ(now.left, 100);
  EXPECT_EQ(now.top, 90);
  EXPECT_EQ(width(now), 900);
  EXPECT_EQ(height(now), 600);
  view->detach();
  EXPECT_EQ(settings.values[u"VORDANE|Window|Maximised"], u"0");
}

TEST_F(DesktopTest, aWindowThatWasLargerThanThisScreenFitsIt) {
  view->detach();
  settings.values[u"VORDANE|Window|Place"] = u"150,150,90000,60000";
  view->attach(form, events);
  const RECT work = workAreas().front(), now = placeOf(view->window());
  EXPECT_LE(width(now), width(work));
  EXPECT_LE(height(now), height(work));
  EXPECT_GE(now.left, work.left);
  EXPECT_LE(now.bottom, work.bottom);
}

// --- settings

TEST_F(DesktopTest, aSettingThatNothingDrawnDependsOnLeavesAllAsItIs) {
  selectInPane(2, 9);
  const LRESULT font = buttonFont();
  SendMessageW(view->window(), WM_SETTINGCHANGE, 0, reinterpret_cast<LPARAM>(L"intl"));
  pump();
  EXPECT_EQ(buttonFont(), font);
  EXPECT_EQ(paneSelection(), std::pair(2L, 9L));
}

TEST_F(DesktopTest, anotherFaceOfTheWorkstationIsTakenAndThePaneKeepsItsSelection) {
  NONCLIENTMETRICSW metrics{};
  metrics.cbSize = sizeof metrics;
  ASSERT_TRUE(SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0));
  const NONCLIENTMETRICSW before = metrics;
  metrics.lfMessageFont.lfItalic = TRUE;
  selectInPane(2, 9);
  const LRESULT font = buttonFont();
  ASSERT_TRUE(SystemParametersInfoW(SPI_SETNONCLIENTMETRICS, sizeof metrics, &metrics, 0));
  SendMessageW(view->window(), WM_SETTINGCHANGE, SPI_SETNONCLIENTMETRICS, 0);
  pump();
  LOGFONTW now{};
  GetObjectW(reinterpret_cast<HFONT>(buttonFont()), sizeof now, &now);
  EXPECT_NE(buttonFont(), font);
  EXPECT_TRUE(now.lfItalic);
  EXPECT_EQ(paneSelection(), std::pair(2L, 9L));
  auto restored = before;
  SystemParametersInfoW(SPI_SETNONCLIENTMETRICS, sizeof restored, &restored, 0);
}

TEST_F(DesktopTest, otherColoursAreTakenAndToldToEveryControl) {
  int heading = 0, status = 0;
  const Listener onHeading(this->heading(),
                           [&](UINT message, WPARAM, LPARAM) { heading += message == WM_SYSCOLORCHANGE; });
  const Listener onStatus(item(idStatus),
                          [&](UINT message, WPARAM, LPARAM) { status += message == WM_SYSCOLORCHANGE; });
  const LRESULT font = buttonFont();
  selectInPane(2, 9);
  const INT which[] = {COLOR_WINDOW, COLOR_WINDOWTEXT};
  const COLORREF before[] = {GetSysColor(COLOR_WINDOW), GetSysColor(COLOR_WINDOWTEXT)};
  const COLORREF dark[] = {RGB(0, 0, 0), RGB(255, 255, 0)};
  const auto tell = [&] {
    heading = status = 0;
    SendMessageW(view->window(), WM_SYSCOLORCHANGE, 0, 0);
    pump();
  };
  SetSysColors(2, which, dark);
  tell();
  EXPECT_EQ(ListView_GetBkColor(item(idGrid)), RGB(0, 0, 0));
  EXPECT_GE(heading, 1);
  EXPECT_GE(status, 1);
  EXPECT_EQ(buttonFont(), font);
  EXPECT_EQ(paneSelection(), std::pair(2L, 9L));
  SetSysColors(2, which, before);
  tell();
  EXPECT_EQ(ListView_GetBkColor(item(idGrid)), currentPalette().surface);
}

TEST(Fonts, areAsSmoothAsTheWorkstationHasThem) {
  LOGFONTW font{};
  GetObjectW(makeFont({u"Segoe UI", 9.0}, 96).get(), sizeof font, &font);
  EXPECT_EQ(font.lfQuality, workstationFont(96).lfQuality);
}

// --- the clipboard

TEST_F(DesktopTest, copyingWaitsForAnotherProgramToLetTheClipboardGo) {
  testing::SecondProcess other(L"--clipboard");
  ASSERT_TRUE(other.ready);
  std::vector<int> tries;
  EXPECT_TRUE(putOnClipboard(view->window(), u"a fault", {}, [&](int count) {
    tries.push_back(count);
    if (count == 2) other.letGo();
    return true;
  }));
  EXPECT_EQ(tries, (std::vector<int>{1, 2}));
  EXPECT_EQ(clipboardText(), u"a fault");
  EXPECT_TRUE(waitForClipboard(1));
  EXPECT_FALSE(waitForClipboard(11));
}

TEST_F(DesktopTest, aCopyThatCouldNotBeMadeIsTold) {
  ASSERT_TRUE(putOnClipboard(view->window(), u"before"));
  view->setStatus(accountPart, u"account");
  testing::SecondProcess other(L"--clipboard");
  ASSERT_TRUE(other.ready);
  SetFocus(item(idGrid));
  keyWith(VK_CONTROL, item(idGrid), 'C');
  EXPECT_TRUE(
      pumpUntil([&] { return windowText(item(idAccount)) == u"Another program holds the clipboard."; }));
  other.letGo();
  EXPECT_EQ(clipboardText(), u"before");
  keyWith(VK_CONTROL, item(idGrid), 'C');
  EXPECT_EQ(windowText(item(idAccount)), u"account");
  EXPECT_NE(clipboardText().find(u"Cause: program fault"), std::u16string::npos);
}

// --- while a request waits

TEST_F(DesktopTest, gridAndPaneLookAsEverWhileTheyTakeNoInput) {
  select(1);
  view->setInputEnabled(false);
  EXPECT_TRUE(IsWindowEnabled(item(idGrid)));
  EXPECT_TRUE(IsWindowEnabled(item(idPane)));
  const POINT row = rowPoint(3);
  const auto poke = [&] {
    for (const UINT message : {WM_LBUTTONDOWN, WM_LBUTTONUP, WM_RBUTTONDOWN, WM_RBUTTONUP})
      PostMessageW(item(idGrid), message, MK_LBUTTON, MAKELPARAM(row.x, row.y));
    for (const WPARAM code : {WPARAM{VK_DOWN}, WPARAM{VK_END}})
      PostMessageW(item(idGrid), WM_KEYDOWN, code, 1);
    PostMessageW(item(idGrid), WM_VSCROLL, SB_PAGEDOWN, 0);
    PostMessageW(item(idGrid), WM_MOUSEWHEEL, MAKEWPARAM(0, -WHEEL_DELTA), 0);
    pump();
  };
  poke();
  EXPECT_EQ(selectedRow(), 1);
  EXPECT_EQ(ListView_GetTopIndex(item(idGrid)), 0);
  clickHeading(2);
  EXPECT_TRUE(events.headings.empty());
  for (const HWND window : {item(idGrid), heading(), item(idPane)})
    EXPECT_EQ(SendMessageW(window, WM_NCHITTEST, 0, 0), HTTRANSPARENT);
  selectInPane(0, 0);
  PostMessageW(item(idPane), WM_KEYDOWN, VK_RIGHT, 1);
  pump();
  EXPECT_EQ(paneSelection(), std::pair(0L, 0L));
  EXPECT_FALSE(IsWindowEnabled(item(idRequest)));

  view->setInputEnabled(true);
  PostMessageW(item(idGrid), WM_KEYDOWN, VK_END, 1);
  pump();
  EXPECT_EQ(selectedRow(), 99);
  clickHeading(2);
  EXPECT_EQ(events.headings, (std::vector<int>{2}));
}

// --- keys and menus

TEST_F(DesktopTest, altWithAnArrowMovesTheSplitter) {
  SetWindowPos(view->window(), nullptr, 0, 0, 1000, 460, SWP_NOZORDER | SWP_NOMOVE);
  SetFocus(item(idGrid));
  const int before = height(placeOf(item(idPane)));
  const auto alt = [&](WPARAM arrow) {
    PostMessageW(item(idGrid), WM_SYSKEYDOWN, arrow, 1 | (1 << 29));
    pump();
  };
  alt(VK_UP);
  alt(VK_UP);
  const int after = height(placeOf(item(idPane)));
  EXPECT_GT(after, before + 20);
  alt(VK_DOWN);
  EXPECT_LT(height(placeOf(item(idPane))), after);
  for (int n = 0; n < 12; ++n) alt(VK_UP);
  EXPECT_GE(height(placeOf(item(idGrid))), 90);
  for (int n = 0; n < 12; ++n) alt(VK_DOWN);
  EXPECT_GE(height(placeOf(item(idPane))), 30);
  SetFocus(item(idExchange));
  const int still = height(placeOf(item(idPane)));
  PostMessageW(item(idExchange), WM_SYSKEYDOWN, VK_UP, 1 | (1 << 29));
  pump();
  EXPECT_EQ(height(placeOf(item(idPane))), still);
  view->setInputEnabled(false);
  alt(VK_UP);
  EXPECT_EQ(height(placeOf(item(idPane))), still);
}

// Says what the pane shows while a menu stands, and closes the menu.
struct MenuWatch {
  int menus = 0;
  std::u16string pane;
};

TEST_F(DesktopTest, theRowsMenuIsNotTheHeadings) {
  MenuWatch seen;
  const Listener onWindow(view->window(), [&](UINT message, WPARAM, LPARAM) {
    if (message != WM_ENTERMENULOOP) return;
    ++seen.menus;
    PostMessageW(view->window(), WM_KEYDOWN, VK_ESCAPE, 1);
  });
  const RECT place = placeOf(heading());
  for (const HWND source : {item(idGrid), heading()})
    SendMessageW(view->window(), WM_CONTEXTMENU, reinterpret_cast<WPARAM>(source),
                 MAKELPARAM(place.left + 20, place.top + 5));
  EXPECT_EQ(seen.menus, 0);
  POINT row = rowPoint(1);
  ClientToScreen(item(idGrid), &row);
  SendMessageW(view->window(), WM_CONTEXTMENU, reinterpret_cast<WPARAM>(item(idGrid)),
               MAKELPARAM(row.x, row.y));
  EXPECT_EQ(seen.menus, 1);
}

// Windows opens the menu before the press that selects the row has been served whole.
TEST_F(DesktopTest, whileTheMenuStandsThePaneShowsTheRowPressed) {
  MenuWatch seen;
  const Listener onWindow(view->window(), [&](UINT message, WPARAM, LPARAM low) {
    if (message == WM_ENTERMENULOOP) {
      ++seen.menus;
      seen.pane = windowText(item(idPane));
      PostMessageW(view->window(), WM_KEYDOWN, VK_ESCAPE, 1);
    }
    if (message != WM_NOTIFY || reinterpret_cast<NMHDR*>(low)->code != LVN_ITEMCHANGED) return;
    const auto& change = *reinterpret_cast<NMLISTVIEW*>(low);
    if (seen.menus > 0 || change.iItem != 2 || (change.uNewState & LVIS_SELECTED) == 0) return;
    POINT at = rowPoint(2);
    ClientToScreen(item(idGrid), &at);
    SendMessageW(view->window(), WM_CONTEXTMENU, reinterpret_cast<WPARAM>(item(idGrid)),
                 MAKELPARAM(at.x, at.y));
  });
  const POINT row = rowPoint(2);
  SendMessageW(item(idGrid), WM_RBUTTONDOWN, MK_RBUTTON, MAKELPARAM(row.x, row.y));
  EXPECT_EQ(seen.menus, 1);
  EXPECT_EQ(seen.pane.substr(0, 22), u"Station out of service");
}

// --- failures

TEST_F(DesktopTest, nothingThatFailsLeavesTheWindow) {
  events.fails = true;
  EXPECT_NO_THROW({
    key(item(idGrid), VK_F1);
    clickHeading(1);
    SendMessageW(item(idMajor), WM_RBUTTONDOWN, MK_RBUTTON, MAKELPARAM(3, 3));
    SendMessageW(view->window(), WM_CLOSE, 0, 0);
    view->startTimer(0);
    while (events.ticks == 0) view->serveDueTick();
    view->startTimer(1);
    while (events.ticks == 1) pump(1);
  });
  EXPECT_EQ(events.keys.size(), 1U);
  EXPECT_EQ(events.headings.size(), 1U);
  EXPECT_EQ(events.pressed.size(), 1U);
  EXPECT_EQ(events.closes, 1);
  events.fails = false;
  key(item(idGrid), VK_F1);
  EXPECT_EQ(events.keys.size(), 2U);
}

// --- the ground

// A button asks for the ground behind its corners on a surface that begins at the button's own.
TEST_F(DesktopTest, theGroundIsTheSamePictureWhereverItIsAskedFor) {
  form.control(u"imgBackground").set(u"Picture", pictureOfPoints({RGB(0, 0, 255), RGB(255, 0, 0)}));
  pump();
  RECT client{};
  GetClientRect(view->window(), &client);
  const WindowDc screen(nullptr);
  const auto ground = [&](POINT from, SIZE size, POINT asked) {
    const MemoryDc dc(CreateCompatibleDC(screen.get()));
    const Bitmap surface(CreateCompatibleBitmap(screen.get(), size.cx, size.cy));
    const Selected with(dc.get(), surface.get());
    SetViewportOrgEx(dc.get(), -from.x, -from.y, nullptr);
    SendMessageW(view->window(), WM_PRINTCLIENT, reinterpret_cast<WPARAM>(dc.get()), PRF_CLIENT);
    return GetPixel(dc.get(), asked.x, asked.y);
  };
  RECT button = placeOf(item(idClose));
  MapWindowPoints(nullptr, view->window(), reinterpret_cast<POINT*>(&button), 2);
  const POINT corner{button.left, button.top};
  const COLORREF whole = ground({0, 0}, {client.right, client.bottom}, corner);
  EXPECT_GT(GetRValue(whole), GetBValue(whole)) << "the right half is red";
  EXPECT_EQ(ground(corner, {40, 20}, corner), whole);
}

}  // namespace
}  // namespace vordane::window::win32
