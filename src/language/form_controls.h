// The controls of the window, by name and type: what the form creates and what every language has rows for.
#pragma once

#include <array>
#include <string_view>

namespace vordane {

inline constexpr std::u16string_view formName = u"dlgFaultDisplay";

struct FormControl {
  std::u16string_view name;
  std::u16string_view typeName;
};

// Every control with texts or fonts besides the lists of the fault kinds (faults/kind_lists.h), in tab order.
// The data controls and the timer have neither.
inline constexpr std::array<FormControl, 20> formControls{{
    {u"lblListups", u"Label"},     // labels the drop-down
    {u"drpPBXList", u"ComboBox"},  //
    {u"lblTimetag", u"Label"},     // labels the time of the last list
    {u"txtTimeTag", u"TextBox"},   // read-only
    {u"fraAlarmLamp", u"Frame"},   //
    {u"lblMJ", u"Label"},          // the lamps; their words are not their captions
    {u"lblMN", u"Label"},          //
    {u"cmdRequest", u"CommandButton"},
    {u"cmdReset", u"CommandButton"},
    {u"cmdPrint", u"CommandButton"},
    {u"cmdClear", u"CommandButton"},
    {u"cmdLookUp", u"CommandButton"},
    {u"cmdFilter", u"CommandButton"},
    {u"cmdClose", u"CommandButton"},
    {u"grdDisplayFault", u"SSDBGrid"},
    {u"imgBackground", u"PictureBox"},  // behind the whole window
    {u"imgHeader", u"PictureBox"},      // behind drop-down, lamps and buttons
    {u"imgDetail", u"PictureBox"},      // behind the pane with the whole fault
    {u"mnuWhatsThis", u"Menu"},
    {u"itmWhatThis", u"Menu"},
}};

// What's This opens for these with the right button.
inline constexpr std::array<std::u16string_view, 5> whatsThisControls{u"lblListups", u"lblMJ", u"lblMN",
                                                                      u"lblTimetag", u"txtTimeTag"};

}  // namespace vordane
