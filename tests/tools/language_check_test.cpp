#include "language_check.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "language/message_numbers.h"
#include "language_folder.h"

namespace vordane::tools {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

Problems check(const fakes::LanguageFolder& texts) {
  Problems problems;
  checkLanguage(readLanguageSource(texts.folder(), problems), problems);
  return problems;
}

class LanguageCheck : public testing::Test {
 protected:
  void expectOnly(const std::string& problem) { EXPECT_THAT(check(texts), ElementsAre(HasSubstr(problem))); }
  fakes::LanguageFolder texts;
};

TEST_F(LanguageCheck, TheShippedTextsAreComplete) {
  EXPECT_THAT(check(texts), IsEmpty());
}

TEST_F(LanguageCheck, AMissingNumberIsFound) {
  texts.replace("messages.tsv", "\n40\tTrunk group blocked", "");
  expectOnly("en/messages: message 40 is missing");
}

TEST_F(LanguageCheck, ANumberBeyondTheLastAndADoubleAreFound) {
  const std::string beyond = std::to_string(messageCount);
  texts.append("messages.tsv", beyond + "\tone too many");
  expectOnly("there is no message " + beyond);
  texts.replace("messages.tsv", beyond + "\tone too many", "9\tagain");
  expectOnly("message 9 stands twice");
}

TEST_F(LanguageCheck, EmptyTextsAndNeedlessOnesAreFound) {
  texts.replace("messages.tsv", "\n8\tFault of an unknown kind", "\n8\t");
  expectOnly("the text of message 8 is empty");
  texts.replace("messages.tsv", "\n8\t", "\n8\tx");
  texts.replace("messages.tsv", "\n52\t", "\n52\tsomething");
  expectOnly("message 52 is never shown");
  texts.replace("messages.tsv", "\n52\tsomething", "\n52\t");
  texts.replace("messages.tsv", "\n181\t", "\n181\tReady");
  expectOnly("message 181 is never shown");
}

TEST_F(LanguageCheck, AListOfTheWrongLengthIsFound) {
  texts.append("lists.tsv", "cboFK11\t4\tone too many");
  expectOnly("cboFK11 has 5 items instead of 4");
  texts.replace("lists.tsv", "cboFK11\t4\tone too many\n", "");
  texts.replace("lists.tsv", "cboFK03\t2\tnot known\n", "");
  expectOnly("cboFK03 has 2 items instead of 3");
}

TEST_F(LanguageCheck, OpenListsMayGrow) {
  texts.append("lists.tsv", "cboFK17\t17\tmore");
  EXPECT_THAT(check(texts), IsEmpty());
}

TEST_F(LanguageCheck, AGapADoubleAndAnUnknownListAreFound) {
  texts.replace("lists.tsv", "cboFK01\t3\t", "cboFK01\t4\t");
  EXPECT_THAT(check(texts), ElementsAre(HasSubstr("code 4 of cboFK01 stands twice"),
                                        HasSubstr("code 3 of cboFK01 is missing")));
  texts.replace("lists.tsv", "cboFK01\t4\t", "cboFK01\t3\t");
  texts.append("lists.tsv", "cboFK99\t0\tx");
  expectOnly("there is no list \"cboFK99\"");
}

TEST_F(LanguageCheck, UnknownMissingAndDoubleControlsAreFound) {
  texts.append("controls.tsv", "cmdNothing\tx\t-1\t9\t");
  expectOnly("there is no control \"cmdNothing\"");
  texts.replace("controls.tsv", "cmdNothing\tx", "lblMJ\tx");
  expectOnly("lblMJ stands twice");
  texts.replace("controls.tsv", "lblMJ\tx\t-1\t9\t\n", "");
  texts.replace("controls.tsv", "imgDetail\t", "imgHeader\t");
  EXPECT_THAT(check(texts),
              ElementsAre(HasSubstr("imgHeader stands twice"), HasSubstr("imgDetail is missing")));
}

TEST_F(LanguageCheck, TextsForPropertiesThatATypeLacksAreFound) {
  texts.replace("controls.tsv", "drpPBXList\t-1", "drpPBXList\tChoose");
  expectOnly("drpPBXList has no caption: it must be -1");
}

TEST_F(LanguageCheck, AnAccessKeyStandsOnce) {
  texts.replace("controls.tsv", "&Print...", "P&rint...");
  expectOnly("the access key \"R\" is that of cmdRequest");
}

// The find bar stands in the same window as the buttons, so its captions share their keys.
TEST_F(LanguageCheck, AnAccessKeyOfAMessageIsThatOfNoControl) {
  texts.replace("messages.tsv", "214\t&Text:", "214\tFin&d:");
  expectOnly("messages.tsv:");
  expectOnly("the access key \"D\" is that of cmdClear");
  texts.replace("messages.tsv", "214\tFin&d:", "214\tFind &by:");
  EXPECT_THAT(check(texts), IsEmpty());
  texts.replace("messages.tsv", "215\tFind &next", "215\tFind &by next");
  expectOnly("the access key \"B\" is that of message 214");
}

// The menu over the pane is a window of its own: its C is not the button's.
TEST_F(LanguageCheck, AMenuHasKeysOfItsOwn) {
  EXPECT_NE(texts.read("messages.tsv").find("221\t&Copy"), std::string::npos);
  EXPECT_NE(texts.read("controls.tsv").find("cmdClose\t&Close"), std::string::npos);
  EXPECT_THAT(check(texts), IsEmpty());
}

TEST_F(LanguageCheck, EntriesOfOneMenuHaveDifferentKeys) {
  texts.replace("messages.tsv", "Only this &processor ({1})", "Only this pr&ocessor ({1})");
  expectOnly("the access key \"O\" is that of message 267");
}

TEST_F(LanguageCheck, ACaptionInTurnHasTheKeyOfTheFirst) {
  texts.replace("messages.tsv", "&Kinds: {1} of {2}", "Ki&nds: {1} of {2}");
  expectOnly("message 250 has another access key than message 249");
}

TEST_F(LanguageCheck, CaptionsAmongTheMessagesHaveAKeyAndNoOthers) {
  texts.replace("messages.tsv", "215\tFind &next", "215\tFind next");
  expectOnly("message 215 has no access key");
  texts.replace("messages.tsv", "215\tFind next", "215\tFind &next");
  texts.replace("messages.tsv", "216\tClose", "216\t&Close");
  expectOnly("message 216 is no caption");
}

TEST_F(LanguageCheck, ASizeMustBeASize) {
  texts.replace("forms.tsv", "Segoe UI\t9", "Segoe UI\t0");
  expectOnly("\"0\" is no font size");
}

TEST_F(LanguageCheck, BoxesAreExamined) {
  texts.replace("boxes.tsv", "vbYesNo+vbQuestion\t", "vbYesNo + vbQuestion\t");
  EXPECT_THAT(check(texts), ElementsAre(HasSubstr("\"vbYesNo \" is no button style"),
                                        HasSubstr("\" vbQuestion\" is no button style")));
  texts.replace("boxes.tsv", "vbYesNo + vbQuestion\t", "vbYesNo+vbQuestion\t");
  texts.replace("boxes.tsv", "finished.&%CR", "finished. & %CR");
  EXPECT_THAT(check(texts),
              ElementsAre(HasSubstr("has a blank beside it"), HasSubstr("has a blank beside it")));
  texts.replace("boxes.tsv", "finished. & %CR", "finished.&%CR");
  texts.replace("boxes.tsv", "\n104\t", "\n103\t");
  expectOnly("box 104 is missing");
}

TEST_F(LanguageCheck, HeadingsProjectAndHelpAreExamined) {
  texts.replace("headings.tsv", "grdDisplayFault\t5", "grdDisplayFault\t6");
  texts.replace("project.tsv", "Title\tFault Display\nOle", "Ole");
  texts.replace("help.tsv", "lblMJ\t", "lblXX\t");
  EXPECT_THAT(check(texts),
              ElementsAre(HasSubstr("there is no such column"), HasSubstr("headings: column 5 is missing"),
                          HasSubstr("project: Title is missing"), HasSubstr("there is no control \"lblXX\""),
                          HasSubstr("help: lblMJ is missing")));
}

TEST(LanguageComparison, DifferencesAreNamedOnce) {
  Problems problems;
  fakes::LanguageFolder first, second;
  second.replace("messages.tsv", "Faults: {1}", "Faults");
  second.replace("boxes.tsv", "vbYesNo+vbQuestion+vbDefaultButton2", "vbYesNo+vbQuestion");
  second.append("lists.tsv", "cboFK58\t8\tmore");
  const LanguageSource sources[] = {readLanguageSource(first.folder(), problems),
                                    readLanguageSource(second.folder(), problems)};
  compareLanguages(sources, problems);
  EXPECT_THAT(problems,
              ElementsAre(HasSubstr("box 105 has"), HasSubstr("message 175 has \"1\" in one and \"\""),
                          HasSubstr("list cboFK58 8 is missing")));
}

}  // namespace
}  // namespace vordane::tools
