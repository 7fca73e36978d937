// The line above the rows that tells of the latest flood of faults.
#include "list/flood.h"
#include "fakes/memory_rows.h"
#include "platform/windows/window/handles.h"
#include "windows/window/view_fixture.h"

namespace vordane::window::win32 {
namespace {

using fakes::MemoryRow;
using fakes::MemoryRows;

class FloodStrip : public ViewTest {
 protected:
  // 60 faults, newest first, an hour's quarter between them, but for twelve within six minutes.
  void SetUp() override {
    ViewTest::SetUp();
    for (int number = 0; number < 24; ++number) stored.rows.push_back(fault(1400 - 15 * number, u"0B"));
    for (int number = 0; number < 12; ++number)
      stored.rows.push_back(fault(1000 - number / 2, number < 9 ? u"0A" : u"0C"));
    for (int number = 0; number < 24; ++number) stored.rows.push_back(fault(900 - 15 * number, u"0B"));
  }
  static MemoryRow fault(int minute, const char16_t* kind) {
    MemoryRow row{kind, u"MN", u"", u"LP 7 ", std::u16string(u"Title ") + kind + u"\r\n detail", 0};
    row.date = list::writtenMinute(202611200000 + static_cast<list::Minute>(minute / 60 * 100 + minute % 60));
    row.count = minute;
    return row;
  }
  void show() { view->setRows(&stored); }
  void showWhole() {
    show();
    ASSERT_TRUE(pumpUntil([&] { return !strip().empty(); }));
  }
  HWND grid() const { return item(idGrid); }
  bool visible(int id) const { return (GetWindowLongPtrW(item(id), GWL_STYLE) & WS_VISIBLE) != 0; }
  std::u16string strip() const { return visible(idFlood) ? windowText(item(idFlood)) : std::u16string{}; }
  int shown() const { return ListView_GetItemCount(grid()); }
  LONG heightOf(HWND window) const {
    RECT place{};
    GetWindowRect(window, &place);
    return place.bottom - place.top;
  }
  LONG rowTop(int row) const {
    RECT place{};
    ListView_GetItemRect(grid(), row, &place, LVIR_BOUNDS);
    MapWindowPoints(grid(), nullptr, reinterpret_cast<POINT*>(&place), 2);
    return place.top;
  }
  LONG rowHeight() const { return rowTop(1) - rowTop(0); }

  MemoryRows stored;
};

constexpr const char16_t* words =
    u"12 faults in 6 minutes, 2026/11/20 16:35 to 16:40. First: Title 0C (LP 7). Last: Title 0A (LP 7).\n"
    u"9 × Title 0A (LP 7), 3 × Title 0C (LP 7)";

TEST_F(FloodStrip, TellsWhatTheLatestFloodIs) {
  showWhole();
  EXPECT_EQ(strip(), words);
  EXPECT_EQ(heightOf(item(idFlood)), rowHeight());
  EXPECT_EQ(shown(), 60) << "nothing is hidden by it";
}

TEST_F(FloodStrip, TheTipHoldsWhatThereIsNoRoomFor) {
  showWhole();
  HWND tips = nullptr;
  while ((tips = FindWindowExW(nullptr, tips, TOOLTIPS_CLASSW, nullptr)) != nullptr)
    if (GetWindow(tips, GW_OWNER) == view->window()) break;
  wchar_t text[500] = {};
  TTTOOLINFOW tool{};
  tool.cbSize = sizeof tool;
  tool.hwnd = view->window();
  tool.uId = reinterpret_cast<UINT_PTR>(item(idFlood));
  tool.lpszText = text;
  SendMessageW(tips, TTM_GETTEXTW, 500, reinterpret_cast<LPARAM>(&tool));
  EXPECT_EQ(fromWide(text, wcslen(text)), words);
}

TEST_F(FloodStrip, APressShowsItsFaultsAndNoOthers) {
  showWhole();
  press(idFlood);
  ASSERT_TRUE(pumpUntil([&] { return shown() == 12; }));
  EXPECT_EQ(windowText(item(idFilterSince)), u"2026/11/20 16:35");
  EXPECT_EQ(windowText(item(idFilterUntil)), u"2026/11/20 16:40");
  EXPECT_EQ(GetFocus(), grid());
  EXPECT_EQ(strip(), words);
  press(idFilterClear);
  ASSERT_TRUE(pumpUntil([&] { return shown() == 60; }));
  EXPECT_EQ(strip(), words);
}

TEST_F(FloodStrip, TheEnterKeyPressesIt) {
  showWhole();
  SetFocus(item(idFlood));
  key(item(idFlood), VK_RETURN);
  ASSERT_TRUE(pumpUntil([&] { return shown() == 12; }));
}

TEST_F(FloodStrip, ItReplacesTheFilterThatWasThere) {
  showWhole();
  press(idFilter);
  SetWindowTextW(item(idFilterText), L"0C");
  ASSERT_TRUE(pumpUntil([&] { return shown() == 3; }));
  press(idFlood);
  ASSERT_TRUE(pumpUntil([&] { return shown() == 12; }));
  EXPECT_EQ(windowText(item(idFilterText)), u"");
}

TEST_F(FloodStrip, AFilterThatHidesEverythingLeavesItThere) {
  showWhole();
  press(idFilter);
  SetWindowTextW(item(idFilterText), L"no such text");
  ASSERT_TRUE(pumpUntil([&] { return shown() == 0; }));
  EXPECT_EQ(strip(), words);
  EXPECT_GT(heightOf(item(idFlood)), 0);
  press(idFlood);
  ASSERT_TRUE(pumpUntil([&] { return shown() == 12; }));
}

TEST_F(FloodStrip, ARefreshTellsOfTheFaultsThatCame) {
  showWhole();
  stored.rows.insert(stored.rows.begin(), fault(1430, u"0D"));
  show();
  EXPECT_EQ(strip(), words) << "until the new rows are known";
  for (int number = 0; number < 11; ++number) stored.rows.insert(stored.rows.begin(), fault(1439, u"0D"));
  show();
  ASSERT_TRUE(pumpUntil([&] { return strip() != words; }));
  EXPECT_EQ(strip(),
            u"12 faults in 10 minutes, 2026/11/20 23:50 to 23:59. First: Title 0D (LP 7). Last: Title 0D "
            u"(LP 7).\n12 × Title 0D (LP 7)");
  stored.rows.erase(stored.rows.begin(), stored.rows.begin() + 12 + 24 + 12);
  show();
  ASSERT_TRUE(pumpUntil([&] { return strip().empty(); }));
}

TEST_F(FloodStrip, AnotherOrderOfTheSameFaultsLeavesItAsItIs) {
  showWhole();
  events.onHeading = [&] {
    std::reverse(stored.rows.begin(), stored.rows.end());
    show();
  };
  clickHeading(0);
  EXPECT_EQ(strip(), words);
}

TEST_F(FloodStrip, AnotherExchangeHasItsOwn) {
  showWhole();
  MemoryRows calm({fault(1000, u"0B"), fault(900, u"0B")});
  exchanges().setListIndex(1);
  view->setRows(&calm);
  EXPECT_EQ(strip(), u"") << "at once";
  pump();
  EXPECT_EQ(strip(), u"");
  exchanges().setListIndex(0);
  showWhole();
  view->setRows(nullptr);
  EXPECT_EQ(strip(), u"");
}

TEST_F(FloodStrip, TheRowsStayWhereTheyAreWhenItComesAndGoes) {
  events.use = ListUse::later;
  show();
  select(20);
  ListView_Scroll(grid(), 0, (17 - ListView_GetTopIndex(grid())) * rowHeight());
  pump();
  const LONG before = rowTop(20);
  events.use = ListUse::now;
  ASSERT_TRUE(pumpUntil([&] { return !strip().empty(); }));
  EXPECT_EQ(rowTop(20), before);
  for (MemoryRow& row : stored.rows)
    if (row.fault != u"0B") row.date = u"soon";
  show();
  ASSERT_TRUE(pumpUntil([&] { return strip().empty(); }));
  EXPECT_EQ(rowTop(20), before);
}

TEST_F(FloodStrip, WhereTheBeginningIsInSightItStaysInSight) {
  showWhole();
  EXPECT_EQ(ListView_GetTopIndex(grid()), 0);
}

TEST_F(FloodStrip, WhereNobodySitsThereIsNothingOfIt) {
  showWhole();
  events.use = ListUse::never;
  show();
  EXPECT_EQ(strip(), u"");
  const std::size_t fetched = stored.fetched;
  SendMessageW(view->window(), WM_TIMER, 1, 0);
  EXPECT_EQ(stored.fetched, fetched) << "and nothing looks for one";
}

TEST_F(FloodStrip, WhileAnAnswerIsWaitedForItIsThereAndDead) {
  showWhole();
  events.use = ListUse::later;
  press(idFlood);
  pump();
  EXPECT_FALSE(visible(idFilterSince)) << "no filter is set";
  EXPECT_EQ(shown(), 60);
  view->setInputEnabled(false);
  EXPECT_FALSE(IsWindowEnabled(item(idFlood)));
  EXPECT_EQ(strip(), words);
  view->setInputEnabled(true);
  events.use = ListUse::now;
  press(idFlood);
  ASSERT_TRUE(pumpUntil([&] { return shown() == 12; }));
}

TEST_F(FloodStrip, WhileAnAnswerIsWaitedForNothingIsLookedAt) {
  events.use = ListUse::later;
  show();
  const std::size_t fetched = stored.fetched;
  constexpr WPARAM everyTimer[] = {1, 2, 3};
  for (const WPARAM timer : everyTimer) SendMessageW(view->window(), WM_TIMER, timer, 0);
  EXPECT_EQ(stored.fetched, fetched);
  events.use = ListUse::now;
  ASSERT_TRUE(pumpUntil([&] { return !strip().empty(); }));
}

TEST_F(FloodStrip, AtEveryDensityItIsAsTallAsARow) {
  showWhole();
  for (const int dpi : {120, 144, 192, 96}) {
    const RECT place{0, 0, 1300, 900};
    SendMessageW(view->window(), WM_DPICHANGED, MAKEWPARAM(dpi, dpi), reinterpret_cast<LPARAM>(&place));
    pump();
    EXPECT_EQ(heightOf(item(idFlood)), rowHeight()) << dpi;
  }
}

}  // namespace
}  // namespace vordane::window::win32
