// The window read in another language: what it shows, its system menu, its keys.
#include <gmock/gmock.h>

#include "platform/windows/window/handles.h"
#include "windows/window/view_fixture.h"

namespace vordane::window::win32 {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class LanguageTest : public ViewTest {
 protected:
  void read(Language language) {
    texts.speak(language);
    view->setWords(language == Language::english ? nullptr : &words);
    pump();
  }
  std::u16string title() { return windowText(view->window()); }
  std::u16string headingText(int column) {
    std::array<wchar_t, 100> text{};
    HDITEMW item{};
    item.mask = HDI_TEXT;
    item.pszText = text.data();
    item.cchTextMax = static_cast<int>(text.size());
    Header_GetItem(heading(), column, &item);
    return fromWide(text.data(), wcslen(text.data()));
  }
  std::u16string cell(int row, int column) {
    std::array<wchar_t, 400> text{};
    ListView_GetItemText(this->item(idGrid), row, column, text.data(), static_cast<int>(text.size()));
    return fromWide(text.data(), wcslen(text.data()));
  }
  HMENU openedMenu() {
    const HMENU menu = GetSystemMenu(view->window(), FALSE);
    SendMessageW(view->window(), WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(menu), MAKELPARAM(0, TRUE));
    return menu;
  }
  static std::u16string entry(HMENU menu, UINT command) {
    std::array<wchar_t, 100> text{};
    const int length =
        GetMenuStringW(menu, command, text.data(), static_cast<int>(text.size()), MF_BYCOMMAND);
    return fromWide(text.data(), static_cast<std::size_t>(length));
  }
  static UINT stateOf(HMENU menu, UINT command) {
    return GetMenuState(menu, command, MF_BYCOMMAND) & (MF_CHECKED | MF_GRAYED);
  }

  Form words = makeForm(Language::russian);
};

TEST_F(LanguageTest, CaptionsTitleHeadingsAndLampsChangeAtOnceAndBack) {
  const Form own = makeForm(Language::english);
  const auto captionOf = [](const Form& form, std::u16string_view name) {
    return const_cast<Form&>(form).control(name).text(u"Caption");
  };
  read(Language::russian);
  EXPECT_EQ(title(), caption(Language::russian));
  EXPECT_EQ(windowText(item(idRequest)), captionOf(words, u"cmdRequest"));
  EXPECT_NE(windowText(item(idRequest)), captionOf(own, u"cmdRequest"));
  EXPECT_EQ(headingText(2), words.control(gridName).text(u"Columns(2).Caption"));
  EXPECT_EQ(windowText(item(idMajor)), u"ГЛАВНАЯ: нет");
  EXPECT_EQ(form.control(u"cmdRequest").text(u"Caption"), captionOf(own, u"cmdRequest")) << "a layer only";
  read(Language::english);
  EXPECT_EQ(title(), caption(Language::english));
  EXPECT_EQ(windowText(item(idRequest)), captionOf(own, u"cmdRequest"));
  EXPECT_EQ(headingText(2), form.control(gridName).text(u"Columns(2).Caption"));
  EXPECT_EQ(windowText(item(idMajor)), u"MAJOR: clear");
}

TEST_F(LanguageTest, WhatTheFormSaysLaterIsShownInIt) {
  read(Language::russian);
  const std::u16string ask = words.control(u"cmdRequest").text(u"Caption");
  form.control(u"cmdRequest").set(u"Caption", std::u16string(u"Other"));
  EXPECT_EQ(windowText(item(idRequest)), ask);
  form.control(u"txtTimeTag").set(u"Text", std::u16string(u"26/11/20"));
  EXPECT_EQ(windowText(item(idReceived)), u"26/11/20") << "no caption";
  words.self().set(u"Caption", std::u16string(u"\u0422 (PBX-2)"));
  form.self().set(u"Caption", std::u16string(u"T (PBX-2)"));
  EXPECT_EQ(title(), u"\u0422 (PBX-2)");
}

TEST_F(LanguageTest, ATextThatItLacksStaysAsItIs) {
  words.control(u"cmdReset").set(u"Caption", std::u16string());
  read(Language::russian);
  EXPECT_EQ(windowText(item(idReset)), form.control(u"cmdReset").text(u"Caption"));
}

TEST_F(LanguageTest, RowsAndPaneAreReadAnewAndTheSelectionStays) {
  select(3);
  const std::u16string before = cell(3, 4);
  rows.readBefore = u"Она: ";
  read(Language::russian);
  EXPECT_EQ(cell(3, 4), u"Она: " + before);
  EXPECT_TRUE(windowText(item(idPane)).starts_with(u"Она: "));
  EXPECT_EQ(ListView_GetNextItem(item(idGrid), -1, LVNI_SELECTED), 3);
  rows.readBefore.clear();
  read(Language::english);
  EXPECT_EQ(cell(3, 4), before);
}

TEST_F(LanguageTest, TheSystemMenuOffersTheLanguagesAndTellsWhichIsRead) {
  events.offered = {{u"English", u"Русский", u"日本語"}, 0};
  HMENU menu = openedMenu();
  EXPECT_EQ(entry(menu, languageCommand(1)), u"Русский");
  EXPECT_EQ(entry(menu, languageCommand(2)), u"日本語");
  EXPECT_EQ(stateOf(menu, languageCommand(0)), UINT{MF_CHECKED});
  EXPECT_EQ(stateOf(menu, languageCommand(1)), UINT{MF_ENABLED});
  const int entries = GetMenuItemCount(menu);
  SendMessageW(view->window(), WM_SYSCOMMAND, languageCommand(1), 0);
  EXPECT_THAT(events.chosenLanguages, ElementsAre(1U));
  events.offered.chosen = 1;
  menu = openedMenu();
  EXPECT_EQ(GetMenuItemCount(menu), entries) << "they are not added once more";
  EXPECT_EQ(stateOf(menu, languageCommand(0)), UINT{MF_ENABLED});
  EXPECT_EQ(stateOf(menu, languageCommand(1)), UINT{MF_CHECKED});
  events.offered = {{u"English"}, 0};
  EXPECT_EQ(GetMenuItemCount(openedMenu()), entries - 4)
      << "one is no choice: three entries and their line go";
}

TEST_F(LanguageTest, TheEntriesAreDeadLikeEveryControlWhileAnAnswerIsWaitedFor) {
  events.offered = {{u"English", u"Русский"}, 0};
  events.use = ListUse::later;
  EXPECT_EQ(stateOf(openedMenu(), languageCommand(1)), UINT{MF_GRAYED});
  view->setInputEnabled(false);
  key(view->window(), VK_F8);
  EXPECT_EQ(events.storedAsked, 0);
}

TEST_F(LanguageTest, TheMenusOwnEntriesAreWordedAnew) {
  events.offered = {{u"English", u"Русский"}, 0};
  const std::u16string before = entry(openedMenu(), guideCommand);
  read(Language::russian);
  EXPECT_EQ(entry(openedMenu(), guideCommand), texts.text(ViewText::openGuide));
  read(Language::english);
  EXPECT_EQ(entry(openedMenu(), guideCommand), before);
}

TEST_F(LanguageTest, F8AsksForTheStoredTexts) {
  key(item(idGrid), VK_F8);
  EXPECT_EQ(events.storedAsked, 1);
  key(item(idRequest), VK_F8);
  EXPECT_EQ(events.storedAsked, 2);
}

TEST_F(LanguageTest, AWindowThatIsMadeAnewHasTheFormsOwnTexts) {
  read(Language::russian);
  texts.speak(Language::english);
  view->attach(form, events);
  pump();
  EXPECT_EQ(windowText(item(idRequest)), form.control(u"cmdRequest").text(u"Caption"));
}

}  // namespace
}  // namespace vordane::window::win32
