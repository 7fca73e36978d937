#include "language_source.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

#include "language/comLanguage.h"

#include "language_folder.h"
#include "language_tables.h"

namespace vordane::tools {
namespace {

using testing::ElementsAre;

TEST(LanguageSource, RowsKeepTheirPlaceAndBlanks) {
  fakes::LanguageFolder texts;
  texts.write("messages.tsv", "\xEF\xBB\xBF# comment\r\n0\tTitle\r\n\n5\t padded \n6\t");
  Problems problems;
  const LanguageSource source = readLanguageSource(texts.folder(), problems);
  EXPECT_THAT(problems, ElementsAre());
  EXPECT_EQ(source.name, "en");
  ASSERT_EQ(source.messages.size(), 3U);
  EXPECT_EQ(source.messages[0].place, "en/messages.tsv:2");
  EXPECT_EQ(source.messages[0].fields[1], u"Title");
  EXPECT_EQ(source.messages[1].place, "en/messages.tsv:4");
  EXPECT_EQ(source.messages[1].fields[1], u" padded ");
  EXPECT_EQ(source.messages[2].fields[1], u"");
}

// As docs/languages.md tells translators.
TEST(LanguageTables, AFileHasWhatDiffersFromRowToRow) {
  std::map<std::string, std::u16string> columns;
  for (const LanguageTable& table : languageTables) {
    std::u16string& names = columns[(table.shared ? "shared/" : "") + std::string(table.file)];
    for (const std::u16string_view column : columnsInFile(table)) names.append(column).append(u" ");
    names.append(u"> ").append(table.table.name);
    if (table.holder == Holder::common) names += u" of Common.LNG";
  }
  const std::map<std::string, std::u16string> expected{
      {"messages.tsv", u"ID Caption > tMessages"},
      {"lists.tsv", u"ObjectName ListIndex List > tComboBoxDT"},
      {"forms.tsv", u"ObjectName Caption FontName FontSize > tForms"},
      {"controls.tsv", u"ObjectName Caption FontName FontSize ToolTipText > tControls"},
      {"headings.tsv", u"ObjectName ColIndex Caption > tSSGridsHD"},
      {"project.tsv", u"property text > tProject"},
      {"boxes.tsv", u"MsgNo Prompt Buttons Title HelpFile Context > tMsgBox"},
      {"common_boxes.tsv", u"MsgNo Prompt Buttons Title HelpFile Context > tMsgBox of Common.LNG"},
      {"help.tsv", u"ObjectName HelpText > tHelp"},
      {"shared/pictures.tsv", u"ObjectName FileName BasePanel BasePanelIndex > tPicture"},
      {"shared/picture_sets.tsv", u"ID DefaultName FileName > PictureFileName of Common.LNG"},
  };
  EXPECT_EQ(columns, expected);
}

TEST(LanguageTables, TheApplicationsTextsAreTheColumnsOfItsTable) {
  std::vector<std::u16string_view> columns{u"EXEName"}, table;
  for (const comLanguage::ProjectText& text : comLanguage::projectTexts) columns.push_back(text.column);
  for (const database::ColumnDefinition& column : language::columns::project) table.push_back(column.name);
  EXPECT_EQ(columns, table);
}

TEST(LanguageTables, RowsOfAWindowNameIt) {
  for (const LanguageTable& table : languageTables) {
    const std::string file = table.file;
    const bool none = file == "messages.tsv" || file == "project.tsv" || file == "boxes.tsv" ||
                      file == "common_boxes.tsv" || file == "picture_sets.tsv";
    EXPECT_EQ(windowColumn(table), none ? u"" : file == "forms.tsv" ? u"ObjectName" : u"FormName") << file;
  }
}

TEST(LanguageSource, MissingFilesAndWrongColumnsAreNamed) {
  fakes::LanguageFolder texts;
  std::filesystem::remove(texts.folder() / "help.tsv");
  texts.write("headings.tsv", "grdDisplayFault\t0\n");
  Problems problems;
  readLanguageSource(texts.folder() / "", problems);
  EXPECT_THAT(problems, ElementsAre("en/headings.tsv:1: 2 columns instead of 3", "en/help.tsv: missing"));
}

}  // namespace
}  // namespace vordane::tools
