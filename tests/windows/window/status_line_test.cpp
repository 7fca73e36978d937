// The status line shows its texts whole: each of each language, with the longest values that come up, at
// each density.
#include <map>

#include "language/message_numbers.h"
#include "platform/windows/window/fonts.h"
#include "platform/windows/window/geometry.h"
#include "platform/windows/window/status_line.h"
#include "text/text.h"
#include "text/utf8.h"
#include "windows/window/view_fixture.h"

namespace vordane::window::win32 {
namespace {

struct Tongue {
  const wchar_t* resource;
  std::u16string face, time;
};
const Tongue tongues[] = {{L"EN", u"Segoe UI", u"11/22/2026 11:59:59 PM"},
                          {L"RU", u"Segoe UI", u"22.11.2026 23:59:59"},
                          {L"JA", u"Meiryo UI", u"2026/11/22 23:59:59"}};
const std::u16string exchange = u"Telephone exchange of the hospital, north", most = u"8191",
                     stored = u"1000000";
const std::u16string engineText =
    u"attempt to write a readonly database "
    u"(C:\\QUILMAR32\\30000\\ADDINS\\DATABASE\\FAULT.MDB)";

const std::u16string savedFile =
    u"C:\\Users\\Technician\\Documents\\Faults of the north exchange 2026-11-22.csv";

using Messages = std::map<std::size_t, std::u16string>;
Messages messagesOf(const wchar_t* resource) {
  const HRSRC found = FindResourceW(nullptr, resource, MAKEINTRESOURCEW(10));
  if (found == nullptr) return {};
  const auto* bytes = static_cast<const char*>(LockResource(LoadResource(nullptr, found)));
  const std::u16string all = text::fromUtf8({bytes, SizeofResource(nullptr, found)});
  Messages messages;
  for (const std::u16string& line : text::split(all, u'\n')) {
    const std::size_t tab = line.find(u'\t');
    if (tab == std::u16string::npos || line[0] == u'#') continue;
    messages[std::stoul(text::toUtf8(line.substr(0, tab)))] = line.substr(tab + 1);
  }
  return messages;
}

// Every text that stands in the account's place.
std::vector<std::u16string> accounts(const Messages& m, const std::u16string& time) {
  std::vector<std::u16string> reasons;
  for (std::size_t number = message::reasonBusy; number <= message::reasonNoExchange; ++number)
    reasons.push_back(fillText(m.at(number), {engineText}));
  reasons.push_back(m.at(message::reasonCutShort));
  reasons.push_back(fillText(m.at(message::reasonUnreachable), {u"800706BA"}));
  const auto account = [&](std::size_t number) {
    return fillText(m.at(number), {time, most, most, most, most, exchange});
  };
  const std::u16string incomplete = account(message::statusListIncomplete);
  std::vector<std::u16string> lists{m.at(message::statusNoList), account(message::statusListComplete),
                                    fillText(m.at(message::statusStored), {exchange, time}),
                                    fillText(m.at(message::statusStoredUndated), {exchange})};
  for (const std::u16string& reason : reasons) lists.push_back(incomplete + u": " + reason);
  std::vector<std::u16string> all = lists;
  all.push_back(fillText(m.at(message::statusTextsIncomplete), {u"tForms, tControls, tMessages, tList"}));
  for (const std::size_t word :
       {message::clipboardHeld, message::copyNoData, message::outputStopped, message::outputGivenUp})
    all.push_back(m.at(word));
  for (const std::size_t word : {message::saveAtWork, message::copyAtWork, message::copyTooMany})
    all.push_back(fillText(m.at(word), {stored, stored}));
  for (const std::size_t word : {message::saveNoFile, message::saveNoRoom, message::saveHeld})
    all.push_back(fillText(m.at(word), {savedFile}));
  for (const std::size_t word : {message::saved, message::savedButGone})
    all.push_back(fillText(m.at(word), {stored, savedFile, stored}));
  all.push_back(fillText(m.at(message::outputFailed), {engineText}));
  for (const std::size_t guide : {message::statusGuideMissing, message::statusGuideNotShown})
    all.push_back(fillText(m.at(guide), {u"C:\\QUILMAR32\\30000\\ADDINS\\HELP\\GUIDE\\request.html"}) +
                  u"\n" + lists[1]);
  all.push_back(m.at(message::statusNetworkDrive) + u" " + lists[1]);
  for (const std::size_t attempt :
       {message::statusAttemptFailed, message::statusAckFailed, message::statusResetFailed})
    for (const std::u16string& reason : reasons)
      all.push_back(fillText(m.at(attempt), {time, reason, exchange}) + u"\n" + lists[1]);
  all.push_back(m.at(message::statusSimulated) + u" " + all.back());
  return all;
}

std::vector<std::u16string> counts(const Messages& m) {
  const std::u16string shown = fillText(m.at(message::shownCount), {stored, stored});
  return {fillText(m.at(message::statusFaultCount), {stored}),
          shown,
          fillText(m.at(message::rowsSelected), {shown, stored}),
          m.at(message::noticeReading),
          m.at(message::noticeDeleting),
          fillText(m.at(message::noticeStoring), {most, most}),
          fillText(m.at(message::noticeReadingOf), {stored, stored}),
          fillText(m.at(message::noticeDeletingOf), {stored, stored})};
}

HFONT fontOfWindow(HWND window) {
  return reinterpret_cast<HFONT>(SendMessageW(window, WM_GETFONT, 0, 0));
}

void expectAccountWhole(HWND account, const std::u16string& text) {
  ASSERT_EQ(windowText(account), text);
  const WindowDc dc(account);
  const Selected with(dc.get(), fontOfWindow(account));
  RECT room{};
  GetClientRect(account, &room);
  RECT needed{0, 0, room.right, 0};
  DrawTextW(dc.get(), wide(text), -1, &needed,
            DT_WORDBREAK | DT_NOPREFIX | DT_EXPANDTABS | DT_EDITCONTROL | DT_CALCRECT);
  EXPECT_LE(needed.bottom, room.bottom) << text::toUtf8(text);
  EXPECT_LE(needed.right, room.right) << text::toUtf8(text);
}

void expectPartWhole(HWND bar, int part, const std::u16string& text) {
  wchar_t shown[200] = L"";
  SendMessageW(bar, SB_GETTEXTW, static_cast<WPARAM>(part), reinterpret_cast<LPARAM>(shown));
  EXPECT_EQ(fromWide(shown, wcslen(shown)), text);
  EXPECT_LE(text.size(), 127U) << "a status bar cuts longer ones";
  RECT room{};
  SendMessageW(bar, SB_GETRECT, static_cast<WPARAM>(part), reinterpret_cast<LPARAM>(&room));
  EXPECT_LE(textWidth(fontOfWindow(bar), text) + 8, width(room)) << text::toUtf8(text);
  EXPECT_LE(lineHeight(fontOfWindow(bar)), height(room)) << text::toUtf8(text);
}

RECT onScreen(HWND window) {
  RECT place{};
  GetWindowRect(window, &place);
  return place;
}

void expectNotOnTheParts(HWND bar, HWND account) {
  RECT part{};
  SendMessageW(bar, SB_GETRECT, 1, reinterpret_cast<LPARAM>(&part));
  MapWindowPoints(bar, nullptr, reinterpret_cast<POINT*>(&part), 2);
  const RECT words = onScreen(account), whole = onScreen(bar);
  EXPECT_TRUE(words.right <= part.left || words.bottom <= whole.top);
}

class StatusLineTest : public ::testing::Test {
 protected:
  void SetUp() override { line.create(parent, 1, 2); }
  void TearDown() override { DestroyWindow(parent); }
  void show(const Tongue& tongue, int dpi, int designedWidth) {
    font = makeFont({tongue.face, 9.0}, dpi);
    line.setFont(font.get(), dpi);
    at = {scaled(designedWidth, dpi), scaled(600, dpi) / 3};
    place();
  }
  void place() {
    line.place({0, 0, at.cx, line.heightFor(static_cast<int>(at.cx), static_cast<int>(at.cy))});
  }
  void expectAllWhole(const Tongue& tongue) {
    const Messages messages = messagesOf(tongue.resource);
    ASSERT_FALSE(messages.empty());
    for (const std::u16string& count : counts(messages)) {
      line.setText(1, count);
      place();
      expectPartWhole(line.window(), 1, count);
    }
    for (const std::size_t number : {message::statusWide, message::statusNarrow}) {
      line.setText(2, messages.at(number));
      place();
      expectPartWhole(line.window(), 2, messages.at(number));
    }
    for (const std::u16string& account : accounts(messages, tongue.time)) {
      line.setText(0, account);
      place();
      expectAccountWhole(line.account(), account);
      EXPECT_TRUE(line.hiddenText().empty());
    }
    expectNotOnTheParts(line.window(), line.account());
  }

  HWND parent = CreateWindowW(L"STATIC", L"", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
  StatusLine line;
  Font font;
  SIZE at{};
};

TEST_F(StatusLineTest, noTextOfAnyLanguageIsCutAtTheDesignedWidth) {
  for (const int dpi : {96, 120, 144, 192})
    for (const Tongue& tongue : tongues) {
      SCOPED_TRACE(dpi);
      show(tongue, dpi, 1080 - 16);
      expectAllWhole(tongue);
    }
}

TEST_F(StatusLineTest, inANarrowWindowTheAccountStandsAboveTheParts) {
  show(tongues[1], 96, 520);
  line.setText(1, u"Неисправностей: 1000000");
  line.setText(2, u"processor");
  for (const std::u16string& account : accounts(messagesOf(L"RU"), tongues[1].time)) {
    line.setText(0, account);
    place();
    expectAccountWhole(line.account(), account);
    EXPECT_LE(onScreen(line.account()).bottom, onScreen(line.window()).top);
  }
  expectPartWhole(line.window(), 1, u"Неисправностей: 1000000");
}

TEST_F(StatusLineTest, aShortAccountTakesOneLineBesideTheParts) {
  show(tongues[0], 96, 1064);
  line.setText(1, u"Faults: 7");
  line.setText(0, u"No fault list received yet");
  place();
  EXPECT_LT(height(onScreen(line.window())), 2 * lineHeight(font.get()));
  expectNotOnTheParts(line.window(), line.account());
}

TEST_F(StatusLineTest, whatFindsNoRoomIsInTheToolTip) {
  show(tongues[0], 96, 1064);
  std::u16string endless;
  for (int n = 0; n < 400; ++n) endless += u"words without end ";
  line.setText(0, endless);
  place();
  EXPECT_LE(height(onScreen(line.window())), 200);
  EXPECT_EQ(line.hiddenText(), endless);
  line.setText(0, u"short");
  place();
  EXPECT_EQ(line.hiddenText(), u"");
}

TEST_F(StatusLineTest, aRemarkStandsUntilTheAccountChanges) {
  show(tongues[0], 96, 1064);
  line.setText(0, u"account");
  line.remark(u"remark");
  EXPECT_EQ(windowText(line.account()), u"remark");
  line.takeRemarkAway();
  EXPECT_EQ(windowText(line.account()), u"account");
  line.remark(u"remark");
  line.setText(0, u"later");
  EXPECT_EQ(windowText(line.account()), u"later");
}

// The window gives the line the lines that its texts want, at once and after a change of density.
TEST_F(ViewTest, theStatusLineGrowsWithItsTextAndShrinksAgain) {
  const Messages messages = messagesOf(L"RU");
  const std::u16string longest = accounts(messages, tongues[1].time).back();
  const auto pane = [&] { return onScreen(item(idPane)); };
  view->setStatus(accountPart, u"short");
  const int before = height(onScreen(item(idStatus)));
  view->setStatus(countPart, counts(messages).front());
  view->setStatus(processorPart, messages.at(message::statusWide));
  view->setStatus(accountPart, longest);
  EXPECT_GT(height(onScreen(item(idStatus))), before);
  EXPECT_LE(pane().bottom, onScreen(item(idAccount)).top);
  expectAccountWhole(item(idAccount), longest);
  RECT where = onScreen(view->window());
  where.right = where.left + 1300;
  SendMessageW(view->window(), WM_DPICHANGED, MAKEWPARAM(120, 120), reinterpret_cast<LPARAM>(&where));
  pump();
  expectAccountWhole(item(idAccount), longest);
  EXPECT_EQ(LOWORD(SendMessageW(item(idStatus), SB_GETPARTS, 0, 0)), 3);
  view->setStatus(accountPart, u"short");
  EXPECT_LT(height(onScreen(item(idStatus))), 2 * before);
}

}  // namespace
}  // namespace vordane::window::win32
