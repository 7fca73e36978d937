// The start of the process: paths, language databases, the first failure ends it.
#include "language/language_databases.h"
#include "language/view_texts.h"
#include "startup/story.h"

namespace vordane::startup {
namespace {

using Start = Story;

TEST_F(Start, FindsThePathsAndOpensTheTexts) {
  start();
  EXPECT_EQ(started, basMain::Start::hostMode);
  EXPECT_FALSE(state.StandAlone);
  EXPECT_EQ(state.AddinsSection, u"30000");
  EXPECT_EQ(state.BackGroundDir, u"C:\\QUILMAR32\\30000\\ADDINS\\..\\BACKGRND\\");
  EXPECT_EQ(application->helpFile, u"C:\\QUILMAR32\\30000\\ADDINS\\HELP\\VORDANE.HLP");
  ASSERT_EQ(engine.opened.size(), 2U);
  EXPECT_EQ(engine.opened[0].path, u"C:\\QUILMAR32\\30000\\ADDINS\\..\\QUIL32\\DATABASE\\Common.LNG");
  EXPECT_TRUE(engine.opened[0].readOnly);
  EXPECT_EQ(engine.opened[1].path, u"C:\\QUILMAR32\\30000\\ADDINS\\DATABASE\\VORDANE.LNG");
  EXPECT_FALSE(engine.opened[1].readOnly);
  EXPECT_EQ(state.Messages.size(), message::count);
  EXPECT_EQ(application->texts.Title, u"Fault display");
}

TEST_F(Start, EveryMissingPieceEndsTheProcessWithoutAWord) {
  for (const char16_t* file : {u"VORDANE.LNG", u"Common.LNG"}) {
    const std::filesystem::path here(engine.file(file)), away(engine.file(u"away"));
    std::filesystem::rename(here, away);
    EXPECT_THROW(start(), ProcessEnded) << text::toUtf8(file);
    EXPECT_THAT(taken(), IsEmpty());
    EXPECT_FALSE(view.attached);
    std::filesystem::rename(away, here);
  }
}

TEST_F(Start, AnUnwritableOwnLanguageServesAsWell) {
  engine.unwritable = u"VORDANE.LNG";
  start();
  EXPECT_EQ(state.Messages.size(), message::count);
  EXPECT_TRUE(engine.opened.back().readOnly);
}

TEST_F(Start, MissingMessagesEndTheProcess) {
  const auto& own = language::ownTables;
  fakes::makeDatabase(
      engine, u"VORDANE.LNG",
      {{fakes::tableNamed(own, u"tProject"), {{u"VORDANE"_v, u"T"_v, u""_v, u""_v, u""_v, u""_v}}}});
  EXPECT_THROW(start(), ProcessEnded);
}

TEST_F(Start, MissingProjectTextsEndTheProcess) {
  const auto& own = language::ownTables;
  fakes::makeDatabase(engine, u"VORDANE.LNG",
                      {{fakes::tableNamed(own, u"tMessages"), {{std::int32_t{0}, u"F"_v}}}});
  EXPECT_THROW(start(), ProcessEnded);
}

TEST_F(Start, ByHandTheTimesOfOutgoingCallsHoldWithoutALayer) {
  process.times = {1, 2};
  startStandAlone(u"P");
  EXPECT_EQ(process.times.pendingMilliseconds, 10000);
  EXPECT_EQ(process.times.busyMilliseconds, 20000);
}

TEST_F(Start, EachCreationSetsTheTimesOfOutgoingCalls) {
  start();
  process.times = {1, 2};
  layer = createLayer();
  EXPECT_EQ(process.times.pendingMilliseconds, 10000);
  EXPECT_EQ(process.times.busyMilliseconds, 20000);
}

TEST_F(Start, TheDrawingsWordsAreMessages) {
  start();
  MessageTexts words(state);
  EXPECT_EQ(words.text(window::ViewText::majorLit), u"M165");
  EXPECT_EQ(words.text(window::ViewText::noSelection), u"M220");
}

}  // namespace
}  // namespace vordane::startup
