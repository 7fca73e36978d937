#include "platform/control_types.h"

#include <algorithm>
#include <array>

#include "text/numbers.h"

namespace vordane::window {
namespace {

// What a type has besides name, place, size, Visible, Enabled and Font.
enum Trait : unsigned {
  caption = 1U,
  toolTip = 2U,
  picture = 4U,
  pictureBackground = 8U,
  colours = 16U,
  content = 32U,  // Text and Locked
  headFont = 64U,
  pageFonts = 128U,
  captionFont = 256U,
  columns = 512U,
  styleSets = 1024U,
};

struct TypeTraits {
  std::u16string_view typeName;
  unsigned traits;
};

constexpr std::array<TypeTraits, 35> types{{
    {u"Calendar", toolTip},
    {u"CheckBox", caption | toolTip | colours},
    {u"ComboBox", toolTip | colours},
    {u"CommandButton", caption | toolTip},
    {u"DirListBox", toolTip},
    {u"DriveListBox", toolTip},
    {u"FileListBox", toolTip},
    {u"Frame", caption | toolTip | colours},
    {u"Label", caption | toolTip | colours},
    {u"ListBox", toolTip | colours},
    {u"ListView", toolTip},
    {u"MSFlexGrid", toolTip},
    {u"Menu", caption},
    {u"OptionButton", caption | toolTip},
    {u"PDQComm", 0},
    {u"PictureBox", toolTip | picture | colours},
    {u"RichTextBox", toolTip | content},
    {u"SSCheck", caption | toolTip},
    {u"SSCommand", caption | toolTip | picture},
    {u"SSDBCombo", toolTip | headFont | columns | styleSets},
    {u"SSDBDropDown", toolTip | columns},
    {u"SSDBGrid", caption | toolTip | headFont | pageFonts | columns | styleSets},
    {u"SSFrame", caption | toolTip},
    {u"SSListBar", toolTip | pictureBackground | captionFont},
    {u"SSOption", caption | toolTip},
    {u"SSPanel", caption | toolTip | picture},
    {u"SSRibbon", caption | toolTip},
    {u"SSTab", caption | toolTip | picture},
    {u"SSTree", toolTip | pictureBackground},
    {u"StatusBar", toolTip},
    {u"TextBox", toolTip | content | colours},
    {u"Timer", 0},
    {u"TreeView", toolTip},
    {u"vsFlexArray", toolTip},
    {u"vsFlexGrid", toolTip},
}};

unsigned traitsOf(std::u16string_view typeName) {
  const auto found = std::find_if(types.begin(), types.end(),
                                  [&](const TypeTraits& type) { return type.typeName == typeName; });
  return found == types.end() ? static_cast<unsigned>(toolTip) : found->traits;
}

void addFont(Properties& properties, const std::u16string& path) {
  properties[path + u".Name"] = std::u16string(u"Segoe UI");
  properties[path + u".Size"] = 9.0F;
  properties[path + u".Charset"] = std::int16_t{0};
}

Properties plainControl() {
  Properties properties{{u"Left", std::int32_t{0}},   {u"Top", std::int32_t{0}}, {u"Width", std::int32_t{0}},
                        {u"Height", std::int32_t{0}}, {u"Visible", true},        {u"Enabled", true}};
  addFont(properties, u"Font");
  return properties;
}

std::u16string element(std::u16string_view collection, int index) {
  return std::u16string(collection) + u"(" + text::decimal(index) + u")";
}

}  // namespace

Properties designedProperties(std::u16string_view typeName) {
  const unsigned traits = traitsOf(typeName);
  Properties properties = plainControl();
  const auto addText = [&](unsigned trait, const char16_t* name) {
    if ((traits & trait) != 0) properties[name] = std::u16string{};
  };
  addText(caption, u"Caption");
  addText(toolTip, u"ToolTipText");
  addText(picture, u"Picture");
  addText(pictureBackground, u"PictureBackground");
  addText(content, u"Text");
  if ((traits & content) != 0) properties[u"Locked"] = false;
  if ((traits & colours) != 0) {
    properties[u"BackColor"] = std::int32_t{0xFFFFFF};
    properties[u"ForeColor"] = std::int32_t{0};
  }
  if ((traits & headFont) != 0) addFont(properties, u"HeadFont");
  if ((traits & pageFonts) != 0) {
    addFont(properties, u"PageHeaderFont");
    addFont(properties, u"PageFooterFont");
  }
  if ((traits & captionFont) != 0) addFont(properties, u"CaptionFont");
  if ((traits & columns) != 0) addColumns(properties, 0);
  if ((traits & styleSets) != 0) addStyleSets(properties, 0);
  return properties;
}

void addColumns(Properties& properties, int count) {
  properties[u"Columns.Count"] = std::int32_t{count};
  for (int index = 0; index < count; ++index) {
    properties[element(u"Columns", index) + u".Caption"] = std::u16string{};
    properties[element(u"Columns", index) + u".Width"] = std::int32_t{0};
  }
}

void addStyleSets(Properties& properties, int count) {
  properties[u"StyleSets.Count"] = std::int32_t{count};
  for (int index = 0; index < count; ++index) {
    properties[element(u"StyleSets", index) + u".Name"] = std::u16string{};
    addFont(properties, element(u"StyleSets", index) + u".Font");
  }
}

}  // namespace vordane::window
