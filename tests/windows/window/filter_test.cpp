// The filter bar of the drawn window, used as a person uses it.
#include "fakes/memory_rows.h"
#include "platform/windows/window/handles.h"
#include "windows/window/view_fixture.h"

namespace vordane::window::win32 {
namespace {

using fakes::MemoryRow;
using fakes::MemoryRows;

class FilterTest : public ViewTest {
 protected:
  // 40 faults, newest first: kinds 0A, 0B, 0A, 0B, ..., every fifth of them major.
  void SetUp() override {
    ViewTest::SetUp();
    for (int i = 0; i < 40; ++i) {
      const char16_t day = static_cast<char16_t>(u'0' + i / 10);
      stored.rows.push_back({i % 2 == 0 ? u"0A" : u"0B", i % 5 == 0 ? u"MJ" : u"MN",
                             std::u16string(u"2026/11/0") + day + u" 10:00", i % 4 == 0 ? u"LP 4" : u"MP   ",
                             i == 23 ? u"Door open" : u"Line fault", 40 - i});
    }
    view->setRows(&stored);
    view->setStatus(countPart, u"40 faults");
    pump();
  }

  int shown() const { return ListView_GetItemCount(item(idGrid)); }
  bool shows(int many) {
    return pumpUntil([&] { return shown() == many; });
  }
  std::u16string cell(int row, int column) const {
    wchar_t text[200];
    ListView_GetItemText(item(idGrid), row, column, text, 200);
    return fromWide(text, wcslen(text));
  }
  std::u16string words(int id) const { return windowText(item(id)); }
  bool visible(int id) const { return (GetWindowLongPtrW(item(id), GWL_STYLE) & WS_VISIBLE) != 0; }
  void write(int id, const wchar_t* text) { SetWindowTextW(item(id), text); }
  std::u16string countWords() const {
    wchar_t text[200];
    SendMessageW(item(idStatus), SB_GETTEXTW, countPart, reinterpret_cast<LPARAM>(text));
    return fromWide(text, wcslen(text));
  }
  int selected() const { return ListView_GetNextItem(item(idGrid), -1, LVNI_SELECTED); }
  int lineOfSelected() const { return selected() - ListView_GetTopIndex(item(idGrid)); }
  void open() {
    press(idFilter);
    pump();
  }

  MemoryRows stored;
};

TEST_F(FilterTest, TheBarIsHiddenUntilItIsAskedFor) {
  for (int id = idFilterTextLabel; id <= idShowAll; ++id) EXPECT_FALSE(visible(id)) << id;
  EXPECT_EQ(item(idFilterText), nullptr) << "most starts need none of it";
  open();
  EXPECT_TRUE(visible(idFilterText));
  EXPECT_EQ(GetFocus(), item(idFilterText));
  EXPECT_FALSE(visible(idFilterOtherDates));
  EXPECT_FALSE(visible(idKindList));
  EXPECT_EQ(shown(), 40);
  key(item(idFilterText), VK_ESCAPE);
  EXPECT_FALSE(visible(idFilterText));
  EXPECT_EQ(GetFocus(), item(idGrid));
  keyWith(VK_CONTROL, item(idGrid), 'L');
  EXPECT_TRUE(visible(idFilterText));
}

TEST_F(FilterTest, ATextLeavesTheFaultsThatHoldItAndTheStatusLineSaysSo) {
  open();
  write(idFilterText, L"DOOR");
  ASSERT_TRUE(shows(1));
  EXPECT_EQ(cell(0, 5), u"17");
  EXPECT_EQ(countWords(), u"1 of 40 shown");
  EXPECT_EQ(words(idFilterMessage),
            u"Print, Delete and Reset alarms go by all 40 faults of the exchange, shown or not.");
  view->setStatus(countPart, u"40 faults");
  EXPECT_EQ(countWords(), u"1 of 40 shown") << "the form knows of no filter";
  press(idFilterClear);
  ASSERT_TRUE(shows(40));
  EXPECT_EQ(countWords(), u"40 faults");
  EXPECT_EQ(words(idFilterMessage), u"");
  EXPECT_TRUE(visible(idFilterText));
}

TEST_F(FilterTest, ClassesProcessorAndDatesChooseTogether) {
  open();
  ASSERT_TRUE(pumpUntil([&] { return SendMessageW(item(idFilterProcessor), CB_GETCOUNT, 0, 0) == 3; }));
  press(idFilterMinor);
  ASSERT_TRUE(shows(8));
  SendMessageW(item(idFilterProcessor), CB_SETCURSEL, 2, 0);  // "MP" stands before "LP 4"
  SendMessageW(view->window(), WM_COMMAND, MAKEWPARAM(idFilterProcessor, CBN_SELCHANGE), 0);
  ASSERT_TRUE(shows(2));
  write(idFilterSince, L"2026/11/02");
  ASSERT_TRUE(shows(1));
  EXPECT_EQ(cell(0, 2), u"2026/11/02 10:00");
}

TEST_F(FilterTest, TheListOfKindsHasTitlesCountsAndTicks) {
  open();
  ASSERT_TRUE(pumpUntil([&] { return ListView_GetItemCount(item(idKindList)) == 3; }));
  EXPECT_EQ(words(idFilterKinds), u"&Kinds: all");
  press(idFilterKinds);
  const HWND list = item(idKindList);
  EXPECT_TRUE(visible(idKindList));
  EXPECT_EQ(GetFocus(), list);
  wchar_t text[100];
  ListView_GetItemText(list, 1, 1, text, 100);
  EXPECT_STREQ(text, L"Line fault");
  ListView_GetItemText(list, 1, 2, text, 100);
  EXPECT_STREQ(text, L"20");
  for (int row = 0; row < 3; ++row) EXPECT_TRUE(ListView_GetCheckState(list, row));
  ListView_SetCheckState(list, 1, FALSE);
  ASSERT_TRUE(shows(20));
  EXPECT_EQ(cell(0, 0), u"0B");
  EXPECT_EQ(words(idFilterKinds), u"&Kinds: 1 of 2");
  EXPECT_FALSE(ListView_GetCheckState(list, 0)) << "not all of them";
  ListView_SetCheckState(list, 0, TRUE);
  ASSERT_TRUE(shows(40));
  EXPECT_TRUE(ListView_GetCheckState(list, 1));
  key(list, VK_ESCAPE);
  EXPECT_FALSE(visible(idKindList));
  EXPECT_EQ(GetFocus(), item(idFilterKinds));
  EXPECT_TRUE(visible(idFilterText)) << "Esc ended the list only";
}

TEST_F(FilterTest, TheSelectedFaultKeepsItsPlaceOnTheScreen) {
  select(23);
  ListView_EnsureVisible(item(idGrid), 28, FALSE);
  ListView_EnsureVisible(item(idGrid), 20, FALSE);
  pump();
  const int line = lineOfSelected();
  ASSERT_GT(line, 0);
  open();
  const int inBar = lineOfSelected();
  press(idFilterMajor);  // the major ones are hidden, and the fault is minor
  ASSERT_TRUE(shows(32));
  EXPECT_EQ(cell(selected(), 5), u"17");
  EXPECT_EQ(lineOfSelected(), inBar);
  press(idFilterMajor);
  ASSERT_TRUE(shows(40));
  EXPECT_EQ(selected(), 23);
  EXPECT_EQ(lineOfSelected(), inBar);
}

TEST_F(FilterTest, AHiddenFaultIsStoodInForByItsNeighbourAndComesBack) {
  select(23);
  open();
  write(idFilterText, L"nothing like it");
  ASSERT_TRUE(shows(0));
  press(idFilterClear);
  ASSERT_TRUE(shows(40));
  EXPECT_EQ(selected(), 23);
}

TEST_F(FilterTest, AFilterThatHidesEverythingSaysSoWithAButtonThatClearsIt) {
  open();
  write(idFilterText, L"nothing like it");
  ASSERT_TRUE(pumpUntil([&] { return visible(idShowAll); }));
  EXPECT_EQ(words(idNotice), u"None of the 40 stored faults passes the filter.");
  EXPECT_EQ(words(idShowAll), u"Clear filter");
  EXPECT_TRUE(IsWindowEnabled(item(idPrint)));
  view->setNotice(u"Waiting");
  EXPECT_EQ(words(idNotice), u"Waiting\r\nNone of the 40 stored faults passes the filter.");
  view->setNotice(u"");
  press(idShowAll);
  ASSERT_TRUE(shows(40));
  pump();
  EXPECT_FALSE(visible(idShowAll));
  EXPECT_FALSE(visible(idNotice));
  EXPECT_EQ(words(idFilterText), u"");
}

TEST_F(FilterTest, ADateOfAnotherStyleIsToldAndNothingChanges) {
  open();
  write(idFilterText, L"Door");
  ASSERT_TRUE(shows(1));
  write(idFilterSince, L"20.11.2026");
  EXPECT_EQ(words(idFilterMessage), u"Write a date as 2026/11/20 or 2026/11/20 14:05.");
  pump();
  EXPECT_EQ(shown(), 1);
  EXPECT_EQ(words(idFilterSince), u"20.11.2026");
  write(idFilterSince, L"2026/11/02");
  write(idFilterUntil, L"2026/11/01");
  EXPECT_EQ(words(idFilterMessage), u"The first date is later than the last one.");
  write(idFilterUntil, L"2026/11/03");
  EXPECT_NE(words(idFilterMessage), u"The first date is later than the last one.");
}

TEST_F(FilterTest, OtherFormsOfDatesAreCountedInALineOfTheirOwnAndShownOnDemand) {
  stored.rows[3].date = u"soon";
  view->setRows(&stored);
  open();
  write(idFilterSince, L"2026/11/02");
  ASSERT_TRUE(shows(20));
  EXPECT_TRUE(visible(idFilterOtherDates));
  EXPECT_EQ(words(idFilterOtherDates), u"Also s&how 1 with another form of date");
  press(idFilterOtherDates);
  ASSERT_TRUE(shows(21));
  EXPECT_EQ(cell(0, 2), u"soon");
}

TEST_F(FilterTest, EachExchangeHasItsOwn) {
  open();
  write(idFilterText, L"Door");
  ASSERT_TRUE(shows(1));
  exchanges().setListIndex(1);
  view->setRows(&stored);
  EXPECT_EQ(words(idFilterText), u"");
  EXPECT_EQ(shown(), 40);
  exchanges().setListIndex(0);
  view->setRows(&stored);
  EXPECT_EQ(words(idFilterText), u"Door");
  ASSERT_TRUE(shows(1));
}

// The same exchange is read anew while a person types.
TEST_F(FilterTest, ARefreshTakesNothingAwayFromTheBoxes) {
  open();
  write(idFilterSince, L"2026/1");
  view->setRows(&stored);
  EXPECT_EQ(words(idFilterSince), u"2026/1");
  EXPECT_TRUE(visible(idFilterSince));
}

TEST_F(FilterTest, WhileAnAnswerIsWaitedForItRests) {
  open();
  events.use = ListUse::later;
  write(idFilterText, L"Door");
  pump(300);
  EXPECT_EQ(shown(), 40);
  events.use = ListUse::now;
  EXPECT_TRUE(shows(1));
}

TEST_F(FilterTest, WhereNobodySitsThereIsNone) {
  open();
  write(idFilterText, L"Door");
  ASSERT_TRUE(shows(1));
  events.use = ListUse::never;
  view->setRows(&stored);
  pump(100);
  EXPECT_EQ(shown(), 40);
  EXPECT_FALSE(visible(idFilterText));
  keyWith(VK_CONTROL, item(idGrid), 'L');
  press(idFilter);
  EXPECT_FALSE(visible(idFilterText));
  events.use = ListUse::now;
  view->setRows(&stored);
  EXPECT_TRUE(shows(1)) << "as it was left";
}

TEST_F(FilterTest, DeadLikeEveryControlWhileInputIsOff) {
  open();
  view->setInputEnabled(false);
  for (const int id :
       {idFilterText, idFilterMajor, idFilterKinds, idFilterProcessor, idFilterClear, idFilterClose})
    EXPECT_FALSE(IsWindowEnabled(item(id))) << id;
  view->setInputEnabled(true);
  EXPECT_TRUE(IsWindowEnabled(item(idFilterText)));
}

TEST_F(FilterTest, FindingGoesThroughTheFaultsShown) {
  open();
  write(idFilterText, L"0B");  // the odd positions
  ASSERT_TRUE(shows(20));
  press(idLookUp);
  write(idLookUpText, L"line");
  events.hits = {4, 6, 7};
  press(idLookUpNext);
  EXPECT_EQ(events.lookUps.size(), 3U) << "two hits are hidden";
  EXPECT_EQ(selected(), 3) << "position 7";
  EXPECT_EQ(cell(selected(), 5), u"33");
}

TEST_F(FilterTest, TheBarFitsAnyWidthAndDensity) {
  open();
  for (const int dpi : {96, 120, 144, 192}) {
    const RECT place{0, 0, 1300, 900};
    SendMessageW(view->window(), WM_DPICHANGED, MAKEWPARAM(dpi, dpi), reinterpret_cast<LPARAM>(&place));
    for (const int wide : {500, 760, 1300}) {
      SetWindowPos(view->window(), nullptr, 0, 0, wide, 900, SWP_NOMOVE | SWP_NOZORDER);
      pump();
      RECT client;
      GetClientRect(view->window(), &client);
      std::vector<RECT> places;
      for (int id = idFilterTextLabel; id <= idFilterMessage; ++id) {
        if (!visible(id)) continue;
        RECT at;
        GetWindowRect(item(id), &at);
        MapWindowPoints(nullptr, view->window(), reinterpret_cast<POINT*>(&at), 2);
        EXPECT_GE(at.left, 0) << id;
        EXPECT_LE(at.right, client.right) << id << " at " << dpi << " in " << wide;
        for (const RECT& other : places) {
          RECT common;
          EXPECT_FALSE(IntersectRect(&common, &at, &other)) << id << " at " << dpi << " in " << wide;
        }
        places.push_back(at);
      }
      RECT grid;
      GetWindowRect(item(idGrid), &grid);
      MapWindowPoints(nullptr, view->window(), reinterpret_cast<POINT*>(&grid), 2);
      for (const RECT& part : places) EXPECT_GE(grid.top, part.bottom);
    }
  }
}

}  // namespace
}  // namespace vordane::window::win32
