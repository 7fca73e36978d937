#include <gtest/gtest.h>

#include "fakes/memory_files.h"
#include "fakes/memory_settings.h"
#include "fakes/set_clock.h"
#include "language/comTools.h"
#include "language/language_databases.h"
#include "language_database.h"

namespace vordane {
namespace {

using fakes::n;
using fakes::t;

// A person who gives the same answer to every box.
class Answering : public platform::MessageBoxes {
 public:
  int show(const platform::MessageBoxRequest& request) override {
    shown.push_back(request);
    return answer;
  }
  std::vector<platform::MessageBoxRequest> shown;
  int answer = 7;
};

class Boxes : public testing::Test {
 protected:
  Boxes() {
    own.with(u"tMsgBox", {{n(102), t(u"Failed&%CR&%ST"), t(u"vbOKOnly+vbExclamation"), t(u"Title&%SP&%ST"),
                           t(u"-1"), t(u"-1")},
                          {n(105), t(u"Delete?"), t(u"vbYesNo+vbQuestion+vbDefaultButton2"), t(u"Ask"),
                           t(u"Help\\V.hlp"), t(u"12")},
                          {n(106), t(u"p"), t(u"nonsense"), t(u"t"), t(u"V.hlp"), t(u"-1")},
                          {n(110), t(u"p"), t(u""), t(u"t"), t(u""), t(u"5")},
                          {n(111), t(u"p"), t(u""), t(u"t"), fakes::null, t(u"-1")},
                          {n(107), t(u"gone&-1&now"), t(u""), t(u"t"), t(u"-1"), t(u"-1")}});
    common.with(
        fakes::tableNamed(language::commonTables, u"tMsgBox"),
        {{n(1), t(u"Common"), t(u"vbRetryCancel"), t(u"unused"), t(u"-1"), t(u"-1")},
         {n(2), t(u"Helped"), t(u"vbOKOnly"), t(u"unused"), t(u"..\\Quil32&%SP&Help\\C.hlp"), t(u"31")},
         {n(3), t(u"File"), t(u"vbOKOnly"), t(u"unused"), t(u"C.hlp"), t(u"-1")}});
    state.LogName = u"JOB";
    environment.ownLanguage = &own.open();
    environment.commonLanguage = &common.open();
  }

  int show(std::int16_t number, std::int16_t selector = 0, bool logOnly = false) {
    comTools::BoxRequest request;
    request.number = number;
    request.selector = selector;
    request.logOnly = logOnly;
    return comTools::ShowMsgBox(environment, request);
  }
  std::string log() { return files.content[comSchedule::logPath(runLog)]; }

  fakes::LanguageDatabase own, common;
  fakes::MemorySettings settings;
  comRegQuil32::Installation installation{settings, u"D:\\QUILMAR32\\30000\\ADDINS"};
  fakes::SetClock clock;
  fakes::MemoryFiles files;
  ScheduleState state;
  comSchedule::Environment runLog{installation, own.engine, clock, files, state};
  Answering person;
  comTools::BoxEnvironment environment{nullptr, nullptr, person, runLog, u"C:\\Prog & Co"};
};

TEST_F(Boxes, AreBuiltFromTheirRow) {
  EXPECT_EQ(show(105), 7);
  ASSERT_EQ(person.shown.size(), 1U);
  EXPECT_EQ(person.shown[0].prompt, u"Delete?");
  EXPECT_EQ(person.shown[0].title, u"Ask");
  EXPECT_EQ(person.shown[0].style, 292);
  EXPECT_EQ(person.shown[0].helpFile, u"C:\\Prog & Co\\Help\\V.hlp");
  EXPECT_EQ(person.shown[0].helpContext, 12);
}

TEST_F(Boxes, TakeASubstitutionOrOneBlank) {
  EXPECT_EQ(show(102), 7);
  EXPECT_EQ(person.shown[0].prompt, u"Failed\r ");
  EXPECT_EQ(person.shown[0].title, u"Title  ");
  comTools::BoxRequest request;
  request.number = 102;
  request.substitution = u"disk full";
  EXPECT_EQ(comTools::ShowMsgBox(environment, request), 7);
  EXPECT_EQ(person.shown[1].prompt, u"Failed\rdisk full");
  EXPECT_EQ(person.shown[1].title, u"Title disk full");
  request.substitution = u"ab%cdefgh";  // the prompt consumes its piece, the title takes the next
  EXPECT_EQ(comTools::ShowMsgBox(environment, request), 7);
  EXPECT_EQ(person.shown[2].prompt, u"Failed\rab%c");
  EXPECT_EQ(person.shown[2].title, u"Title fgh");
}

TEST_F(Boxes, HelpFollowsItsColumns) {
  EXPECT_EQ(show(106), 7);
  EXPECT_EQ(person.shown[0].style, 0);  // an unknown name is an OK-only box
  EXPECT_EQ(person.shown[0].helpFile, u"C:\\Prog & Co\\V.hlp");
  EXPECT_FALSE(person.shown[0].helpContext.has_value());
  EXPECT_EQ(show(107), 7);
  EXPECT_EQ(person.shown[1].prompt, u"-1now");
  EXPECT_EQ(person.shown[1].helpFile, u"");
  EXPECT_FALSE(person.shown[1].helpContext.has_value());
}

TEST_F(Boxes, TheShortFormHasTheSuitesHelpOrTheCallers) {
  EXPECT_EQ(show(105, 1), 7);
  EXPECT_EQ(person.shown[0].helpFile, u"..\\Quil32\\Help\\error.hlp");
  EXPECT_EQ(person.shown[0].helpContext, 0);
  comTools::BoxRequest request;
  request.selector = 1;
  request.number = 105;
  request.helpFile = u"own.hlp";
  request.helpContext = 9;
  EXPECT_EQ(comTools::ShowMsgBox(environment, request), 7);
  EXPECT_EQ(person.shown[1].helpFile, u"own.hlp");
  EXPECT_EQ(person.shown[1].helpContext, 9);
}

TEST_F(Boxes, CommonBoxesTakeTheCallersTitle) {
  comTools::BoxRequest request;
  request.selector = 10;
  request.number = 1;
  request.titleText = u"My&%SP&title";
  EXPECT_EQ(comTools::ShowMsgBox(environment, request), 7);
  EXPECT_EQ(person.shown[0].prompt, u"Common");
  EXPECT_EQ(person.shown[0].title, u"My title");
  EXPECT_EQ(person.shown[0].style, 5);
}

// The stored help of the common database, whatever the caller names; only the short form takes the caller's.
TEST_F(Boxes, CommonBoxesHaveTheHelpOfTheirRow) {
  comTools::BoxRequest request;
  request.selector = 10;
  request.number = 2;
  request.helpFile = u"callers.hlp";
  request.helpContext = 9;
  EXPECT_EQ(comTools::ShowMsgBox(environment, request), 7);
  EXPECT_EQ(person.shown[0].helpFile, u"C:\\Prog & Co\\..\\Quil32 Help\\C.hlp");
  EXPECT_EQ(person.shown[0].helpContext, 31);
  EXPECT_EQ(show(3, 10), 7);
  EXPECT_EQ(person.shown[1].helpFile, u"C:\\Prog & Co\\C.hlp");
  EXPECT_FALSE(person.shown[1].helpContext.has_value());
  EXPECT_EQ(show(1, 10), 7);
  EXPECT_EQ(person.shown[2].helpFile, u"");
}

// Every selector but 1 and 10 is that of the program's own boxes with all their columns.
TEST_F(Boxes, AnyOtherSelectorIsThatOfTheOwnBoxes) {
  for (const int selector : {-32768, -1, 2, 9, 11, 100, 32767}) {
    person.shown.clear();
    EXPECT_EQ(show(105, static_cast<std::int16_t>(selector)), 7);
    ASSERT_EQ(person.shown.size(), 1U) << selector;
    EXPECT_EQ(person.shown[0].title, u"Ask") << selector;
    EXPECT_EQ(person.shown[0].helpFile, u"C:\\Prog & Co\\Help\\V.hlp") << selector;
    EXPECT_EQ(person.shown[0].helpContext, 12) << selector;
  }
  EXPECT_EQ(show(1, 2), 0);  // that row stands in the common database only
}

// Only "-1" says that a box has no help: an empty name gives it the program's directory.
TEST_F(Boxes, AnEmptyHelpFileIsNotNone) {
  EXPECT_EQ(show(110), 7);
  EXPECT_EQ(person.shown[0].helpFile, u"C:\\Prog & Co\\");
  EXPECT_EQ(person.shown[0].helpContext, 5);
  EXPECT_EQ(show(111), 7);
  EXPECT_EQ(person.shown[1].helpFile, u"C:\\Prog & Co\\");
  EXPECT_FALSE(person.shown[1].helpContext.has_value());
}

TEST_F(Boxes, AMissingRowOrDatabaseGivesNoAnswer) {
  EXPECT_EQ(show(999), 0);
  EXPECT_EQ(show(105, 10), 0);
  environment.ownLanguage = nullptr;
  EXPECT_EQ(show(105), 0);
  EXPECT_TRUE(person.shown.empty());
}

TEST_F(Boxes, NoBoxIsShownDuringARunAndTheAnswerIsYes) {
  state.RunState = 11;
  EXPECT_EQ(show(105), 6);
  state.RunState = 12;
  EXPECT_EQ(show(105), 6);
  EXPECT_EQ(show(999), 0);  // one that could not be built is no Yes
  EXPECT_TRUE(person.shown.empty());
  EXPECT_EQ(log(), "");
}

TEST_F(Boxes, LogOnlyWritesAForcedLine) {
  state.RunState = 11;
  EXPECT_EQ(show(102, 0, true), 6);
  EXPECT_TRUE(person.shown.empty());
  EXPECT_EQ(log(), "2026-11-20 21:14:05 Failed  \r\n");
  state.RunState = 0;
  EXPECT_EQ(show(105, 1, true), 6);
  EXPECT_EQ(log(), "2026-11-20 21:14:05 Failed  \r\n2026-11-20 21:14:05 Delete?\r\n");
}

TEST_F(Boxes, LogAlwaysRecordsWhatIsShown) {
  state.LogAlways = 1;
  EXPECT_EQ(show(105), 7);
  EXPECT_EQ(log(), "2026-11-20 21:14:05 Delete?\r\n");
  state.RunState = 11;  // in a run only forced lines are written
  EXPECT_EQ(show(105), 6);
  EXPECT_EQ(log(), "2026-11-20 21:14:05 Delete?\r\n");
  state.RunState = 12;
  EXPECT_EQ(show(105), 6);
  EXPECT_EQ(log(), "2026-11-20 21:14:05 Delete?\r\n2026-11-20 21:14:05 Delete?\r\n");
}

}  // namespace
}  // namespace vordane
