// The window read in another language: what changes, what stays, and why a language can't be read.
#include <gmock/gmock.h>

#include "fakes/watched_database.h"
#include "faults/kind_lists.h"
#include "startup/story.h"

namespace vordane::startup {
namespace {

using testing::HasSubstr;

class Reading : public Story {
 protected:
  // A language file beside that of the suite. Message n reads "Read n", item i of a list "xx.i"; one message
  // is empty if wanted.
  void addLanguage(const std::u16string& name, const std::u16string& language,
                   std::size_t empty = message::count) {
    const auto& own = language::ownTables;
    const auto table = [&](std::u16string_view of, std::vector<fakes::Row> rows) {
      return fakes::NewTable{fakes::tableNamed(own, of), std::move(rows)};
    };
    std::vector<fakes::Row> messages, lists;
    for (std::size_t i = 0; i < message::count; ++i)
      messages.push_back(
          {static_cast<std::int32_t>(i), i == empty ? std::u16string{} : wordsOf(i, language)});
    for (const KindList& list : kindLists)
      for (std::int32_t i = 0; i < list.items; ++i)
        lists.push_back({u"dlgFaultDisplay"_v, std::u16string(list.name()), std::int32_t{-1}, i,
                         std::u16string(list.name().substr(5)) + u"." + text::decimal(i), i, false});
    fakes::makeDatabase(
        engine, name,
        {table(u"tForms", {{u"dlgFaultDisplay"_v, u"Title&%SP&there"_v, u"Arial"_v, 10.0}}),
         table(u"tControls", {{u"dlgFaultDisplay"_v, u"cmdRequest"_v, std::int32_t{-1}, u"&Ask"_v, u"-1"_v,
                               9.0, u"a tip"_v}}),
         table(u"tComboBoxDT", lists),
         table(u"tSSGridsHD",
               {{u"dlgFaultDisplay"_v, u"grdDisplayFault"_v, std::int32_t{-1}, std::int32_t{4}, u"What"_v}}),
         fakes::NewTable{language::helpTable, {{u"dlgFaultDisplay"_v, u"txtTimeTag"_v, u"since when"_v}}},
         table(u"tMessages", messages)});
    files.content[application->installPath(u"Database") + name] = "a database";
  }
  static std::u16string wordsOf(std::size_t number, const std::u16string& language) {
    if (number == message::languageName) return language;
    if (number == message::windowTitle) return u"Title";
    if (number == message::statusFaultCount) return u"{1} there";
    if (number == message::statusStored) return u"{1} kept {2}";
    if (number == message::statusListComplete) return u"{1}, {2} came";
    if (number == message::noticeRequestFailed) return u"{1} has not: {2}";
    if (number == message::statusAttemptFailed) return u"{3} has not: {2}!";
    if (number == message::reasonErrorCode) return u"number {1}";
    return u"Read " + text::decimal(static_cast<std::int64_t>(number));
  }

  void begin() {
    startWithHost();
    addLanguage(u"VORDANE.xx.LNG", u"Other");
    form().setVisible(true);
    taken();
  }
  void choose(std::size_t place) {
    form().input().languages();
    form().input().languageChosen(place);
  }
  std::string line() { return text::toUtf8(view.status[window::accountPart]); }
  // The first row as a person reads it.
  std::string firstRow() {
    if (view.rows == nullptr) return "no rows";
    const auto row = view.rows->row(0);
    return row ? text::toUtf8(view.rows->asRead(*row)) : "gone";
  }
  std::string storedRow() {
    const auto row = view.rows == nullptr ? std::nullopt : view.rows->row(0);
    return row ? text::toUtf8(row->description) : "gone";
  }
  std::string caption(std::u16string_view control) {
    return text::toUtf8(view.words->control(control).text(u"Caption"));
  }
};

TEST_F(Reading, OffersTheLanguagesBesideThatOfTheSuiteByTheirOwnNames) {
  begin();
  addLanguage(u"VORDANE.ab.LNG", u"Another");
  addLanguage(u"VORDANE.en.LNG", u"M298");  // that of the suite once more
  files.content[application->installPath(u"Database") + u"VORDANE.LNG"] = "a database";
  files.content[application->installPath(u"Database") + u"VORDANE.LNG.old"] = "a copy";
  const window::Languages languages = form().input().languages();
  EXPECT_THAT(languages.names, ElementsAre(u"M298", u"Another", u"Other"));
  EXPECT_EQ(languages.chosen, 0U);
}

TEST_F(Reading, ShowsTheWholeWindowInItAtOnce) {
  begin();
  fetchOneFault();
  const std::string stored = storedRow();
  EXPECT_EQ(firstRow(), stored);
  choose(1);
  EXPECT_EQ(form().input().languages().chosen, 1U);
  ASSERT_NE(view.words, nullptr);
  EXPECT_EQ(caption(u"cmdRequest"), "&Ask");
  EXPECT_EQ(view.words->control(u"cmdRequest").text(u"ToolTipText"), u"a tip");
  EXPECT_EQ(view.words->control(u"grdDisplayFault").text(u"Columns(4).Caption"), u"What");
  EXPECT_EQ(view.words->self().text(u"Font.Name"), u"Arial");
  EXPECT_EQ(view.status[window::countPart], u"1 there");
  EXPECT_THAT(line(), HasSubstr(", 1 came"));
  EXPECT_EQ(view.status[window::processorPart],
            u"Read " + text::decimal(static_cast<std::int64_t>(message::statusWide)));
  EXPECT_EQ(firstRow().substr(0, 1), "R") << firstRow();
  EXPECT_EQ(storedRow(), stored);
}

TEST_F(Reading, LeavesTheFormTheMessagesAndWhatIsStoredAsTheyAre) {
  begin();
  const std::vector<std::u16string> messages = state.Messages;
  const std::u16string title = form().form().self().text(u"Caption");
  choose(1);
  fetchOneFault();
  EXPECT_EQ(state.Messages, messages);
  EXPECT_EQ(form().form().self().text(u"Caption"), title);
  EXPECT_EQ(form().form().control(u"cmdRequest").text(u"Caption"), u"");
  EXPECT_EQ(form().faults().storingLanguage().name, u"M298");
  EXPECT_EQ(storedRow().substr(0, 1), "M") << storedRow();
  EXPECT_EQ(firstRow().substr(0, 1), "R");
  EXPECT_THAT(taken(), testing::Not(testing::Contains(HasSubstr(" R"))));
}

TEST_F(Reading, GoesBackToTheLanguageOfTheSuite) {
  begin();
  fetchOneFault();
  const std::string before = line();
  choose(1);
  choose(0);
  EXPECT_EQ(view.words, nullptr);
  EXPECT_EQ(line(), before);
  EXPECT_EQ(firstRow(), storedRow());
  EXPECT_EQ(settings.read(u"VORDANE", u"Window", u"ReadingLanguage"), u"");
}

TEST_F(Reading, AnotherOfSeveralIsReadWithItsOwnWords) {
  begin();
  addLanguage(u"VORDANE.ab.LNG", u"Another");
  fetchOneFault();
  choose(2);
  EXPECT_EQ(form().input().languages().chosen, 2U);
  form().input().storedTextsAsked();
  EXPECT_TRUE(form().input().storedTextsShown());
  choose(1);
  EXPECT_EQ(form().input().languages().chosen, 1U);
  EXPECT_FALSE(form().input().storedTextsShown());
  EXPECT_NE(firstRow(), storedRow());
  const int told = view.wordsSet;
  form().input().languageChosen(3);
  EXPECT_EQ(view.wordsSet, told) << "there is no such language";
  form().input().storedTextsAsked();
  EXPECT_EQ(view.wordsSet, told + 1) << "the rows are painted anew";
}

TEST_F(Reading, ATextThatItLacksIsThatOfTheSuite) {
  begin();
  addLanguage(u"VORDANE.xx.LNG", u"Other", message::statusFaultCount);
  fetchOneFault();
  const std::u16string before = view.status[window::countPart];
  choose(1);
  EXPECT_THAT(line(), HasSubstr(", 1 came"));
  EXPECT_EQ(view.status[window::countPart], before);
  EXPECT_NE(before, u"");
}

TEST_F(Reading, ShowsTheStoredTextsAsLongAsAPersonAsksForThem) {
  begin();
  fetchOneFault();
  form().input().storedTextsAsked();  // nothing to switch
  EXPECT_FALSE(form().input().storedTextsOffered());
  EXPECT_FALSE(form().input().storedTextsShown());
  choose(1);
  EXPECT_TRUE(form().input().storedTextsOffered());
  form().input().storedTextsAsked();
  EXPECT_TRUE(form().input().storedTextsShown());
  EXPECT_EQ(firstRow(), storedRow());
  EXPECT_EQ(caption(u"cmdRequest"), "&Ask") << "the window stays in its language";
  form().input().storedTextsAsked();
  EXPECT_NE(firstRow(), storedRow());
}

TEST_F(Reading, AFaultThatWasStoredOtherwiseIsShownAsStored) {
  begin();
  fetchOneFault();
  choose(1);
  window::GridRow row = *view.rows->row(0);
  EXPECT_NE(view.rows->asRead(row), row.description);
  row.description += u" ";
  EXPECT_EQ(view.rows->asRead(row), row.description);
  row.description = u"someone else's words";
  EXPECT_EQ(view.rows->asRead(row), row.description);
}

// The pane marks the data, and the pointer over a value names the bytes that it came from.
TEST_F(Reading, DataAndProvenanceAreThoseOfTheTextShown) {
  begin();
  fetchOneFault();
  choose(1);
  const std::u16string shown = view.rows->asRead(*view.rows->row(0));
  const auto data = view.rows->dataPart(0);
  ASSERT_TRUE(data);
  EXPECT_EQ(shown.substr(data->begin, data->end - data->begin), u"00 ");
  EXPECT_THAT(view.rows->provenance(0, data->begin), testing::SizeIs(1));
  EXPECT_THAT(view.rows->provenance(0, 0), IsEmpty());
  form().input().storedTextsAsked();
  const auto stored = view.rows->dataPart(0);
  ASSERT_TRUE(stored);
  ASSERT_NE(stored->begin, data->begin);
  EXPECT_THAT(view.rows->provenance(0, data->begin), IsEmpty());
  EXPECT_THAT(view.rows->provenance(0, stored->begin), testing::SizeIs(1));
}

TEST_F(Reading, TheTitleNamesTheExchangeInItToo) {
  begin();
  choose(1);
  EXPECT_EQ(view.words->self().text(u"Caption"), u"Title (PBX-1)");
  form().setPBXName(u"PBX-2");
  EXPECT_EQ(view.words->self().text(u"Caption"), u"Title (PBX-2)");
  choose(1);
  EXPECT_EQ(view.words->self().text(u"Caption"), u"Title (PBX-2)");
  EXPECT_EQ(form().form().self().text(u"Caption"), state.Messages[message::windowTitle] + u" (PBX-2)");
}

TEST_F(Reading, ATitleThatNamesNoExchangeStaysWithout) {
  begin();
  form().form().self().set(u"Caption", std::u16string(u"Title of the suite"));
  choose(1);
  EXPECT_EQ(view.words->self().text(u"Caption"), u"Title there");
}

TEST_F(Reading, SentencesToldBeforeAreToldInItAndTheHostHearsItsOwn) {
  begin();
  pressAndTick(0);
  exchange().answer(61);
  tick();
  EXPECT_THAT(line(), HasSubstr("PBX-1 failed: code 61."));
  taken();
  choose(1);
  EXPECT_THAT(line(), HasSubstr("PBX-1 has not: number 61!"));
  EXPECT_EQ(text::toUtf8(view.notice), "PBX-1 has not: number 61");
  EXPECT_THAT(taken(), IsEmpty()) << "nothing is told or asked outside the window";
  choose(0);
  EXPECT_THAT(line(), HasSubstr("PBX-1 failed: code 61."));
}

TEST_F(Reading, WhatsThisIsSaidInIt) {
  begin();
  choose(1);
  view.duringMenu = [&] { form().input().whatsThisChosen(); };
  form().input().mousePressed(form().form().control(u"txtTimeTag"), 2);
  EXPECT_THAT(taken(), ElementsAre("(menu mnuWhatsThis)", "(help txtTimeTag: since when)"));
}

TEST_F(Reading, IsDeadWhileAnAnswerIsWaitedFor) {
  begin();
  form().input().languages();
  pressAndTick(0);
  form().input().languageChosen(1);
  EXPECT_EQ(view.words, nullptr);
  exchange().answer(0, oneFault());
  tick();
  exchange().answerLamps(u"00");
  tick();
  form().input().languageChosen(1);
  EXPECT_NE(view.words, nullptr);
  const std::string read = firstRow();
  pressAndTick(0);
  form().input().storedTextsAsked();
  EXPECT_EQ(firstRow(), read);
}

// --- what can't be read

TEST_F(Reading, AFileThatIsNoLanguageIsSaidAndTheWindowStays) {
  begin();
  fetchOneFault();
  const std::string before = line();
  fakes::makeDatabase(engine, u"VORDANE.zz.LNG", {{language::helpTable, {}}});
  files.content[application->installPath(u"Database") + u"VORDANE.zz.LNG"] = "a database";
  EXPECT_THAT(form().input().languages().names, ElementsAre(u"M298", u"Other", u"VORDANE.zz.LNG"));
  form().input().languageChosen(2);
  EXPECT_EQ(view.words, nullptr);
  EXPECT_EQ(view.wordsSet, 0);
  EXPECT_EQ(line(), "M" + std::to_string(message::statusNoLanguage) + "\n" + before);
  state.Messages[message::statusNoLanguage] = u"{1}: {2}";
  form().input().languageChosen(2);
  EXPECT_EQ(line(), "VORDANE.zz.LNG: tMessages\n" + before);
  choose(1);
  EXPECT_THAT(line(), testing::Not(HasSubstr("Read " + std::to_string(message::statusNoLanguage))));
  const std::string read = firstRow();
  form().input().languageChosen(2);
  EXPECT_EQ(firstRow(), read) << "the language that is read stays";
  EXPECT_EQ(caption(u"cmdRequest"), "&Ask");
}

TEST_F(Reading, AFileWithAPartOfALanguageIsSaidWithWhatItLacks) {
  begin();
  state.Messages[message::statusNoLanguage] = u"{1}: {2}";
  const std::u16string directory = application->installPath(u"Database");
  std::vector<fakes::Row> messages;
  for (std::size_t i = 0; i < message::count; ++i)
    messages.push_back({static_cast<std::int32_t>(i), wordsOf(i, u"Partly")});
  fakes::makeDatabase(engine, u"VORDANE.ya.LNG",
                      {fakes::NewTable{fakes::tableNamed(language::ownTables, u"tMessages"), messages}});
  files.content[directory + u"VORDANE.ya.LNG"] = "a database";
  addLanguage(u"VORDANE.yb.LNG", u"Nameless", message::languageName);
  EXPECT_THAT(form().input().languages().names, ElementsAre(u"M298", u"Other", u"Partly", u"VORDANE.yb.LNG"));
  form().input().languageChosen(2);
  EXPECT_THAT(line(), testing::StartsWith("VORDANE.ya.LNG: tForms"));
  form().input().languageChosen(3);
  EXPECT_THAT(line(), testing::StartsWith("VORDANE.yb.LNG: tMessages"));
  EXPECT_EQ(view.words, nullptr);
  addLanguage(u"VORDANE.yb.LNG", u"Named");
  EXPECT_THAT(form().input().languages().names, ElementsAre(u"M298", u"Other", u"Partly", u"Named"));
  form().input().languageChosen(3);
  ASSERT_NE(view.words, nullptr);
  EXPECT_THAT(line(), testing::Not(HasSubstr("Read " + std::to_string(message::statusNoLanguage))));
  for (const auto& opened : engine.opened)
    if (opened.path.find(u"VORDANE.y") != opened.path.npos) {
      EXPECT_TRUE(opened.readOnly) << text::toUtf8(opened.path);
    }
}

TEST_F(Reading, AFileThatHasGoneSinceIsSaid) {
  begin();
  form().input().languages();
  std::filesystem::remove(engine.folder() / "VORDANE.xx.LNG");
  state.Messages[message::statusNoLanguage] = u"{1}: unusable";
  form().input().languageChosen(1);
  EXPECT_THAT(line(), testing::StartsWith("VORDANE.xx.LNG: unusable\n"));
  EXPECT_EQ(view.words, nullptr);
  EXPECT_EQ(settings.read(u"VORDANE", u"Window", u"ReadingLanguage").value_or(u"none"), u"none");
}

// --- from one day to the next

TEST_F(Reading, IsKeptForThePersonAndComesWithTheWindow) {
  settings.write(u"VORDANE", u"Window", u"ReadingLanguage", u"VORDANE.xx.LNG");
  begin();
  EXPECT_NE(view.words, nullptr);
  choose(0);
  form().setVisible(false);
  form().setVisible(true);
  EXPECT_EQ(view.words, nullptr) << "once";
}

TEST_F(Reading, OfAFileThatStandsElsewhereIsNotKept) {
  settings.write(u"VORDANE", u"Window", u"ReadingLanguage", u"..\\VORDANE.xx.LNG");
  begin();
  EXPECT_EQ(view.words, nullptr);
}

TEST_F(Reading, IsNothingWhereNobodyLooks) {
  settings.write(u"VORDANE", u"Window", u"ReadingLanguage", u"VORDANE.xx.LNG");
  program.interactive = false;
  begin();
  EXPECT_EQ(view.words, nullptr);
  state.runMode = RunMode::scheduledRun;
  EXPECT_THAT(form().input().languages().names, IsEmpty());
  form().input().languageChosen(1);
  EXPECT_EQ(view.words, nullptr);
  for (const auto& opened : engine.opened) EXPECT_FALSE(opened.path.ends_with(u"VORDANE.xx.LNG"));
  state.runMode = RunMode::interactive;
}

// --- beside what is stated

// One story, with the layer and without: what the documented files are asked, and what host and person
// notice.
class ReadingStory : public Reading {
 public:
  struct Seen {
    Lines asked, noticed;
    std::vector<std::string> shown;
  };
  Seen run(bool read) {
    engine.between = [this](std::u16string_view path, auto file) -> std::unique_ptr<database::Database> {
      const std::string name = text::toUtf8(path.substr(path.rfind(u'\\') + 1));
      if (name == "VORDANE.xx.LNG") return file;
      auto watched = std::make_unique<fakes::WatchedDatabase>(std::move(file));
      watched->before = [this, name](std::u16string_view step) {
        seen.asked.push_back(name + ": " + text::toUtf8(step));
      };
      return watched;
    };
    startWithHost();
    addLanguage(u"VORDANE.xx.LNG", u"Other");
    form().setVisible(true);
    const auto turn = [&](std::size_t language) {
      if (read) choose(language);
      seen.shown.push_back(firstRow());
    };
    turn(1);
    fetchOneFault();
    turn(1);
    for (const int column : {0, 4}) form().input().headingClicked(column);
    if (read) form().input().storedTextsAsked();
    fetchOneFault();  // the same once more
    turn(0);
    turn(1);
    pressAndTick(0);
    exchange().answer(61);
    tick();
    boxes.answer = 6;
    pressAndTick(3);
    runSchedule(u"1");
    tick();
    seen.noticed = taken();
    for (const std::string& logged : log()) seen.noticed.push_back(logged);
    layer.reset();
    engine.between = [](std::u16string_view, auto file) { return file; };
    return seen;
  }
  void TestBody() override {}

 private:
  Seen seen;
};

TEST(ReadingStories, TheSameStatementsRunInWhateverLanguageTheWindowIsRead) {
  const ReadingStory::Seen without = ReadingStory().run(false), with = ReadingStory().run(true);
  EXPECT_EQ(with.asked, without.asked);
  EXPECT_EQ(with.noticed, without.noticed);
  EXPECT_NE(with.shown, without.shown);
  EXPECT_GT(without.asked.size(), 40U);
}

}  // namespace
}  // namespace vordane::startup
