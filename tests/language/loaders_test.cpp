#include <gtest/gtest.h>

#include "language/comDatabase.h"
#include "language/comLanguage.h"
#include "language/language_databases.h"
#include "language_database.h"

namespace vordane {
namespace {

using namespace fakes;  // NOLINT: the words of these tests

constexpr const char16_t* form16 = u"dlgFaultDisplay";

class Loaders : public testing::Test {
 protected:
  LanguageDatabase language;
  window::Form form = makeForm();

  window::Control& label = addControl(form, u"lblMJ", u"Label");
  window::Control& button = addControl(form, u"cmdRequest", u"CommandButton");
};

Row control(const char16_t* name, database::Value caption, database::Value font, database::Value size,
            database::Value tip, int index = -1) {
  return {t(form16), t(name), n(index), std::move(caption), std::move(font), std::move(size), std::move(tip)};
}

TEST_F(Loaders, WindowCaptionIsExpandedAndFontSet) {
  language.with(u"tForms", {{t(form16), t(u"Fault&%SP&List"), t(u"Tahoma"), n(11)},
                            {t(u"dlgOther"), t(u"Other"), t(u"Arial"), n(8)}});
  EXPECT_TRUE(comLanguage::LocaliseForm(form, language.open()));
  EXPECT_EQ(form.self().text(u"Caption"), u"Fault List");
  EXPECT_EQ(form.self().text(u"Font.Name"), u"Tahoma");
  EXPECT_EQ(automation::toDouble(form.self().get(u"Font.Size")), 11);
}

TEST_F(Loaders, WindowRowKnowsNoDesignedValues) {
  language.with(u"tForms", {{t(form16), t(u"-1"), null, n(9)}});
  EXPECT_TRUE(comLanguage::LocaliseForm(form, language.open()));
  EXPECT_EQ(form.self().text(u"Caption"), u"-1");
  EXPECT_EQ(form.self().text(u"Font.Name"), u"Arial");  // an empty name keeps the face
}

TEST_F(Loaders, WindowRowFailsOnNullCaptionAndUselessSizes) {
  language.with(u"tForms", {{t(form16), null, t(u"Tahoma"), n(9)}});
  EXPECT_FALSE(comLanguage::LocaliseForm(form, language.open()));
  EXPECT_EQ(form.self().text(u"Caption"), u"designed");
  for (const database::Value& size : {n(0), n(-1), null}) {
    LanguageDatabase other;
    other.with(u"tForms", {{t(form16), t(u"new"), t(u"Tahoma"), size}});
    EXPECT_FALSE(comLanguage::LocaliseForm(form, other.open()));
    EXPECT_EQ(form.self().text(u"Caption"), u"new");  // what was applied before stays
    EXPECT_EQ(form.self().text(u"Font.Name"), u"Tahoma");
    form.self().set(u"Font.Name", std::u16string(u"Arial"));
  }
}

TEST_F(Loaders, MissingTableIsFalseAndNoRowIsTrue) {
  language.with(u"tForms", {});
  database::Database& database = language.open();
  EXPECT_TRUE(comLanguage::LocaliseForm(form, database));
  EXPECT_FALSE(comLanguage::LocaliseControls(form, database));
  EXPECT_FALSE(comLanguage::LoadComboLists(form, database));
  EXPECT_FALSE(comLanguage::LocaliseGridHeadings(form, database));
}

TEST_F(Loaders, ControlTextsFollowNullAndMinusOne) {
  language.with(u"tControls", {control(u"lblMJ", null, t(u"-1"), null, null),
                               control(u"CMDREQUEST", t(u"-1"), t(u"-1"), null, t(u"-1"))});
  EXPECT_TRUE(comLanguage::LocaliseControls(form, language.open()));
  EXPECT_EQ(label.text(u"Caption"), u"");
  EXPECT_EQ(label.text(u"ToolTipText"), u"");
  EXPECT_EQ(button.text(u"Caption"), u"designed");
  EXPECT_EQ(button.text(u"ToolTipText"), u"designed tip");
}

TEST_F(Loaders, ControlCaptionsStandAsStored) {
  language.with(u"tControls", {control(u"lblMJ", t(u"Fault&%SP&List"), t(u"-1"), null, t(u"a&b"))});
  EXPECT_TRUE(comLanguage::LocaliseControls(form, language.open()));
  EXPECT_EQ(label.text(u"Caption"), u"Fault&%SP&List");
  EXPECT_EQ(label.text(u"ToolTipText"), u"a&b");
}

TEST_F(Loaders, MinusOneFontLeavesFontAndCharacterSetButAppliesTheTip) {
  language.with(u"tControls", {control(u"lblMJ", t(u"new"), t(u"-1"), n(20), t(u"tip"))});
  EXPECT_TRUE(comLanguage::LocaliseControls(form, language.open()));
  EXPECT_EQ(label.text(u"Font.Name"), u"Arial");
  EXPECT_EQ(label.number(u"Font.Charset"), 0);
  EXPECT_EQ(label.text(u"ToolTipText"), u"tip");
}

// Caption, font, tool tip: what stands before the failing step has been set, what stands behind it has not.
TEST_F(Loaders, AFailingFontComesBehindTheCaptionAndBeforeTheTip) {
  language.with(u"tControls", {control(u"lblMJ", t(u"new"), t(u"Tahoma"), n(0), t(u"new tip"))});
  EXPECT_FALSE(comLanguage::LocaliseControls(form, language.open()));
  EXPECT_EQ(label.text(u"Caption"), u"new");
  EXPECT_EQ(label.text(u"Font.Name"), u"Tahoma");
  EXPECT_EQ(label.text(u"ToolTipText"), u"designed tip");
}

TEST_F(Loaders, AFailingRowKeepsTheRowsBefore) {
  language.with(u"tControls", {control(u"lblMJ", t(u"first"), t(u"-1"), null, t(u"-1")),
                               control(u"nobody", t(u"x"), t(u"-1"), null, t(u"-1")),
                               control(u"cmdRequest", t(u"last"), t(u"-1"), null, t(u"-1"))});
  EXPECT_FALSE(comLanguage::LocaliseControls(form, language.open()));
  EXPECT_EQ(label.text(u"Caption"), u"first");
  EXPECT_EQ(button.text(u"Caption"), u"designed");
}

TEST_F(Loaders, ACaptionForATypeWithoutOneFails) {
  addControl(form, u"txtTimeTag", u"TextBox");
  language.with(u"tControls", {control(u"txtTimeTag", t(u"text"), t(u"-1"), null, t(u"-1"))});
  EXPECT_FALSE(comLanguage::LocaliseControls(form, language.open()));
}

TEST_F(Loaders, AnIndexNamesTheElementOfAControlArray) {
  window::Control& second = addControl(form, u"lblArray", u"Label", 1);
  language.with(u"tControls", {control(u"lblArray", t(u"second"), t(u"-1"), null, t(u"-1"), 1)});
  EXPECT_TRUE(comLanguage::LocaliseControls(form, language.open()));
  EXPECT_EQ(second.text(u"Caption"), u"second");
  LanguageDatabase plain;
  plain.with(u"tControls", {control(u"lblArray", t(u"none"), t(u"-1"), null, t(u"-1"))});
  EXPECT_FALSE(comLanguage::LocaliseControls(form, plain.open()));
}

TEST_F(Loaders, ListsFillInTheirOrderAndTheLastVisibleRowIsChosen) {
  window::Control& list = addControl(form, u"cboFK01", u"ComboBox");
  const auto row = [](int position, const char16_t* text, int data, bool visible) -> Row {
    return {t(form16), t(u"cboFK01"), n(-1), n(position), t(text), n(data), visible};
  };
  language.with(u"tComboBoxDT",
                {row(2, u"two", 22, true), row(0, u"zero", 20, false), row(1, u"one", 21, true)});
  EXPECT_TRUE(comLanguage::LoadComboLists(form, language.open()));
  ASSERT_EQ(list.items().size(), 3U);
  EXPECT_EQ(list.items()[0].text, u"zero");
  EXPECT_EQ(list.items()[1].itemData, 21);
  EXPECT_EQ(list.listIndex(), 2);
  EXPECT_TRUE(comLanguage::LoadComboLists(form, language.open()));
  EXPECT_EQ(list.items().size(), 6U);  // not cleared first
}

TEST_F(Loaders, ANullListTextIsEmptyAndANullItemDataFails) {
  window::Control& list = addControl(form, u"cboFK01", u"ComboBox");
  language.with(u"tComboBoxDT", {{t(form16), t(u"cboFK01"), n(-1), n(0), null, n(0), false},
                                 {t(form16), t(u"cboFK01"), n(-1), n(1), t(u"x"), null, false}});
  EXPECT_FALSE(comLanguage::LoadComboLists(form, language.open()));
  ASSERT_EQ(list.items().size(), 2U);
  EXPECT_EQ(list.items()[0].text, u"");
}

TEST_F(Loaders, ListRowsForAControlWithoutAListFail) {
  language.with(u"tComboBoxDT", {{t(form16), t(u"lblMJ"), n(-1), n(0), t(u"x"), n(0), false}});
  EXPECT_FALSE(comLanguage::LoadComboLists(form, language.open()));
}

TEST_F(Loaders, HeadingsReachTheirColumns) {
  window::Properties properties = window::designedProperties(u"SSDBGrid");
  window::addColumns(properties, 3);
  for (const char16_t* column : {u"Columns(0).Caption", u"Columns(1).Caption", u"Columns(2).Caption"})
    properties[column] = std::u16string(u"designed");
  window::Control& grid = form.add(u"grdDisplayFault", -1, u"SSDBGrid", properties);
  const auto row = [](int column, database::Value caption) -> Row {
    return {t(form16), t(u"grdDisplayFault"), n(-1), n(column), std::move(caption)};
  };
  language.with(u"tSSGridsHD", {row(0, t(u"Kind")), row(1, t(u"-1")), row(2, null), row(3, t(u"none"))});
  EXPECT_FALSE(comLanguage::LocaliseGridHeadings(form, language.open()));  // there is no column 3
  EXPECT_EQ(grid.text(u"Columns(0).Caption"), u"Kind");
  EXPECT_EQ(grid.text(u"Columns(1).Caption"), u"designed");
  EXPECT_EQ(grid.text(u"Columns(2).Caption"), u"");
}

TEST_F(Loaders, ProjectTextsComeFromTheExecutablesRow) {
  language.with(u"tProject", {{t(u"OTHER"), t(u"o"), t(u"o"), t(u"o"), t(u"o"), t(u"o")},
                              {t(u"VORDANE"), t(u"T"), null, t(u"-1"), t(u"PT"), t(u"PX")}});
  comLanguage::ProjectTexts texts{u"a", u"b", u"c", u"d", u"e"};
  EXPECT_TRUE(comLanguage::LoadProjectTexts(u"VORDANE", language.open(), texts));
  EXPECT_EQ(texts.Title, u"T");
  EXPECT_EQ(texts.OleServerBusyMsgTitle, u"");
  EXPECT_EQ(texts.OleServerBusyMsgText, u"c");
  EXPECT_EQ(texts.OleRequestPendingMsgTitle, u"PT");
  EXPECT_EQ(texts.OleRequestPendingMsgText, u"PX");
  EXPECT_FALSE(comLanguage::LoadProjectTexts(u"NOBODY", language.open(), texts));
}

TEST_F(Loaders, TheFirstOfTwoProjectRowsCounts) {
  language.with(u"tProject", {{t(u"VORDANE"), t(u"first"), t(u"1"), t(u"2"), t(u"3"), t(u"4")},
                              {t(u"VORDANE"), t(u"second"), t(u"5"), t(u"6"), t(u"7"), t(u"8")}});
  comLanguage::ProjectTexts texts;
  EXPECT_TRUE(comLanguage::LoadProjectTexts(u"VORDANE", language.open(), texts));
  EXPECT_EQ(texts.Title, u"first");
  EXPECT_EQ(texts.OleServerBusyMsgTitle, u"1");
  EXPECT_EQ(texts.OleRequestPendingMsgText, u"4");
}

TEST_F(Loaders, MessagesStandInAscendingOrder) {
  language.with(u"tMessages", {{n(7), t(u"seven")}, {n(0), t(u"zero")}, {n(3), null}});
  std::vector<std::u16string> messages{u"old"};
  EXPECT_TRUE(comLanguage::LoadTextArray(messages, u"tMessages", language.open()));
  EXPECT_EQ(messages, (std::vector<std::u16string>{u"zero", u"", u"seven"}));
}

TEST_F(Loaders, NoMessagesAreAnEmptyArray) {
  language.with(u"tMessages", {});
  std::vector<std::u16string> messages{u"old"};
  EXPECT_TRUE(comLanguage::LoadTextArray(messages, u"tMessages", language.open()));
  EXPECT_TRUE(messages.empty());
}

TEST_F(Loaders, ANumberBelowTheCountsOwnIsFalse) {
  language.with(u"tMessages", {{n(-7), t(u"-3")}, {n(0), t(u"zero")}});
  std::vector<std::u16string> messages;
  EXPECT_FALSE(comLanguage::LoadTextArray(messages, u"tMessages", language.open()));
}

TEST_F(Loaders, MoreMessagesThan16BitsCountAreFalse) {
  std::vector<Row> rows;
  for (int id = 0; id <= 32767; ++id) rows.push_back({n(id), t(u"x")});
  language.with(u"tMessages", rows);
  std::vector<std::u16string> messages;
  EXPECT_FALSE(comLanguage::LoadTextArray(messages, u"tMessages", language.open()));
}

TEST_F(Loaders, AMissingMessageTableIsFalse) {
  language.with(u"tForms", {});
  std::vector<std::u16string> messages;
  EXPECT_FALSE(comLanguage::LoadTextArray(messages, u"tMessages", language.open()));
}

TEST_F(Loaders, HelpTextsStandByControlAndMayBeAbsent) {
  language.with(u"tForms", {});
  EXPECT_TRUE(comLanguage::loadHelpTexts(form, language.open()).empty());
  constexpr database::ColumnDefinition columns[] = {{u"FormName", database::ColumnType::text},
                                                    {u"ObjectName", database::ColumnType::text},
                                                    {u"HelpText", database::ColumnType::text}};
  LanguageDatabase helped;
  helped.with({u"tHelp", columns}, {{t(form16), t(u"lblMJ"), t(u"A lamp.")}, {t(u"x"), t(u"y"), t(u"z")}});
  EXPECT_EQ(comLanguage::loadHelpTexts(form, helped.open()),
            (std::map<std::u16string, std::u16string>{{u"lblMJ", u"A lamp."}}));
}

TEST(OpenLanguage, SucceedsOrLeavesNothing) {
  FolderEngine engine;
  makeDatabase(engine, u"VORDANE.LNG", {{tableNamed(language::ownTables, u"tForms"), {}}});
  std::unique_ptr<database::Database> database;
  EXPECT_TRUE(comDatabase::OpenLanguageDatabase(engine, u"C:\\X\\VORDANE.LNG", database, true));
  EXPECT_NE(database, nullptr);
  EXPECT_TRUE(engine.opened.back().readOnly);
  EXPECT_FALSE(comDatabase::OpenLanguageDatabase(engine, u"C:\\X\\Missing.LNG", database, false));
  EXPECT_EQ(database, nullptr);
}

}  // namespace
}  // namespace vordane
