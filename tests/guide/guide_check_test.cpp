// What the check of the guide finds, one spoilt place at a time.
#include "guide_check.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iterator>

#include "faults/kind_table.h"
#include "guide/guide_folder.h"

namespace vordane::tools {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;

class GuideCheck : public testing::Test {
 protected:
  void expectOnly(const std::string& problem) { EXPECT_THAT(guide.check(), ElementsAre(problem)); }
  fakes::GuideFolder guide;
};

TEST_F(GuideCheck, FindsNothingInTheShippedGuide) {
  EXPECT_THAT(guide.check(), IsEmpty());
}

TEST_F(GuideCheck, NamesAMessageWithItsText) {
  guide.replace("{{message 197}}\n", "Busy\n");
  expectOnly("en: message 197 is not described (the exchange server is busy)");
}

TEST_F(GuideCheck, TakesATermWithoutATextForNone) {
  guide.replace("{{message 205}}\n:   You, or the server, stopped the request. Nothing to do.\n",
                "{{message 205}}\n:   \n");
  expectOnly("en: message 205 is not described (the request was cancelled)");
}

TEST_F(GuideCheck, NamesABox) {
  guide.replace("{{box 108}}\n", "Reset\n");
  expectOnly("en: box 108 is not described (The alarms of the exchange are reset.)");
}

TEST_F(GuideCheck, NamesATextOfTheApplication) {
  guide.replace("{{project OleServerBusyMsgText}}\n", "Busy\n");
  expectOnly(
      "en: the box OleServerBusyMsgText is not described (The other program is busy and does not answer. "
      "Retry, or "
      "cancel the request.)");
}

TEST_F(GuideCheck, NamesAControlAndAHeading) {
  guide.replace("{{control lblMN}}\n", "Minor\n");
  guide.replace("{{column 3}}\n", "Processor\n");
  EXPECT_THAT(guide.check(), ElementsAre("en: control lblMN is not described (Minor alarm)",
                                         "en: column 3 is not described (Processor)"));
}

TEST_F(GuideCheck, NamesATopicThatTheWindowOpens) {
  guide.replace("{#title}", "{#received-too}");
  guide.replace("{#received}", "{#title}");
  EXPECT_THAT(guide.check(),
              ElementsAre("en: the window opens the topic received for lblTimetag, which is missing",
                          "en: the window opens the topic received for txtTimeTag, which is missing"));
}

TEST_F(GuideCheck, NamesATopicThatStandsTwice) {
  guide.replace("{#title}", "{#find}");
  expectOnly("en: the topic find stands 2 times");
}

TEST_F(GuideCheck, NamesEachKindThatIsNotDescribed) {
  guide.replace("{{kinds}}", "");
  const auto problems = guide.check();
  EXPECT_EQ(problems.size(), std::size(faults::faultKinds) + 1) << "one for every kind, and for unknown ones";
  EXPECT_THAT(problems, Contains("en: the fault kind-0A is not described"));
  EXPECT_THAT(problems, Contains("en: the fault kind-other is not described"));
}

TEST_F(GuideCheck, NamesALinkThatLeadsNowhereOrOut) {
  guide.replace("](#boxes)", "](#bxes)");
  guide.replace("](#hints)", "](https://example.org)");
  EXPECT_THAT(
      guide.check(),
      ElementsAre(
          MatchesRegex("en/40-requests.md:[0-9]+: the link to https://example.org leads out of the guide"),
          MatchesRegex("en/80-print.md:[0-9]+: the link to #bxes leads nowhere")));
}

TEST_F(GuideCheck, LetsALinkLeadToAKind) {
  guide.replace("](#boxes)", "](#kind-3B)");
  EXPECT_THAT(guide.check(), IsEmpty());
}

TEST_F(GuideCheck, NamesAPictureThatIsMissingAndOneThatNothingShows) {
  std::filesystem::rename(guide.folder() / "pictures/find.png", guide.folder() / "pictures/found.png");
  EXPECT_THAT(guide.check(),
              ElementsAre(MatchesRegex("en/20-window.md:[0-9]+: the picture pictures/find.png is missing"),
                          "en: nothing shows the picture pictures/found.png"));
}

TEST_F(GuideCheck, NamesAMarkThatStandsForNothing) {
  guide.replace("{{message 165}}\n", "{{message 16S}}\n");
  EXPECT_THAT(guide.check(),
              ElementsAre("en: message 165 is not described (MAJOR: alarm)",
                          MatchesRegex("en/30-lamps.md:[0-9]+: ..message 16S.. stands for nothing")));
}

TEST_F(GuideCheck, NamesAWordThatIsMissingOrNotUsed) {
  guide.replace("narrow\t", "narow\t");
  EXPECT_THAT(guide.check(), ElementsAre("en/words.tsv: nothing uses the word \"narow\"",
                                         "en/words.tsv: the word \"narrow\" is missing"));
}

TEST_F(GuideCheck, HoldsTheOptionsAgainstWhatTheProgramSays) {
  const std::string help = "usage: devhost [--reports DIRECTORY] [--times] SCRIPT\n  -h, --help  this text\n";
  EXPECT_THAT(guide.check({{"devhost", help}}), IsEmpty());
  EXPECT_THAT(guide.check({{"devhost", help + "  --quiet  says nothing\n"}}),
              ElementsAre("en: the option --quiet of devhost is not described"));
  EXPECT_THAT(guide.check({{"devhost", "usage: devhost [--times] SCRIPT"}}),
              ElementsAre("en: devhost does not know the option --reports that is described"));
  EXPECT_THAT(guide.check({{"VORDANE", "/RegServer [/JobAccount:NAME | /ThisUser] or /UnregServer"}}),
              IsEmpty());
  EXPECT_THAT(guide.check({{"newtool", ""}}), ElementsAre("en: newtool is not described (a topic newtool)"));
}

TEST_F(GuideCheck, NamesWhatOneLanguageLacks) {
  Problems problems;
  std::vector<GuideSource> guides{readGuide(guide.folder(), problems)};
  guides[0].language = "xx";
  guide.replace("{#title}", "{#heading}");
  guide.replace("pictures/find.png", "pictures/menu.png");
  guides.push_back(readGuide(guide.folder(), problems));
  compareGuides(guides, problems);
  EXPECT_THAT(problems, ElementsAre("xx: the topic heading is missing", "en: the topic title is missing",
                                    "en: the picture pictures/find.png is missing"));
}

}  // namespace
}  // namespace vordane::tools
