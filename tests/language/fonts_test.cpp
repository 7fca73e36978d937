#include <gtest/gtest.h>

#include "language/control_fonts.h"
#include "language_database.h"
#include "text/numbers.h"
#include "text/utf8.h"

namespace vordane {
namespace {

struct FontCase {
  const char16_t* type;
  std::vector<std::u16string> fonts;  // every font that is set
  int charset;                        // 0: as designed

  friend void PrintTo(const FontCase& font, std::ostream* out) { *out << text::toUtf8(font.type); }
};

class ControlFonts : public testing::TestWithParam<FontCase> {};

TEST_P(ControlFonts, ReachEveryFontOfTheType) {
  const FontCase& expected = GetParam();
  window::Form form = fakes::makeForm();
  window::Properties properties = window::designedProperties(expected.type);
  if (properties.count(u"StyleSets.Count") != 0) window::addStyleSets(properties, 3);
  window::Control& control = form.add(u"c", -1, expected.type, properties);
  language::setControlFont(control, u"Tahoma", 12);
  for (const std::u16string& font : expected.fonts) {
    EXPECT_EQ(control.text(font + u".Name"), u"Tahoma");
    EXPECT_EQ(automation::toDouble(control.get(font + u".Size")), 12);
    EXPECT_EQ(control.number(font + u".Charset"), expected.charset);
  }
  const bool all = expected.fonts.front() != u"CaptionFont";
  EXPECT_EQ(control.text(u"Font.Name"), all ? u"Tahoma" : u"Segoe UI");
}

const std::vector<std::u16string> one{u"Font"};
const std::vector<std::u16string> gridFonts{
    u"HeadFont",          u"PageFooterFont",    u"PageHeaderFont",   u"Font",
    u"StyleSets(0).Font", u"StyleSets(1).Font", u"StyleSets(2).Font"};
const std::vector<std::u16string> comboFonts{u"Font", u"HeadFont", u"StyleSets(0).Font", u"StyleSets(1).Font",
                                             u"StyleSets(2).Font"};

INSTANTIATE_TEST_SUITE_P(
    Types, ControlFonts,
    testing::Values(
        FontCase{u"ComboBox", one, 0}, FontCase{u"ListBox", one, 0}, FontCase{u"FileListBox", one, 0},
        FontCase{u"DriveListBox", one, 0}, FontCase{u"DirListBox", one, 0},
        FontCase{u"CommandButton", one, 204}, FontCase{u"Label", one, 204}, FontCase{u"MSFlexGrid", one, 204},
        FontCase{u"Frame", one, 204}, FontCase{u"OptionButton", one, 204}, FontCase{u"vsFlexArray", one, 204},
        FontCase{u"TextBox", one, 204}, FontCase{u"SSCommand", one, 128}, FontCase{u"SSCheck", one, 128},
        FontCase{u"SSOption", one, 128}, FontCase{u"SSFrame", one, 128}, FontCase{u"SSRibbon", one, 128},
        FontCase{u"SSPanel", one, 128}, FontCase{u"SSTree", one, 128}, FontCase{u"ListView", one, 128},
        FontCase{u"TreeView", one, 128}, FontCase{u"SSDBDropDown", one, 128}, FontCase{u"CheckBox", one, 0},
        FontCase{u"PDQComm", one, 0}, FontCase{u"StatusBar", one, 0}, FontCase{u"RichTextBox", one, 0},
        FontCase{u"Menu", one, 0}, FontCase{u"SSTab", one, 128}, FontCase{u"SSDBGrid", gridFonts, 204},
        FontCase{u"SSDBCombo", comboFonts, 128}, FontCase{u"SSListBar", {u"CaptionFont"}, 0},
        FontCase{u"Calendar", one, 0}, FontCase{u"PictureBox", one, 0}, FontCase{u"Anything", one, 0},
        FontCase{u"label", one, 0}));  // types are compared with regard to case

// Some types take the font through their own two properties, the others through the font object. A control
// that has both tells them apart.
TEST(ControlFont, IsSetThroughTheNamesThatTheTypeKnows) {
  const std::vector<std::u16string> shortNames{
      u"ComboBox",  u"ListBox",    u"FileListBox", u"DriveListBox", u"DirListBox",  u"CommandButton",
      u"Label",     u"MSFlexGrid", u"Frame",       u"OptionButton", u"vsFlexArray", u"TextBox",
      u"SSCommand", u"SSCheck",    u"SSOption",    u"SSFrame",      u"SSRibbon",    u"SSPanel"};
  const std::vector<std::u16string> fontObject{
      u"SSTree",      u"ListView", u"TreeView", u"SSDBDropDown", u"CheckBox",  u"PDQComm",  u"StatusBar",
      u"RichTextBox", u"Menu",     u"SSTab",    u"SSDBGrid",     u"SSDBCombo", u"Calendar", u"Anything"};
  const auto fontsOf = [](const std::u16string& type) {
    window::Form form = fakes::makeForm();
    window::Properties properties = window::designedProperties(type);
    properties[u"FontName"] = std::u16string(u"designed");
    properties[u"FontSize"] = 8.0F;
    properties[u"Font.Name"] = std::u16string(u"designed");
    properties[u"Font.Size"] = 8.0F;
    window::Control& control = form.add(u"c", -1, type, properties);
    language::setControlFont(control, u"Tahoma", 12);
    const auto size = [&](const char16_t* name) {
      return text::decimal(automation::toLong(control.get(name)));
    };
    return control.text(u"FontName") + u" " + size(u"FontSize") + u", " + control.text(u"Font.Name") + u" " +
           size(u"Font.Size");
  };
  for (const auto& type : shortNames)
    EXPECT_EQ(fontsOf(type), u"Tahoma 12, designed 8") << text::toUtf8(type);
  for (const auto& type : fontObject)
    EXPECT_EQ(fontsOf(type), u"designed 8, Tahoma 12") << text::toUtf8(type);
}

TEST(ControlFont, AnEmptyNameKeepsTheFaceAndASizeMustBeAboveZero) {
  window::Form form = fakes::makeForm();
  window::Control& label = fakes::addControl(form, u"lblMJ", u"Label");
  language::setControlFont(label, u"", 12);
  EXPECT_EQ(label.text(u"Font.Name"), u"Arial");
  EXPECT_EQ(automation::toDouble(label.get(u"FontSize")), 12);
  EXPECT_THROW(language::setControlFont(label, u"Tahoma", 0), window::PropertyError);
  EXPECT_EQ(label.text(u"Font.Name"), u"Tahoma") << "set before the size";
  EXPECT_EQ(automation::toDouble(label.get(u"FontSize")), 12);
  EXPECT_EQ(label.number(u"Font.Charset"), 204) << "of the first call; the failing ones end before theirs";
  EXPECT_THROW(language::setControlFont(label, u"Tahoma", -1), window::PropertyError);
  EXPECT_THROW(language::setControlFont(label, u"Verdana", automation::Null{}), automation::AutomationError);
  EXPECT_EQ(label.text(u"Font.Name"), u"Verdana");
}

TEST(ControlFont, AControlWithoutTheFontFails) {
  window::Form form = fakes::makeForm();
  window::Control& bare = form.add(u"bare", -1, u"SSDBGrid", window::designedProperties(u"Label"));
  EXPECT_THROW(language::setControlFont(bare, u"Tahoma", 9), window::PropertyError);
}

}  // namespace
}  // namespace vordane
