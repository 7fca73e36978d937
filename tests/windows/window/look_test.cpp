// What has come since the person looked last.
#include <oleacc.h>

#include "click/windows/ear.h"
#include "fakes/memory_arrivals.h"
#include "fakes/memory_rows.h"
#include "platform/windows/window/exchange_list.h"
#include "platform/windows/window/handles.h"
#include "windows/window/view_fixture.h"

namespace vordane::window::win32 {
namespace {

using click::Ear;
using fakes::MemoryArrivals;
using fakes::MemoryRow;
using fakes::MemoryRows;

// Three exchanges, with the identifiers 1 to 3, ten faults each; the first one's are shown, newest first.
class LookGrid : public ViewTest {
 protected:
  void SetUp() override {
    for (const std::int64_t exchange : {3, 2, 1}) store->add(exchange, 10);
    events.store = store;
    view->attach(form, events);
    for (const char16_t* name : {u"PBX-1", u"PBX-2", u"PBX-3"}) {
      const int entry = exchanges().addItem(name);
      exchanges().setItemData(entry, entry + 1);
    }
    exchanges().setListIndex(0);
    events.exchangeList = &exchanges();
    for (int number = 30; number > 20; --number) stored.rows.push_back(fault(number));
    view->setRows(&stored);
    view->setVisible(true);
    pump();
    SetFocus(grid());
  }
  static MemoryRow fault(int number) {
    return {u"0A", u"MN", u"2026/11/20 10:00", u"MP   ", u"Line fault", number};
  }
  void meetTheStore() {
    ASSERT_TRUE(pumpUntil([&] { return kept(u"aa").has_value(); }));
  }
  // Faults of an exchange that are stored, by whomever; the list is renewed then.
  void come(std::int64_t exchange, int many) {
    for (; many > 0; --many) {
      store->add(exchange);
      if (exchange == 1) stored.rows.insert(stored.rows.begin(), fault(static_cast<int>(store->last())));
    }
    view->setRows(&stored);
    pump();
  }
  void chooseExchange(int entry) {
    exchanges().setListIndex(entry);
    view->setRows(&stored);
    pump();
  }
  std::optional<std::u16string> kept(const std::u16string& key) {
    return settings.read(u"VORDANE", u"LastLook", key);
  }
  HWND grid() const { return item(idGrid); }
  int selected() const { return ListView_GetNextItem(grid(), -1, LVNI_SELECTED); }
  std::u16string account() const { return windowText(item(idAccount)); }
  // What screen readers are told.
  std::wstring rowSays(long row) const { return Ear::at(grid()).child(row + 1).name(); }
  std::wstring boxSays() const { return Ear::at(item(idExchange)).value(); }
  std::wstring entrySays(long entry) const {
    return Ear::at(listOf(item(idExchange))).child(entry + 1).name();
  }
  bool isNew(long row) const { return rowSays(row).rfind(L"new, ", 0) == 0; }
  void expectSays(const std::function<std::wstring()>& who, const std::wstring& words) {
    pumpUntil([&] { return who() == words; });
    EXPECT_EQ(who(), words);
  }
  void expectRow(long row, const std::wstring& words) {
    expectSays([&] { return rowSays(row); }, words);
  }
  void expectEntry(long entry, const std::wstring& words) {
    expectSays([&] { return entrySays(entry); }, words);
  }

  std::shared_ptr<MemoryArrivals> store = std::make_shared<MemoryArrivals>();
  MemoryRows stored;
};

TEST_F(LookGrid, FaultsThatCameSinceCarryTheWordForScreenReaders) {
  meetTheStore();
  EXPECT_EQ(rowSays(0), L"Line fault, MN, 2026/11/20 10:00, MP");
  come(1, 2);
  expectRow(0, L"new, Line fault, MN, 2026/11/20 10:00, MP");
  EXPECT_TRUE(isNew(1));
  EXPECT_FALSE(isNew(2));
}

TEST_F(LookGrid, BesideAnExchangeTheNumberOfItsNewFaultsIsToldAndItsTextStaysTheName) {
  meetTheStore();
  EXPECT_EQ(boxSays(), L"PBX-1");
  come(2, 3);
  expectEntry(1, L"PBX-2, 3 new");
  EXPECT_EQ(entrySays(0), L"PBX-1");
  EXPECT_EQ(entrySays(2), L"PBX-3");
  come(1, 1);
  expectSays([&] { return boxSays(); }, L"PBX-1, 1 new");
  wchar_t text[20];
  SendMessageW(item(idExchange), CB_GETLBTEXT, 1, reinterpret_cast<LPARAM>(text));
  EXPECT_STREQ(text, L"PBX-2");
  EXPECT_EQ(windowText(item(idExchange)), u"PBX-1");
}

// Points of that colour in a window's picture.
int pointsOf(HWND window, COLORREF colour) {
  RECT place{};
  GetClientRect(window, &place);
  const WindowDc source(window);
  const MemoryDc copy(CreateCompatibleDC(source.get()));
  const Bitmap picture(CreateCompatibleBitmap(source.get(), place.right, place.bottom));
  const Selected into(copy.get(), picture.get());
  BitBlt(copy.get(), 0, 0, place.right, place.bottom, source.get(), 0, 0, SRCCOPY);
  int points = 0;
  for (int y = 0; y < place.bottom; ++y)
    for (int x = 0; x < place.right; ++x) points += GetPixel(copy.get(), x, y) == colour ? 1 : 0;
  return points;
}

TEST_F(LookGrid, TheNumberIsDrawnBesideTheName) {
  const COLORREF accent = currentPalette().accent;
  const HWND box = item(idExchange);
  meetTheStore();
  SetFocus(item(idRequest));
  pump();
  UpdateWindow(box);
  EXPECT_EQ(pointsOf(box, accent), 0);
  come(1, 4);
  EXPECT_TRUE(pumpUntil([&] { return pointsOf(box, accent) > 10; })) << "the dot before the number";
}

TEST_F(LookGrid, WhoHasHadThemInFrontForFiveSecondsHasLooked) {
  meetTheStore();
  come(1, 2);
  expectRow(0, L"new, Line fault, MN, 2026/11/20 10:00, MP");
  const ULONGLONG begun = GetTickCount64();
  ASSERT_TRUE(pumpUntil([&] { return kept(u"aa.1") == u"32"; }));
  EXPECT_GE(GetTickCount64() - begun, 4000U);
  EXPECT_EQ(boxSays(), L"PBX-1") << "nothing is left to be looked at";
  EXPECT_TRUE(isNew(0)) << "while the person stays the mark does";
  chooseExchange(1);
  chooseExchange(0);
  expectRow(0, L"Line fault, MN, 2026/11/20 10:00, MP");
}

TEST_F(LookGrid, ComingBackToTheFrontIsAnotherLook) {
  meetTheStore();
  come(1, 1);
  ASSERT_TRUE(pumpUntil([&] { return kept(u"aa.1") == u"31"; }));
  EXPECT_TRUE(isNew(0));
  const HWND other = CreateWindowExW(0, WC_STATICW, L"", WS_POPUP | WS_VISIBLE, 0, 0, 50, 50, nullptr,
                                     nullptr, nullptr, nullptr);
  SetForegroundWindow(other);
  pump(150);
  EXPECT_TRUE(isNew(0));
  DestroyWindow(other);
  view->setVisible(true);
  expectRow(0, L"Line fault, MN, 2026/11/20 10:00, MP");
}

TEST_F(LookGrid, WhoIsElsewhereHasNotLooked) {
  meetTheStore();
  const HWND other = CreateWindowExW(0, WC_STATICW, L"", WS_POPUP | WS_VISIBLE, 0, 0, 50, 50, nullptr,
                                     nullptr, nullptr, nullptr);
  SetForegroundWindow(other);
  pump(150);
  come(1, 1);
  expectRow(0, L"new, Line fault, MN, 2026/11/20 10:00, MP");
  pump(6000);
  EXPECT_EQ(kept(u"aa.1"), std::nullopt);
  DestroyWindow(other);
}

TEST_F(LookGrid, F6GoesToTheNextNewFaultAndRound) {
  meetTheStore();
  stored.rows[4].count = 33;
  stored.rows[7].count = 32;
  store->add(1, 3);
  view->setRows(&stored);
  ASSERT_TRUE(pumpUntil([&] { return isNew(4); }));
  SetFocus(item(idRequest));
  key(item(idRequest), VK_F6);
  EXPECT_EQ(selected(), 4);
  EXPECT_EQ(GetFocus(), grid());
  key(grid(), VK_F6);
  EXPECT_EQ(selected(), 7);
  key(grid(), VK_F6);
  EXPECT_EQ(selected(), 4);
  EXPECT_TRUE(events.keys.empty()) << "the form hears nothing of it";
}

TEST_F(LookGrid, WithoutANewFaultF6SaysSo) {
  meetTheStore();
  pump();
  ASSERT_TRUE(pumpUntil([&] {
    key(grid(), VK_F6);
    return account() == u"No new fault in the list";
  }));
  EXPECT_EQ(selected(), 0);
}

TEST_F(LookGrid, OfAStoreThatCantTellThereIsNothing) {
  meetTheStore();
  come(1, 1);
  expectRow(0, L"new, Line fault, MN, 2026/11/20 10:00, MP");
  events.store = nullptr;
  view->setRows(&stored);
  expectRow(0, L"Line fault, MN, 2026/11/20 10:00, MP");
  key(grid(), VK_DOWN);
  key(grid(), VK_F6);
  EXPECT_EQ(selected(), 1);
  EXPECT_EQ(account(), u"");
}

TEST_F(LookGrid, WhereNobodySitsTheStoreIsNotAsked) {
  meetTheStore();
  events.use = ListUse::never;
  store->read = 0;
  come(1, 2);
  come(2, 2);
  pump(200);
  EXPECT_EQ(store->read, 0U);
  EXPECT_FALSE(isNew(0));
  EXPECT_EQ(entrySays(1), L"PBX-2");
  key(grid(), VK_F6);
  EXPECT_EQ(selected(), 0);
}

TEST_F(LookGrid, WhileAnAnswerIsWaitedForItRests) {
  meetTheStore();
  events.use = ListUse::later;
  store->read = 0;
  come(2, 2);
  pump(300);
  EXPECT_EQ(store->read, 0U);
  key(grid(), VK_F6);
  EXPECT_EQ(account(), u"");
  events.use = ListUse::now;
  expectEntry(1, L"PBX-2, 2 new");
}

TEST_F(LookGrid, AStoreThatFailsIsAskedAgainWithTheNextRows) {
  meetTheStore();
  store->fails = true;
  come(2, 2);
  pump(100);
  EXPECT_EQ(entrySays(1), L"PBX-2");
  store->fails = false;
  come(2, 1);
  expectEntry(1, L"PBX-2, 3 new");
}

TEST_F(LookGrid, AStoreThatIsHeldTakesNoMarkAway) {
  meetTheStore();
  come(1, 1);
  expectRow(0, L"new, Line fault, MN, 2026/11/20 10:00, MP");
  events.storeHeld = true;
  view->setRows(&stored);
  pump(200);
  EXPECT_TRUE(isNew(0));
  events.storeHeld = false;
  come(2, 1);
  expectEntry(1, L"PBX-2, 1 new");
}

TEST_F(LookGrid, MoreThanThreeDigitsAreNotCounted) {
  meetTheStore();
  come(2, 1500);
  expectEntry(1, L"PBX-2, 999+ new");
}

TEST_F(LookGrid, TheNextWindowKnowsWhatWasLookedAt) {
  meetTheStore();
  come(2, 2);
  view->detach();
  view->attach(form, events);
  view->setRows(&stored);
  view->setVisible(true);
  expectEntry(1, L"PBX-2, 2 new");
}

TEST_F(LookGrid, AnEntryIsChosenByAScreenReaderAsByAClick) {
  meetTheStore();
  const Ear list = Ear::at(listOf(item(idExchange)));
  EXPECT_EQ(list.role(), ROLE_SYSTEM_LIST);
  EXPECT_EQ(list.name(), L"Exchange");
  EXPECT_EQ(list.children(), 3);
  EXPECT_EQ(list.child(2).act(), E_ACCESSDENIED) << "the list is closed";
  SendMessageW(item(idExchange), CB_SHOWDROPDOWN, TRUE, 0);
  EXPECT_EQ(list.child(2).act(), S_OK);
  EXPECT_TRUE(events.exchanges.empty()) << "once the question has been answered";
  pump();
  EXPECT_EQ(events.exchanges, std::vector{1});
  EXPECT_EQ(SendMessageW(item(idExchange), CB_GETDROPPEDSTATE, 0, 0), FALSE);
  EXPECT_EQ(windowText(item(idExchange)), u"PBX-2");
}

TEST_F(LookGrid, TheLinesOfTheDropDownGrowWithTheirFont) {
  const auto line = [&] { return SendMessageW(item(idExchange), CB_GETITEMHEIGHT, 0, 0); };
  pump();
  const LRESULT before = line();
  form.self().set(u"FontSize", 24.0F);
  pump();
  EXPECT_GE(line(), before + 10);
  EXPECT_GE(SendMessageW(item(idExchange), CB_GETITEMHEIGHT, static_cast<WPARAM>(-1), 0), line());
}

}  // namespace
}  // namespace vordane::window::win32
