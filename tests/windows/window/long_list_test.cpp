// A long list is in the window before all of it is read.
#include "fakes/memory_rows.h"
#include "platform/windows/window/handles.h"
#include "text/numbers.h"
#include "windows/window/view_fixture.h"

namespace vordane::window::win32 {
namespace {

class LongList : public ViewTest {
 protected:
  void show(std::size_t pieces) {
    stored.rows.resize(40);
    stored.unread = pieces;
    view->setRows(&stored);
    view->setStatus(countPart, u"40 faults");
  }
  HWND grid() const { return item(idGrid); }
  int shown() const { return ListView_GetItemCount(grid()); }
  bool readToItsEnd() {
    return pumpUntil([&] { return stored.unread == 0; });
  }
  std::u16string countWords() const {
    wchar_t text[200];
    SendMessageW(item(idStatus), SB_GETTEXTW, countPart, reinterpret_cast<LPARAM>(text));
    return fromWide(text, wcslen(text));
  }

  fakes::MemoryRows stored;
};

TEST_F(LongList, IsShownAndReadOnBetweenMessages) {
  show(1'000'000);
  EXPECT_EQ(shown(), 40);
  EXPECT_EQ(stored.unread, 1'000'000U) << "not before it is shown";
  ASSERT_TRUE(pumpUntil([&] { return stored.unread < 1'000'000; }));
  key(grid(), VK_DOWN);
  EXPECT_EQ(ListView_GetNextItem(grid(), -1, LVNI_SELECTED), 1) << "a person is heard meanwhile";
  stored.unread = 3;
  ASSERT_TRUE(readToItsEnd());
  EXPECT_EQ(shown(), 40);
  EXPECT_EQ(ListView_GetNextItem(grid(), -1, LVNI_SELECTED), 1);
  EXPECT_EQ(countWords(), u"40 faults");
}

TEST_F(LongList, IsFilteredWhenAllIsRead) {
  stored.rows.resize(40);
  stored.rows[7].description = u"door open";
  show(5);
  press(idFilter);
  pump();
  SetWindowTextW(item(idFilterText), L"door");
  ASSERT_TRUE(pumpUntil([&] { return shown() == 1; }));
  EXPECT_EQ(stored.unread, 0U);
}

TEST_F(LongList, WhereNobodySitsNothingIsReadOn) {
  events.use = ListUse::never;
  show(5);
  fakes::MemoryRows other;
  other.rows.resize(2);
  other.unread = 1;
  pump();
  EXPECT_EQ(stored.unread, 5U);
  events.use = ListUse::now;
  view->setRows(&other);
  ASSERT_TRUE(pumpUntil([&] { return other.unread == 0; }));
  EXPECT_EQ(stored.unread, 5U);
  view->setRows(nullptr);
}

TEST_F(LongList, HasItsTrueLengthInTheEndWhereTheFileWasWrong) {
  for (const std::size_t found : {55U, 12U}) {
    stored.sizeWhenRead = found;
    show(3);
    EXPECT_EQ(shown(), 40);
    ASSERT_TRUE(readToItsEnd());
    ASSERT_TRUE(pumpUntil([&] { return shown() == static_cast<int>(found); }));
    const auto number = text::decimal(static_cast<std::int64_t>(found));
    EXPECT_EQ(countWords(), number + u" of " + number + u" shown");
  }
  stored.sizeWhenRead.reset();
  show(0);
  EXPECT_EQ(countWords(), u"40 faults");
}

}  // namespace
}  // namespace vordane::window::win32
