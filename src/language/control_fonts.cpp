#include "language/control_fonts.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

#include "text/numbers.h"

namespace vordane::language {
namespace {

// The character sets are fixed, whatever the language: 204 for the standard controls and the data grid,
// 128 for the SS controls and the tree and list views.
constexpr std::int16_t cyrillic = 204;
constexpr std::int16_t japanese = 128;
using Charset = std::optional<std::int16_t>;

enum class Fonts {
  shortNames,  // the properties FontName and FontSize
  font,        // Font.Name and Font.Size
  grid,        // heading, page footer, page header, body, and every style set
  combo,       // body, heading, and every style set
  caption,     // CaptionFont
};

struct FontRule {
  std::u16string_view typeName;  // with regard to case
  Fonts fonts;
  Charset charset;
};

constexpr std::array<FontRule, 31> fontRules{{
    {u"ComboBox", Fonts::shortNames, std::nullopt},
    {u"ListBox", Fonts::shortNames, std::nullopt},
    {u"FileListBox", Fonts::shortNames, std::nullopt},
    {u"DriveListBox", Fonts::shortNames, std::nullopt},
    {u"DirListBox", Fonts::shortNames, std::nullopt},
    {u"CommandButton", Fonts::shortNames, cyrillic},
    {u"Label", Fonts::shortNames, cyrillic},
    {u"MSFlexGrid", Fonts::shortNames, cyrillic},
    {u"Frame", Fonts::shortNames, cyrillic},
    {u"OptionButton", Fonts::shortNames, cyrillic},
    {u"vsFlexArray", Fonts::shortNames, cyrillic},
    {u"TextBox", Fonts::shortNames, cyrillic},
    {u"SSCommand", Fonts::shortNames, japanese},
    {u"SSCheck", Fonts::shortNames, japanese},
    {u"SSOption", Fonts::shortNames, japanese},
    {u"SSFrame", Fonts::shortNames, japanese},
    {u"SSRibbon", Fonts::shortNames, japanese},
    {u"SSPanel", Fonts::shortNames, japanese},
    {u"SSTree", Fonts::font, japanese},
    {u"ListView", Fonts::font, japanese},
    {u"TreeView", Fonts::font, japanese},
    {u"SSDBDropDown", Fonts::font, japanese},
    {u"CheckBox", Fonts::font, std::nullopt},
    {u"PDQComm", Fonts::font, std::nullopt},
    {u"StatusBar", Fonts::font, std::nullopt},
    {u"RichTextBox", Fonts::font, std::nullopt},
    {u"Menu", Fonts::font, std::nullopt},
    {u"SSTab", Fonts::font, japanese},
    {u"SSDBGrid", Fonts::grid, cyrillic},
    {u"SSDBCombo", Fonts::combo, japanese},
    {u"SSListBar", Fonts::caption, std::nullopt},
}};
constexpr FontRule everyOther{u"", Fonts::font, std::nullopt};

constexpr std::array<std::u16string_view, 4> gridFonts{u"HeadFont", u"PageFooterFont", u"PageHeaderFont",
                                                       u"Font"};
constexpr std::array<std::u16string_view, 2> comboFonts{u"Font", u"HeadFont"};

const FontRule& ruleFor(std::u16string_view typeName) {
  const auto found = std::find_if(fontRules.begin(), fontRules.end(),
                                  [&](const FontRule& rule) { return rule.typeName == typeName; });
  return found == fontRules.end() ? everyOther : *found;
}

// One control, one row's font.
struct FontChange {
  window::Control& control;
  const std::u16string& name;
  const window::Value& size;
  Charset charset;
};

void setPair(const FontChange& change, std::u16string_view nameProperty, std::u16string_view sizeProperty) {
  if (!change.name.empty()) change.control.set(nameProperty, change.name);
  const auto size = static_cast<float>(automation::toDouble(change.size));
  if (!(size > 0)) throw window::PropertyError(change.control.name() + u": a font size must be above 0");
  change.control.set(sizeProperty, size);
}

void setCharset(const FontChange& change, const std::u16string& font) {
  if (change.charset) change.control.set(font + u".Charset", *change.charset);
}

void setOne(const FontChange& change, std::u16string_view font) {
  const std::u16string path(font);
  setPair(change, path + u".Name", path + u".Size");
  setCharset(change, path);
}

void setStyleSets(const FontChange& change) {
  const std::int32_t count = change.control.number(u"StyleSets.Count");
  for (std::int32_t index = 0; index < count; ++index)
    setOne(change, u"StyleSets(" + text::decimal(index) + u").Font");
}

}  // namespace

void setControlFont(window::Control& control, const std::u16string& name, const window::Value& size) {
  const FontRule& rule = ruleFor(control.typeName());
  const FontChange change{control, name, size, rule.charset};
  switch (rule.fonts) {
    case Fonts::shortNames:
      setPair(change, u"FontName", u"FontSize");
      setCharset(change, u"Font");
      break;
    case Fonts::font:
      setOne(change, u"Font");
      break;
    case Fonts::grid:
      for (const auto& font : gridFonts) setOne(change, font);
      setStyleSets(change);
      break;
    case Fonts::combo:
      for (const auto& font : comboFonts) setOne(change, font);
      setStyleSets(change);
      break;
    case Fonts::caption:
      setOne(change, u"CaptionFont");
      break;
  }
}

void setFont(window::Control& control, const std::u16string& path, const std::u16string& name,
             const window::Value& size) {
  setOne({control, name, size, std::nullopt}, path);
}

}  // namespace vordane::language
