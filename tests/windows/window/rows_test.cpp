// Rows of the drawn window as a person works with them: found and marked, several selected, copied, saved.
#include <windows.h>

#include <commdlg.h>
#include <dlgs.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "fakes/memory_rows.h"
#include "platform/windows/window/geometry.h"
#include "platform/windows/window/handles.h"
#include "platform/windows/window/theme.h"
#include "text/utf8.h"
#include "windows/window/listener.h"
#include "windows/window/view_fixture.h"

namespace vordane::window::win32 {
namespace {

namespace fs = std::filesystem;
using fakes::MemoryRows;

// What answers the dialog that asks for a file, and the question whether to replace one, while it stands.
struct Answering {
  static inline std::wstring name;
  static inline bool given = false;

  explicit Answering(const fs::path& file) {
    name = file.wstring();
    given = false;
    timer_ = SetTimer(nullptr, 0, 50, answer);
  }
  ~Answering() { KillTimer(nullptr, timer_); }

  static BOOL CALLBACK look(HWND window, LPARAM) {
    wchar_t type[16] = L"";
    GetClassNameW(window, type, 16);
    if (wcscmp(type, L"#32770") != 0 || !IsWindowVisible(window)) return TRUE;
    HWND box = GetDlgItem(window, edt1);
    if (box == nullptr) box = GetDlgItem(window, cmb13);
    if (box != nullptr && !std::exchange(given, true)) {
      SendMessageW(box, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(name.c_str()));
      PostMessageW(window, WM_COMMAND, name.empty() ? IDCANCEL : IDOK, 0);
    } else if (box == nullptr) {
      PostMessageW(window, WM_COMMAND, IDYES, 0);
    }
    return TRUE;
  }
  static void CALLBACK answer(HWND, UINT, UINT_PTR, DWORD) {
    EnumThreadWindows(GetCurrentThreadId(), look, 0);
  }

 private:
  UINT_PTR timer_;
};

class RowsTest : public ViewTest {
 protected:
  void SetUp() override {
    ViewTest::SetUp();
    for (int i = 0; i < 40; ++i)
      stored.rows.push_back({i % 2 == 0 ? u"0A" : u"0B", i % 5 == 0 ? u"MJ" : u"MN", u"2026/11/01 10:00",
                             u"MP   ",
                             std::u16string(u"Line fault\r\nport ") + static_cast<char16_t>(u'A' + i % 26) +
                                 u"\r\nData [0F 3E]",
                             40 - i});
    view->setRows(&stored);
    view->setStatus(countPart, u"40 faults");
    view->setStatus(accountPart, u"account");
    pump();
    SetFocus(grid());
    fs::create_directories(folder);
  }
  void TearDown() override {
    ViewTest::TearDown();
    std::error_code ignored;
    fs::remove_all(folder, ignored);
  }

  HWND grid() const { return item(idGrid); }
  int selected() const { return ListView_GetNextItem(grid(), -1, LVNI_SELECTED); }
  std::u16string countWords() const {
    wchar_t text[200];
    SendMessageW(item(idStatus), SB_GETTEXTW, countPart, reinterpret_cast<LPARAM>(text));
    return fromWide(text, wcslen(text));
  }
  std::u16string account() const { return windowText(item(idAccount)); }
  std::u16string found() const { return windowText(item(idLookUpMessage)); }
  POINT middleOf(int row) const {
    RECT place{};
    ListView_GetItemRect(grid(), row, &place, LVIR_BOUNDS);
    return {place.left + 20, (place.top + place.bottom) / 2};
  }
  void click(int row, WPARAM held = 0) {
    const POINT at = middleOf(row);
    PostMessageW(grid(), WM_LBUTTONDOWN, MK_LBUTTON | held, MAKELPARAM(at.x, at.y));
    PostMessageW(grid(), WM_LBUTTONUP, held, MAKELPARAM(at.x, at.y));
    pump();
  }
  std::u16string clipboardText() const {
    std::u16string text;
    if (!OpenClipboard(view->window())) return text;
    if (const HANDLE memory = GetClipboardData(CF_UNICODETEXT)) {
      const auto* words = static_cast<const wchar_t*>(GlobalLock(memory));
      text = fromWide(words, wcslen(words));
      GlobalUnlock(memory);
    }
    CloseClipboard();
    return text;
  }
  std::string clipboardPage() const {
    std::string text;
    if (!OpenClipboard(view->window())) return text;
    if (const HANDLE memory = GetClipboardData(RegisterClipboardFormatW(L"HTML Format"))) {
      text = static_cast<const char*>(GlobalLock(memory));
      GlobalUnlock(memory);
    }
    CloseClipboard();
    return text;
  }
  void copy() {
    keyWith(VK_CONTROL, grid(), 'C');
    ASSERT_TRUE(pumpUntil([&] { return GetClipboardOwner() == view->window(); }));
  }
  static void emptyClipboard() {
    ASSERT_TRUE(OpenClipboard(nullptr));
    EmptyClipboard();
    CloseClipboard();
  }
  // What the entry with that access key of the row's menu puts there.
  std::u16string copiedFromMenu(char accessKey) {
    emptyClipboard();
    const Listener opening(view->window(), [&](UINT message, WPARAM, LPARAM) {
      if (message == WM_ENTERMENULOOP) PostMessageW(view->window(), WM_CHAR, accessKey, 1);
    });
    SendMessageW(view->window(), WM_CONTEXTMENU, reinterpret_cast<WPARAM>(grid()), MAKELPARAM(-1, -1));
    EXPECT_TRUE(pumpUntil([&] { return GetClipboardOwner() == view->window(); }));
    return clipboardText();
  }
  // The colours of the row's pixels: how many are those of a mark.
  int markedPixels(int row) {
    RECT place{};
    ListView_GetItemRect(grid(), row, &place, LVIR_BOUNDS);
    RedrawWindow(grid(), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    const WindowDc dc(grid());
    int marked = 0;
    for (int y = place.top; y < place.bottom; ++y)
      for (int x = place.left; x < place.left + 700; ++x)
        if (GetPixel(dc.get(), x, y) == currentPalette().mark) ++marked;
    return marked;
  }
  static std::string contents(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }
  void saveAs(const fs::path& file) {
    const Answering answering(file);
    keyWith(VK_CONTROL, grid(), 'S');
  }

  const fs::path folder =
      fs::temp_directory_path() / ("vordane-rows-" + std::to_string(GetCurrentProcessId()));
  MemoryRows stored;
};

// --- finding

TEST_F(RowsTest, FindingMarksEveryHitAndSaysWhichOfHowMany) {
  EXPECT_EQ(markedPixels(2), 0);
  press(idLookUp);
  SetWindowTextW(item(idLookUpText), L"PORT c");
  ASSERT_TRUE(pumpUntil([&] { return found() == u"2 found"; }));
  EXPECT_GT(markedPixels(2), 20);
  EXPECT_EQ(markedPixels(3), 0);
  select(28);
  EXPECT_EQ(found(), u"2 of 2");
  EXPECT_NE(windowText(item(idPane)).find(u"port C"), std::u16string::npos);
  events.hit = 2;
  key(grid(), VK_F3);
  EXPECT_EQ(found(), u"1 of 2. Went on from the top.");
  select(3);
  EXPECT_EQ(found(), u"2 found");
  SetWindowTextW(item(idLookUpText), L"nothing like it");
  ASSERT_TRUE(pumpUntil([&] { return found() == u"No fault shown here holds this text."; }));
  SetFocus(item(idLookUpText));
  key(item(idLookUpText), VK_ESCAPE);
  EXPECT_EQ(markedPixels(2), 0);
}

TEST_F(RowsTest, AFilterHasTheHitsCountedAnew) {
  press(idLookUp);
  SetWindowTextW(item(idLookUpText), L"port");
  ASSERT_TRUE(pumpUntil([&] { return found() == u"1 of 40"; }));
  press(idFilter);
  pump();
  SetWindowTextW(item(idFilterText), L"0B");
  ASSERT_TRUE(pumpUntil([&] { return found() == u"1 of 20"; }));
  stored.rows.resize(10);
  view->setRows(&stored);
  ASSERT_TRUE(pumpUntil([&] { return found() == u"1 of 5"; }));
}

TEST_F(RowsTest, CountingRestsWhileAnAnswerIsWaitedFor) {
  events.use = ListUse::later;
  press(idLookUp);
  SetWindowTextW(item(idLookUpText), L"port");
  pump(300);
  EXPECT_EQ(found(), u"");
  events.use = ListUse::now;
  EXPECT_TRUE(pumpUntil([&] { return found() == u"1 of 40"; }));
  events.use = ListUse::never;
  view->setRows(&stored);
  pump(100);
  EXPECT_EQ(markedPixels(2), 0) << "where nobody sits nothing is marked";
}

// --- selecting

TEST_F(RowsTest, ShiftAndArrowsSelectAStretchAndTheStatusLineCountsIt) {
  select(4);
  EXPECT_EQ(countWords(), u"40 faults");
  keyWith(VK_SHIFT, grid(), VK_DOWN);
  keyWith(VK_SHIFT, grid(), VK_DOWN);
  EXPECT_EQ(countWords(), u"40 faults, 3 selected");
  EXPECT_EQ(selected(), 6) << "the fault that the window speaks of";
  keyWith(VK_SHIFT, grid(), VK_HOME);
  EXPECT_EQ(countWords(), u"40 faults, 5 selected");
  key(grid(), VK_DOWN);
  EXPECT_EQ(countWords(), u"40 faults");
  EXPECT_EQ(selected(), 1);
}

TEST_F(RowsTest, CtrlTakesRowsInAndOutOneByOne) {
  select(4);
  keyWith(VK_CONTROL, grid(), VK_DOWN);
  keyWith(VK_CONTROL, grid(), VK_DOWN);
  EXPECT_EQ(selected(), 6);
  EXPECT_EQ(countWords(), u"40 faults");
  keyWith(VK_CONTROL, grid(), VK_SPACE);
  EXPECT_EQ(countWords(), u"40 faults, 2 selected");
  copy();
  EXPECT_EQ(clipboardText(),
            u"Kind\tClass\tDate and time\tProcessor\tFault\tNo.\tNote\tNote by\tNote written\r\n"
            u"0A\tMN\t2026/11/01 10:00\tMP\tLine fault · port E · Data [0F 3E]\t36\t\t\t\r\n"
            u"0A\tMN\t2026/11/01 10:00\tMP\tLine fault · port G · Data [0F 3E]\t34\t\t\t\r\n");
}

TEST_F(RowsTest, TheMouseSelectsWithShiftAndCtrl) {
  click(2);
  EXPECT_EQ(selected(), 2);
  click(5, MK_SHIFT);
  EXPECT_EQ(selected(), 5);
  EXPECT_EQ(countWords(), u"40 faults, 4 selected");
  click(3, MK_CONTROL);
  EXPECT_EQ(countWords(), u"40 faults, 3 selected");
  EXPECT_EQ(selected(), 3) << "the keyboard stands there";
  click(7, MK_CONTROL);
  EXPECT_EQ(countWords(), u"40 faults, 4 selected");
  click(1);
  EXPECT_EQ(countWords(), u"40 faults");
  EXPECT_EQ(selected(), 1);
}

TEST_F(RowsTest, EverySelectedRowIsDrawnAsOneWithTheFocusAndWithout) {
  const auto ground = [&](int row) {
    RECT place{};
    ListView_GetItemRect(grid(), row, &place, LVIR_BOUNDS);
    UpdateWindow(grid());
    const WindowDc dc(grid());
    return GetPixel(dc.get(), place.left + 12, place.bottom - 3);
  };
  select(2);
  keyWith(VK_SHIFT, grid(), VK_DOWN);
  EXPECT_EQ(ground(2), currentPalette().selected);
  EXPECT_EQ(ground(3), currentPalette().selected);
  EXPECT_NE(ground(4), currentPalette().selected);
  SetFocus(item(idRequest));
  EXPECT_EQ(ground(2), currentPalette().resting);
  EXPECT_EQ(ground(3), currentPalette().resting);
  select(5);
  EXPECT_NE(ground(2), currentPalette().resting);
}

TEST_F(RowsTest, WhileAStepHoldsTheFileWhatIsDrawnStaysAndTheRestComesBehindIt) {
  const auto said = [&](int row) {
    wchar_t text[200] = L"";
    ListView_GetItemText(grid(), row, 0, text, 200);
    return fromWide(text, wcslen(text));
  };
  testing::FakeRows many(testing::Language::english, 1000);
  view->setRows(&many);
  pump();
  view->paintNow();
  const std::u16string drawn = said(0);
  EXPECT_NE(drawn, u"");
  many.held = true;
  InvalidateRect(grid(), nullptr, TRUE);
  view->paintNow();
  EXPECT_EQ(said(0), drawn);
  EXPECT_EQ(said(500), u"");
  many.held = false;
  EXPECT_NE(said(500), u"");
}

TEST_F(RowsTest, AllOfAMillionAreSelectedWithoutReadingThem) {
  testing::FakeRows million(testing::Language::english, 1'000'000);
  view->setRows(&million);
  pump();
  view->paintNow();
  million.fetched = 0;
  keyWith(VK_CONTROL, grid(), 'A');
  view->paintNow();
  EXPECT_EQ(countWords(), u"40 faults, 1000000 selected");
  EXPECT_LT(million.fetched, 60U);
  EXPECT_EQ(selected(), 0);
  keyWith(VK_CONTROL, grid(), 'C');
  EXPECT_EQ(account(),
            u"1000000 faults are too many for the clipboard, which takes 20000. Save them instead (Ctrl+S).");
  EXPECT_LT(million.fetched, 60U);
  view->setRows(nullptr);
}

TEST_F(RowsTest, OtherRowsAreSelectedOneAlone) {
  keyWith(VK_CONTROL, grid(), 'A');
  EXPECT_EQ(countWords(), u"40 faults, 40 selected");
  view->setRows(&stored);
  EXPECT_EQ(countWords(), u"40 faults");
  keyWith(VK_CONTROL, grid(), 'A');
  press(idFilter);
  pump();
  SetWindowTextW(item(idFilterText), L"0B");
  ASSERT_TRUE(pumpUntil([&] { return countWords() == u"20 of 40 shown"; }));
}

// --- copying

TEST_F(RowsTest, ACopyIsTextAndATableAtOnce) {
  select(0);
  copy();
  EXPECT_EQ(clipboardText(),
            u"0A\tMJ\t2026/11/01 10:00\tMP\tLine fault · port A · Data [0F 3E]\t40\t\t\t\r\n");
  const std::string page = clipboardPage();
  EXPECT_NE(page.find("<!--StartFragment--><table>"), std::string::npos);
  EXPECT_NE(page.find("Line fault<span><br>port A<br>Data [0F 3E]</span>"), std::string::npos);
  EXPECT_EQ(account(), u"account");
}

TEST_F(RowsTest, TheRowsMenuCopiesMessagesDataBytesAndCsv) {
  stored.rows[1].description = u"Line fault\r\nno data came";
  select(0);
  keyWith(VK_SHIFT, grid(), VK_DOWN);
  keyWith(VK_SHIFT, grid(), VK_DOWN);
  EXPECT_EQ(copiedFromMenu('m'),
            u"Line fault\r\nport A\r\nData [0F 3E]\r\n\r\nLine fault\r\nno data came\r\n\r\n"
            u"Line fault\r\nport C\r\nData [0F 3E]\r\n");
  EXPECT_EQ(clipboardPage(), "");
  EXPECT_EQ(copiedFromMenu('b'), u"L\r\ni\r\nn\r\n") << "where the rows say that the data bytes are";
  stored.knowsData = false;
  EXPECT_EQ(copiedFromMenu('b'), u"0F 3E\r\n0F 3E\r\n") << "a fault without data bytes has no line";
  EXPECT_EQ(clipboardPage(), "");
  EXPECT_EQ(
      copiedFromMenu('v'),
      u"\"Kind\",\"Class\",\"Date and time\",\"Processor\",\"Fault\",\"No.\",\"Note\",\"Note by\","
      u"\"Note written\"\r\n"
      u"\"0A\",\"MJ\",\"2026/11/01 10:00\",\"MP   \",\"Line fault\r\nport A\r\nData [0F 3E]\","
      u"40,\"\",\"\",\"\"\r\n"
      u"\"0B\",\"MN\",\"2026/11/01 10:00\",\"MP   \",\"Line fault\r\nno data came\",39,\"\",\"\",\"\"\r\n"
      u"\"0A\",\"MN\",\"2026/11/01 10:00\",\"MP   \",\"Line fault\r\nport C\r\nData [0F 3E]\","
      u"38,\"\",\"\",\"\"\r\n");
  EXPECT_EQ(account(), u"account");
}

// --- saving

TEST_F(RowsTest, WhatIsShownIsSavedUnderTheNameGiven) {
  press(idFilter);
  pump();
  SetWindowTextW(item(idFilterText), L"port B");
  ASSERT_TRUE(pumpUntil([&] { return countWords() == u"2 of 40 shown"; }));
  saveAs(folder / L"список");
  const fs::path file = folder / L"список.csv";
  ASSERT_TRUE(pumpUntil([&] { return account() == u"2 faults saved in " + file.u16string(); }));
  EXPECT_EQ(contents(file),
            "\xEF\xBB\xBF\"Kind\",\"Class\",\"Date and "
            "time\",\"Processor\",\"Fault\",\"No.\",\"Note\",\"Note by\",\"Note written\"\r\n"
            "\"0B\",\"MN\",\"2026/11/01 10:00\",\"MP   \",\"Line fault\r\nport B\r\nData [0F "
            "3E]\",39,\"\",\"\",\"\"\r\n"
            "\"0B\",\"MN\",\"2026/11/01 10:00\",\"MP   \",\"Line fault\r\nport B\r\nData [0F "
            "3E]\",13,\"\",\"\",\"\"\r\n");
  saveAs(folder / L"list.html");
  ASSERT_TRUE(
      pumpUntil([&] { return account() == u"2 faults saved in " + (folder / L"list.html").u16string(); }));
  const std::string page = contents(folder / L"list.html");
  EXPECT_NE(page.find("<h1>Fault List (PBX-1)</h1>"), std::string::npos);
  EXPECT_NE(
      page.find("<p>List received 2026/11/20 21:14:05 · MAJOR: clear · MINOR: clear · 2 of 40 shown</p>"),
      std::string::npos)
      << page;
  saveAs(folder / L"list.json");
  ASSERT_TRUE(
      pumpUntil([&] { return account() == u"2 faults saved in " + (folder / L"list.json").u16string(); }));
  EXPECT_NE(contents(folder / L"list.json")
                .find("\"exchange\":\"PBX-1\",\"received\":\"2026/11/20 21:14:05\",\"stored\":40"),
            std::string::npos);
}

TEST_F(RowsTest, AFileThatAnotherProgramHoldsStaysAndItIsSaid) {
  const fs::path file = folder / L"held.csv";
  std::ofstream(file) << "before";
  const HANDLE held =
      CreateFileW(file.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(held, INVALID_HANDLE_VALUE);
  saveAs(file);
  EXPECT_TRUE(pumpUntil([&] {
    return account() == u"Nothing was saved: another program holds " + file.u16string() +
                            u". Close it there, or choose another name.";
  }));
  CloseHandle(held);
  EXPECT_EQ(contents(file), "before");
  EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 1);
  saveAs(file);
  EXPECT_TRUE(pumpUntil([&] { return account() == u"40 faults saved in " + file.u16string(); }));
  EXPECT_TRUE(contents(file).starts_with("\xEF\xBB\xBF"));
}

class SavingMany : public RowsTest {
 protected:
  void begin() {
    view->setRows(&million);
    pump();
    saveAs(file);
    ASSERT_TRUE(pumpUntil([&] { return account().starts_with(u"Saving: "); }));
  }
  bool nothingThere() const { return fs::is_empty(folder); }

  testing::FakeRows million{testing::Language::english, 3'000'000};
  const fs::path file = folder / L"million.csv";
};

TEST_F(SavingMany, EscStopsItAndNothingIsLeft) {
  begin();
  EXPECT_EQ(account().substr(account().find(u" of")), u" of 3000000 ... Esc stops it.");
  key(grid(), VK_DOWN);
  EXPECT_EQ(selected(), 1) << "the list can be read meanwhile";
  key(grid(), VK_ESCAPE);
  EXPECT_EQ(account(), u"Stopped. Nothing was written.");
  EXPECT_TRUE(nothingThere());
  view->setRows(nullptr);
}

TEST_F(SavingMany, ARefreshGivesItUpAndSaysSo) {
  begin();
  events.use = ListUse::later;
  view->setRows(&stored);
  EXPECT_TRUE(nothingThere()) << "at once";
  view->setStatus(accountPart, u"a new list");
  events.use = ListUse::now;
  EXPECT_TRUE(pumpUntil(
      [&] { return account() == u"The list was renewed meanwhile, and nothing was written. Do it again."; }));
}

TEST_F(SavingMany, AWindowThatGoesLeavesNoHalfFile) {
  begin();
  view->detach();
  EXPECT_TRUE(nothingThere());
}

TEST_F(RowsTest, WhereNobodySitsOrAnAnswerIsWaitedForNothingIsSaved) {
  for (const ListUse use : {ListUse::never, ListUse::later}) {
    events.use = use;
    keyWith(VK_CONTROL, grid(), 'S');  // no dialog comes, which would stand for ever
  }
  EXPECT_TRUE(fs::is_empty(folder));
}

}  // namespace
}  // namespace vordane::window::win32
