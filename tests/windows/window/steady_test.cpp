// A list that is renewed while a person is in it.
#include "fakes/memory_rows.h"
#include "platform/grid_columns.h"
#include "platform/windows/window/handles.h"
#include "windows/window/view_fixture.h"

namespace vordane::window::win32 {
namespace {

using fakes::MemoryRow;
using fakes::MemoryRows;

class SteadyGrid : public ViewTest {
 protected:
  // 60 faults, newest first, numbered from 60 down to 1; of kinds 0A and 0B in turn.
  void SetUp() override {
    ViewTest::SetUp();
    for (int number = 60; number >= 1; --number) stored.rows.push_back(fault(number));
    view->setRows(&stored);
    pump();
    SetFocus(grid());
  }
  static MemoryRow fault(int number) {
    MemoryRow row{
        number % 2 == 0 ? u"0A" : u"0B", u"MN", u"2026/11/20 10:00", u"MP   ", u"Line fault", number};
    row.date += static_cast<char16_t>(u'0' + number / 10);
    return row;
  }
  // As the window is told when a list was taken in: the same exchange, newest first.
  void arrive(int many) {
    for (int n = 0; n < many; ++n)
      stored.rows.insert(stored.rows.begin(), fault(static_cast<int>(stored.rows.size()) + 1));
    view->setRows(&stored);
    pump();
  }
  HWND grid() const { return item(idGrid); }
  bool visible(int id) const { return (GetWindowLongPtrW(item(id), GWL_STYLE) & WS_VISIBLE) != 0; }
  std::u16string strip() const { return visible(idNewer) ? windowText(item(idNewer)) : std::u16string{}; }
  int selected() const { return ListView_GetNextItem(grid(), -1, LVNI_SELECTED); }
  std::u16string numberOf(int row) const {
    wchar_t text[20];
    ListView_GetItemText(grid(), row, countColumn, text, 20);
    return fromWide(text, wcslen(text));
  }
  // Where the selected row stands, on the screen.
  LONG height() const {
    RECT row{};
    ListView_GetItemRect(grid(), selected(), &row, LVIR_BOUNDS);
    MapWindowPoints(grid(), nullptr, reinterpret_cast<POINT*>(&row), 2);
    return row.top;
  }
  // Selects a row and has it stand in that line.
  void stand(int row, int line) {
    select(row);
    RECT place{};
    ListView_GetItemRect(grid(), row, &place, LVIR_BOUNDS);
    ListView_Scroll(grid(), 0, (row - line - ListView_GetTopIndex(grid())) * (place.bottom - place.top));
    pump();
    ASSERT_EQ(selected() - ListView_GetTopIndex(grid()), line);
  }
  void click(int row) {
    RECT place{};
    ListView_GetItemRect(grid(), row, &place, LVIR_BOUNDS);
    const LPARAM at = MAKELPARAM(place.left + 20, (place.top + place.bottom) / 2);
    PostMessageW(grid(), WM_LBUTTONDOWN, MK_LBUTTON, at);
    PostMessageW(grid(), WM_LBUTTONUP, 0, at);
    pump();
  }

  MemoryRows stored;
};

TEST_F(SteadyGrid, TheFaultUnderTheCaretStaysWhereItIsAndALineSaysWhatIsNewer) {
  stand(20, 3);
  const LONG before = height();
  arrive(7);
  EXPECT_EQ(numberOf(selected()), u"40");
  EXPECT_EQ(height(), before);
  EXPECT_EQ(strip(), u"7 newer faults above");
  arrive(1);
  EXPECT_EQ(numberOf(selected()), u"40");
  EXPECT_EQ(height(), before);
  EXPECT_EQ(strip(), u"8 newer faults above");
}

TEST_F(SteadyGrid, ARefreshThatBringsNothingLeavesAllAsItIs) {
  stand(20, 3);
  const LONG before = height();
  view->setRows(&stored);
  pump();
  EXPECT_EQ(numberOf(selected()), u"40");
  EXPECT_EQ(height(), before);
  EXPECT_EQ(strip(), u"");
}

TEST_F(SteadyGrid, WhatIsInSightStaysAlsoWhereTheCaretIsNot) {
  stand(20, 3);
  ListView_EnsureVisible(grid(), 59, FALSE);
  pump();
  const LONG before = height();
  const int top = ListView_GetTopIndex(grid());
  arrive(1);
  EXPECT_EQ(numberOf(selected()), u"40");
  EXPECT_EQ(height(), before);
  EXPECT_EQ(strip(), u"1 newer fault above");
  EXPECT_EQ(ListView_GetTopIndex(grid()), top + 2) << "one that came, and one that the line covers";
}

TEST_F(SteadyGrid, TheFirstRowInSightMakesRoomForTheLine) {
  click(0);
  arrive(1);
  EXPECT_EQ(numberOf(selected()), u"60");
  EXPECT_EQ(selected(), ListView_GetTopIndex(grid()));
  EXPECT_EQ(strip(), u"1 newer fault above");
}

TEST_F(SteadyGrid, TheLineGoesToTheNewest) {
  stand(20, 3);
  arrive(7);
  press(idNewer);
  pump();
  EXPECT_EQ(numberOf(selected()), u"67");
  EXPECT_EQ(selected(), 0);
  EXPECT_EQ(GetFocus(), grid());
  EXPECT_EQ(strip(), u"");
  EXPECT_EQ(ListView_GetTopIndex(grid()), 0);
  arrive(1);
  EXPECT_EQ(numberOf(selected()), u"67") << "the person has been brought there";
  EXPECT_EQ(strip(), u"1 newer fault above");
}

TEST_F(SteadyGrid, TheEnterKeyPressesTheLine) {
  stand(20, 3);
  arrive(7);
  SetFocus(item(idNewer));
  key(item(idNewer), VK_RETURN);
  EXPECT_EQ(selected(), 0);
}

TEST_F(SteadyGrid, NewFaultsInSightNeedNoLine) {
  stand(20, 3);
  arrive(7);
  while (ListView_GetTopIndex(grid()) > 0) SendMessageW(grid(), WM_VSCROLL, SB_PAGEUP, 0);
  ASSERT_TRUE(pumpUntil([&] { return strip().empty(); }));
  EXPECT_EQ(numberOf(selected()), u"40") << "the caret stays";
  EXPECT_EQ(ListView_GetTopIndex(grid()), 0);
}

TEST_F(SteadyGrid, AListThatFitsNeedsNoLine) {
  stored.rows.resize(3);
  exchanges().setListIndex(1);
  view->setRows(&stored);
  select(2);
  stored.rows.insert(stored.rows.begin(), fault(61));
  view->setRows(&stored);
  pump();
  EXPECT_EQ(numberOf(selected()), u"58");
  EXPECT_EQ(strip(), u"");
}

TEST_F(SteadyGrid, WhereNobodyHasMovedTheNewestIsShown) {
  arrive(7);
  EXPECT_EQ(selected(), 0);
  EXPECT_EQ(strip(), u"");
}

// A click on the first row selects no other, but is one.
TEST_F(SteadyGrid, AClickOnTheRowThatIsSelectedCounts) {
  click(0);
  arrive(2);
  EXPECT_EQ(numberOf(selected()), u"60");
  EXPECT_EQ(strip(), u"2 newer faults above");
}

TEST_F(SteadyGrid, AChoiceOfThePersonGoesToTheTop) {
  stand(20, 3);
  arrive(2);
  events.onHeading = [&] { view->setRows(&stored); };
  clickHeading(0);
  EXPECT_EQ(selected(), 0);
  EXPECT_EQ(strip(), u"");
  stand(20, 3);
  keyWith(VK_CONTROL, grid(), '1');
  EXPECT_EQ(selected(), 0);
  stand(20, 3);
  exchanges().setListIndex(1);
  view->setRows(&stored);
  pump();
  EXPECT_EQ(selected(), 0);
  EXPECT_EQ(strip(), u"");
}

TEST_F(SteadyGrid, TheFilterIsKeptTooAndOnlyWhatItShowsIsCounted) {
  press(idFilter);
  SetWindowTextW(item(idFilterText), L"0B");
  ASSERT_TRUE(pumpUntil([&] { return ListView_GetItemCount(grid()) == 30; }));
  stand(12, 3);  // the fault 35
  const LONG before = height();
  arrive(7);
  ASSERT_TRUE(pumpUntil([&] { return ListView_GetItemCount(grid()) == 34; }));
  pump();
  EXPECT_EQ(numberOf(selected()), u"35");
  EXPECT_EQ(height(), before);
  EXPECT_EQ(strip(), u"4 newer faults above");
}

TEST_F(SteadyGrid, WhereNobodySitsThereIsNothingOfIt) {
  stand(20, 3);
  events.use = ListUse::never;
  arrive(7);
  EXPECT_EQ(selected(), 0);
  EXPECT_EQ(strip(), u"");
}

TEST_F(SteadyGrid, WhileAnAnswerIsWaitedForTheLineIsThereAndDead) {
  stand(20, 3);
  events.use = ListUse::later;
  arrive(7);
  EXPECT_EQ(numberOf(selected()), u"40");
  EXPECT_EQ(strip(), u"7 newer faults above");
  press(idNewer);
  EXPECT_EQ(numberOf(selected()), u"40");
  view->setInputEnabled(false);
  EXPECT_FALSE(IsWindowEnabled(item(idNewer)));
  view->setInputEnabled(true);
  events.use = ListUse::now;
  press(idNewer);
  EXPECT_EQ(selected(), 0);
}

TEST_F(SteadyGrid, AtEveryDensityTheLineIsAsTallAsARow) {
  for (const int dpi : {120, 144, 192, 96}) {
    const RECT place{0, 0, 1300, 900};
    SendMessageW(view->window(), WM_DPICHANGED, MAKEWPARAM(dpi, dpi), reinterpret_cast<LPARAM>(&place));
    pump();
    stand(20, 2);
    const LONG before = height();
    arrive(1);
    EXPECT_EQ(height(), before) << dpi;
    press(idNewer);
    pump();
    ASSERT_EQ(strip(), u"");
  }
}

}  // namespace
}  // namespace vordane::window::win32
