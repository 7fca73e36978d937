// The installed guide, opened from the window: where, when, and what is said when it does not open.
#include <gmock/gmock.h>

#include "language/guide_topics.h"
#include "startup/story.h"

namespace vordane::startup {
namespace {

constexpr std::u16string_view folder = u"C:\\QUILMAR32\\30000\\ADDINS\\HELP\\GUIDE\\";

class Guide : public Story {
 protected:
  void install(std::u16string_view topic) {
    files.content[std::u16string(folder) + std::u16string(topic) + u".html"] = "a page";
  }
  void ask(std::u16string_view part) { form().input().guideAsked(part); }
  std::string line() { return text::toUtf8(view.status[window::accountPart]); }
};

TEST_F(Guide, OpensAtTheTopicOfWhatHasTheFocus) {
  for (const char16_t* topic : {u"request", u"find", u"fault", u"guide"}) install(topic);
  startWithHost();
  for (const char16_t* part : {u"cmdRequest", u"lookUpBar", u"pane", u""}) ask(part);
  const std::string there = "C:\\QUILMAR32\\30000\\ADDINS\\HELP\\GUIDE\\";
  EXPECT_THAT(documents.opened, ElementsAre(there + "request.html", there + "find.html", there + "fault.html",
                                            there + "guide.html"));
  EXPECT_THAT(trace, IsEmpty()) << "neither the host nor a box is asked";
}

TEST_F(Guide, HasATopicForEveryPartOfTheWindow) {
  for (const GuideTopic& row : guideTopics) install(row.topic);
  startWithHost();
  for (const GuideTopic& row : guideTopics) ask(row.part);
  EXPECT_EQ(documents.opened.size(), guideTopics.size()) << line();
}

TEST_F(Guide, ThatIsMissingIsSaidInTheStatusLineAndWithoutABox) {
  startWithHost();
  const std::string before = line();
  ask(u"cmdRequest");
  EXPECT_EQ(line(), "no guide at C:\\QUILMAR32\\30000\\ADDINS\\HELP\\GUIDE\\request.html\n" + before);
  EXPECT_THAT(documents.opened, IsEmpty());
  EXPECT_THAT(trace, IsEmpty());
  install(u"request");
  ask(u"cmdRequest");
  EXPECT_EQ(documents.opened.size(), 1U);
  EXPECT_EQ(line(), before);
}

TEST_F(Guide, WithoutAProgramForItIsSaidUntilTheNextRequest) {
  install(u"list");
  documents.hasProgram = false;
  startWithHost();
  const std::string before = line();
  ask(u"grdDisplayFault");
  EXPECT_EQ(line(), "nothing shows C:\\QUILMAR32\\30000\\ADDINS\\HELP\\GUIDE\\list.html\n" + before);
  pressAndTick(0);
  exchange().answer(61);
  EXPECT_EQ(line(), "PBX-1 failed: code 61.\n" + before);
}

TEST_F(Guide, OutsideTheSuiteIsNeverOpened) {
  settings.write(u"QUILMAR32", u"30000", u"InstallPath", u"C:\\Elsewhere\\");
  program.directory = u"C:\\QUILMAR32\\30000\\ADDINS";
  startWithHost();
  const std::u16string page = application->installPath(u"Help") + u"GUIDE\\request.html";
  EXPECT_EQ(application->guidePage(u"request"), page);
  EXPECT_TRUE(page.starts_with(u"C:\\ELSEWHERE\\")) << text::toUtf8(page);
  EXPECT_EQ(application->guidePage(u"..\\..\\..\\..\\windows\\request"), std::nullopt);
  EXPECT_EQ(application->guidePage(u"request.exe\\..\\..\\..\\..\\..\\a"), std::nullopt);
}

TEST_F(Guide, IsThereWhileARequestWaits) {
  install(u"list");
  startWithHost();
  pressAndTick(0);
  EXPECT_TRUE(form().input().guideOffered());
  ask(u"grdDisplayFault");
  EXPECT_EQ(documents.opened.size(), 1U);
}

TEST_F(Guide, NeverOpensInAScheduledRun) {
  install(u"guide");
  startWithHost();
  state.runMode = RunMode::scheduledRun;
  EXPECT_FALSE(form().input().guideOffered());
  ask(u"");
  EXPECT_THAT(documents.opened, IsEmpty());
  state.runMode = RunMode::interactive;
  EXPECT_TRUE(form().input().guideOffered());
  ask(u"");
  EXPECT_EQ(documents.opened.size(), 1U);
}

TEST_F(Guide, NeverOpensWhereNobodySeesIt) {
  install(u"guide");
  program.interactive = false;
  startWithHost();
  EXPECT_FALSE(form().input().guideOffered());
  ask(u"");
  EXPECT_THAT(documents.opened, IsEmpty());
}

TEST_F(Guide, OutlivesAWindowThatGoesWhileItOpens) {
  install(u"guide");
  startWithHost();
  documents.meanwhile = [this] { layer.reset(); };
  ask(u"");
  EXPECT_TRUE(process.ended);
  EXPECT_EQ(documents.opened.size(), 1U);
}

}  // namespace
}  // namespace vordane::startup
