// Notes to faults in the drawn window, read and written as a person does it.
#include "fakes/memory_rows.h"
#include "platform/windows/window/clipboard.h"
#include "platform/windows/window/handles.h"
#include "windows/window/view_fixture.h"

namespace vordane::window::win32 {
namespace {

using database::Note;
using fakes::MemoryRows;

const Note cable{u"NORTH\\anna", u"2026/11/21 08:15", u"cable to be replaced on Monday"};

class NoteTest : public ViewTest {
 protected:
  // Ten faults, numbers 10 to 1 from the top; 9 has a note.
  void SetUp() override {
    ViewTest::SetUp();
    for (int i = 0; i < 10; ++i)
      stored.rows.push_back({u"0A", u"MJ", u"2026/11/20 10:00", u"MP   ", u"Line fault\r\nport 3", 10 - i});
    stored.kept.notes[9] = cable;
    view->setRows(&stored);
    pump();
    SetFocus(item(idGrid));
  }
  bool visible(int id) const { return (GetWindowLongPtrW(item(id), GWL_STYLE) & WS_VISIBLE) != 0; }
  bool fixed() const { return (GetWindowLongPtrW(item(idNoteText), GWL_STYLE) & ES_READONLY) != 0; }
  std::u16string words(int id) const { return windowText(item(id)); }
  std::u16string account() const { return words(idAccount); }
  int selected() const { return ListView_GetNextItem(item(idGrid), -1, LVNI_SELECTED); }
  int paneTall() const {
    RECT pane{};
    GetClientRect(item(idPane), &pane);
    return static_cast<int>(pane.bottom);
  }
  void ask() { key(GetFocus(), VK_F2); }
  void write(const std::u16string& text) { SetWindowTextW(item(idNoteText), wide(text)); }
  void keep() { key(item(idNoteText), VK_RETURN); }
  std::u16string keptText(std::int64_t fault) { return stored.kept.of(fault).value_or(Note{}).text; }

  MemoryRows stored;
};

TEST_F(NoteTest, WhatComesLaterStandsWhereItBelongsAndLooksLikeTheRest) {
  const std::vector<int> tabOrder = {idClose,
                                     idLookUpLabel,
                                     idLookUpText,
                                     idLookUpNext,
                                     idLookUpClose,
                                     idLookUpMessage,  //
                                     idFilterTextLabel,
                                     idFilterText,
                                     idFilterMajor,
                                     idFilterMinor,
                                     idFilterNoted,
                                     idFilterKinds,
                                     idFilterProcessorLabel,
                                     idFilterProcessor,
                                     idFilterSinceLabel,
                                     idFilterSince,
                                     idFilterUntilLabel,
                                     idFilterUntil,
                                     idFilterClear,
                                     idFilterClose,
                                     idFilterOtherDates,
                                     idFilterMessage,
                                     idKindList,  //
                                     idFlood,
                                     idNewer,
                                     idNotice,
                                     idGrid,
                                     idPane,
                                     idNoteLabel,
                                     idNoteText,
                                     idNoteMessage,
                                     idStatus};
  const auto children = [&] {
    std::vector<int> ids;
    for (HWND child = GetWindow(view->window(), GW_CHILD); child != nullptr;
         child = GetWindow(child, GW_HWNDNEXT))
      if (const int id = GetDlgCtrlID(child);
          std::find(tabOrder.begin(), tabOrder.end(), id) != tabOrder.end())
        ids.push_back(id);
    return ids;
  };
  const auto fontOf = [&](int id) { return SendMessageW(item(id), WM_GETFONT, 0, 0); };
  for (const auto& [first, second] : {std::pair(idFilter, idLookUp), std::pair(idLookUp, idFilter)}) {
    view->attach(form, events);
    view->setRows(&stored);
    pump();
    EXPECT_EQ(item(idLookUpText), nullptr);
    EXPECT_EQ(item(idFilterText), nullptr);
    EXPECT_EQ(item(idNoteText), nullptr);
    press(first);
    select(1);
    press(second);
    EXPECT_EQ(children(), tabOrder);
    for (const int id : {idLookUpText, idFilterText, idKindList, idNoteText})
      EXPECT_EQ(fontOf(id), fontOf(idNotice)) << id;
  }
}

TEST_F(NoteTest, ANoteShownFirstWhileNothingIsTakenTakesNothingEither) {
  view->setInputEnabled(false);
  select(1);
  EXPECT_TRUE(visible(idNoteText));
  EXPECT_FALSE(IsWindowEnabled(item(idNoteText)));
  view->setInputEnabled(true);
  EXPECT_TRUE(IsWindowEnabled(item(idNoteText)));
}

TEST_F(NoteTest, WithoutANoteThereIsNothingOfIt) {
  for (const int id : {idNoteLabel, idNoteText, idNoteMessage}) EXPECT_FALSE(visible(id)) << id;
  const int whole = paneTall();
  select(1);
  EXPECT_TRUE(visible(idNoteLabel));
  EXPECT_TRUE(visible(idNoteText));
  EXPECT_FALSE(visible(idNoteMessage));
  EXPECT_EQ(words(idNoteLabel), u"Note (NORTH\\anna, 2026/11/21 08:15):");
  EXPECT_EQ(words(idNoteText), cable.text);
  EXPECT_TRUE(fixed());
  EXPECT_LT(paneTall(), whole);
  EXPECT_EQ(GetFocus(), item(idGrid));
  select(2);
  for (const int id : {idNoteLabel, idNoteText, idNoteMessage}) EXPECT_FALSE(visible(id)) << id;
  EXPECT_EQ(paneTall(), whole);
}

TEST_F(NoteTest, EnterKeepsWhatIsWritten) {
  ask();
  EXPECT_EQ(GetFocus(), item(idNoteText));
  EXPECT_FALSE(fixed());
  EXPECT_EQ(words(idNoteLabel), u"Note to No. 10:");
  EXPECT_EQ(words(idNoteText), u"");
  EXPECT_EQ(words(idNoteMessage), texts.text(ViewText::noteHow));
  write(u"  door open ");
  keep();
  const Note kept = stored.kept.of(10).value_or(Note{});
  EXPECT_EQ(kept.text, u"door open");
  EXPECT_NE(kept.author.find(u'\\'), kept.author.npos) << "workstation and person";
  EXPECT_EQ(kept.moment.size(), 16U);
  EXPECT_EQ(words(idNoteLabel), u"Note (" + kept.author + u", " + kept.moment + u"):");
  EXPECT_TRUE(fixed());
  EXPECT_EQ(GetFocus(), item(idGrid));
  EXPECT_EQ(selected(), 0);
}

TEST_F(NoteTest, EscLeavesItAsItWas) {
  select(1);
  ask();
  EXPECT_EQ(words(idNoteText), cable.text);
  write(u"other");
  key(item(idNoteText), VK_ESCAPE);
  EXPECT_EQ(stored.kept.of(9), cable);
  EXPECT_EQ(words(idNoteText), cable.text);
  EXPECT_TRUE(fixed());
  EXPECT_EQ(GetFocus(), item(idGrid));
}

TEST_F(NoteTest, AnEmptyOneIsTakenAway) {
  select(1);
  ask();
  write(u"  ");
  keep();
  EXPECT_EQ(stored.kept.of(9), std::nullopt);
  EXPECT_FALSE(visible(idNoteText));
  EXPECT_EQ(selected(), 1);
}

TEST_F(NoteTest, WhoWritesTheSameAgainIsNotItsAuthor) {
  select(1);
  ask();
  keep();
  EXPECT_EQ(stored.kept.of(9), cable);
  EXPECT_TRUE(fixed());
}

TEST_F(NoteTest, ItBelongsToTheFaultItWasBegunForWhateverIsSelectedMeanwhile) {
  ask();
  write(u"door");
  select(1);
  EXPECT_EQ(words(idNoteText), u"door") << "nothing is lost";
  EXPECT_EQ(words(idNoteLabel), u"Note to No. 10:");
  view->setRows(&stored);
  pump();
  EXPECT_EQ(words(idNoteText), u"door") << "nor when the list is renewed";
  SetFocus(item(idGrid));
  ask();
  EXPECT_EQ(GetFocus(), item(idNoteText));
  EXPECT_EQ(words(idNoteText), u"door");
  keep();
  EXPECT_EQ(keptText(10), u"door");
  EXPECT_EQ(stored.kept.of(9), cable);
}

TEST_F(NoteTest, AFaultThatHasGoneTakesNoneAndTheTextStays) {
  ask();
  write(u"door");
  stored.rows[0].gone = true;
  keep();
  EXPECT_EQ(words(idNoteMessage), texts.text(ViewText::noteFaultGone));
  EXPECT_EQ(words(idNoteText), u"door");
  EXPECT_FALSE(fixed());
  stored.rows[0].gone = false;
  keep();
  EXPECT_EQ(keptText(10), u"door");
}

TEST_F(NoteTest, WhatAnotherHasWrittenIsReplacedOnlyByOneWhoHasSeenIt) {
  ask();
  write(u"door");
  stored.kept.notes[10] = cable;
  keep();
  EXPECT_EQ(stored.kept.of(10), cable);
  EXPECT_EQ(
      words(idNoteMessage),
      u"Not kept: meanwhile NORTH\\anna has written: cable to be replaced on Monday. Enter puts yours in its "
      u"place.");
  keep();
  EXPECT_EQ(keptText(10), u"door");
}

TEST_F(NoteTest, OneThatAnotherHasTakenAwayIsSaid) {
  select(1);
  ask();
  write(u"door");
  stored.kept.notes.clear();
  keep();
  EXPECT_EQ(words(idNoteMessage), texts.text(ViewText::noteTakenAway));
  keep();
  EXPECT_EQ(keptText(9), u"door");
}

TEST_F(NoteTest, AnErrorOfTheDatabaseIsSaidWhereItIsWritten) {
  ask();
  write(u"door");
  stored.kept.fails = true;
  keep();
  EXPECT_EQ(words(idNoteMessage), u"Not kept. The database said: read-only");
  EXPECT_EQ(words(idNoteText), u"door");
  stored.kept.fails = false;
  keep();
  EXPECT_EQ(keptText(10), u"door");
}

TEST_F(NoteTest, OneThatIsTooLongIsNotCutOff) {
  ask();
  const std::u16string longer(501, u'x');
  write(longer);
  keep();
  EXPECT_EQ(words(idNoteMessage),
            u"Not kept: the note has 501 characters, and 500 are the most. Shorten it.");
  EXPECT_EQ(words(idNoteText), longer);
  EXPECT_EQ(stored.kept.of(10), std::nullopt);
  write(longer.substr(1));
  keep();
  EXPECT_EQ(keptText(10), longer.substr(1));
}

TEST_F(NoteTest, LineEndsThatArePastedBecomeBlanks) {
  ASSERT_TRUE(putOnClipboard(view->window(), u"door\r\nopen\tsince \u202Eyesterday"));
  ask();
  SendMessageW(item(idNoteText), WM_PASTE, 0, 0);
  EXPECT_EQ(words(idNoteText), u"door  open since  yesterday");
  EXPECT_EQ(words(idNoteMessage), texts.text(ViewText::noteBlanks));
  keep();
  EXPECT_EQ(keptText(10), u"door  open since  yesterday");
}

TEST_F(NoteTest, APlainTextIsPastedWithoutAWord) {
  ASSERT_TRUE(putOnClipboard(view->window(), u" and \u30c9\u30a2"));
  ask();
  write(u"door");
  SendMessageW(item(idNoteText), EM_SETSEL, 4, 4);
  SendMessageW(item(idNoteText), WM_PASTE, 0, 0);
  EXPECT_EQ(words(idNoteText), u"door and \u30c9\u30a2");
  EXPECT_EQ(words(idNoteMessage), texts.text(ViewText::noteHow));
}

TEST_F(NoteTest, WhereNoNotesAreKeptTheStatusLineSaysWhy) {
  // Rows that a person has shown, one list after the other, with the same window.
  FakeRows others{Language::english, 10};
  using database::NoNotes;
  for (const auto& [why, text] : {std::pair{NoNotes::accessFile, ViewText::notesNotInAccess},
                                  {NoNotes::server, ViewText::notesNotOnServer},
                                  {NoNotes::foreignTable, ViewText::notesNotInFile}}) {
    others.noNotesFor = why;
    view->setRows(&others);
    pump();
    ask();
    EXPECT_EQ(account(), texts.text(text));
    EXPECT_FALSE(visible(idNoteText));
    EXPECT_EQ(GetFocus(), item(idGrid));
  }
  view->setRows(&stored);
  pump();
  ask();
  EXPECT_TRUE(visible(idNoteText));
}

TEST_F(NoteTest, WhileAnAnswerIsWaitedForItRests) {
  events.use = ListUse::later;
  ask();
  EXPECT_FALSE(visible(idNoteText));
  events.use = ListUse::now;
  ask();
  write(u"door");
  events.use = ListUse::later;
  keep();
  EXPECT_EQ(stored.kept.of(10), std::nullopt);
  view->setInputEnabled(false);
  EXPECT_FALSE(IsWindowEnabled(item(idNoteText)));
  EXPECT_EQ(words(idNoteText), u"door");
  events.use = ListUse::now;
  view->setInputEnabled(true);
  pump();
  EXPECT_EQ(GetFocus(), item(idNoteText));
  keep();
  EXPECT_EQ(keptText(10), u"door");
}

TEST_F(NoteTest, WhereNobodyLooksThereIsNothingOfIt) {
  ask();
  events.use = ListUse::never;
  view->setRows(&stored);
  pump();
  for (const int id : {idNoteLabel, idNoteText, idNoteMessage}) EXPECT_FALSE(visible(id)) << id;
  select(1);
  EXPECT_FALSE(visible(idNoteText));
  ask();
  EXPECT_FALSE(visible(idNoteText));
}

TEST_F(NoteTest, TheKeyIsNoneOfTheFormsKeys) {
  ask();
  EXPECT_TRUE(events.keys.empty());
}

TEST_F(NoteTest, TheFilterShowsOnlyFaultsWithANoteAndFollowsThem) {
  press(idFilter);
  pump();
  EXPECT_TRUE(IsWindowEnabled(item(idFilterNoted)));
  press(idFilterNoted);
  const auto shows = [&](int many) {
    return pumpUntil([&] { return ListView_GetItemCount(item(idGrid)) == many; });
  };
  ASSERT_TRUE(shows(1));
  select(0);
  EXPECT_EQ(words(idNoteText), cable.text);
  SetFocus(item(idGrid));
  ask();
  write(u"");
  keep();
  EXPECT_TRUE(shows(0));
  press(idFilterNoted);
  ASSERT_TRUE(shows(10));
  EXPECT_EQ(stored.kept.of(9), std::nullopt);
}

TEST_F(NoteTest, TheFilterOffersNoNotesWhereNoneAreKept) {
  FakeRows others{Language::english, 10};
  others.noNotesFor = database::NoNotes::accessFile;
  view->setRows(&others);
  press(idFilter);
  pump();
  EXPECT_FALSE(IsWindowEnabled(item(idFilterNoted)));
  view->setInputEnabled(false);
  view->setInputEnabled(true);
  EXPECT_FALSE(IsWindowEnabled(item(idFilterNoted)));
  EXPECT_TRUE(IsWindowEnabled(item(idFilterMinor)));
  view->setRows(&stored);
  pump();
  EXPECT_TRUE(IsWindowEnabled(item(idFilterNoted)));
  view->setRows(&rows);  // the fixture's, which outlive the window
}

TEST_F(NoteTest, TheHelpForItIsThatOfThePane) {
  ask();
  SendMessageW(view->window(), WM_SYSCOMMAND, guideCommand, 0);
  ASSERT_EQ(events.guides.size(), 1U);
  EXPECT_EQ(events.guides[0], std::u16string(panePart));
}

}  // namespace
}  // namespace vordane::window::win32
