// The controls of the window, by name and type: what the form creates and what every language has rows for.
#pragma once

#include <array>
#include <string_view>

namespace vordane {

inline constexpr std::u16string_view formName = u"dlgFaultDisplay";

// The drop-downs that hold the code texts of a fault kind, hidden from the user. An item's position is its
// code; `items` is their exact number, `atLeast` lists may hold more.
struct KindList {
  std::u16string_view name;
  int items;
  bool atLeast = false;
};

inline constexpr std::array<KindList, 23> kindLists{{
    {u"cboFK01", 17},       {u"cboFK03", 3},       {u"cboFK09", 17},      {u"cboFK0A", 17},
    {u"cboFK10", 17},       {u"cboFK11", 4},       {u"cboFK12", 17},      {u"cboFK16", 9},
    {u"cboFK17", 17, true}, {u"cboFK19", 17},      {u"cboFK1A", 17},      {u"cboFK20", 17},
    {u"cboFK23", 5},        {u"cboFK26", 17},      {u"cboFK28", 3},       {u"cboFK2B", 17},
    {u"cboFK30", 17},       {u"cboFK33", 5},       {u"cboFK36", 17},      {u"cboFK3B", 17},
    {u"cboFK48", 1, true},  {u"cboFK49", 1, true}, {u"cboFK58", 1, true},
}};

struct FormControl {
  std::u16string_view name;
  std::u16string_view typeName;
};

// Every control with texts or fonts besides the kind lists, in tab order. The data controls and the timer
// have neither.
inline constexpr std::array<FormControl, 19> formControls{{
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
    {u"cmdClose", u"CommandButton"},
    {u"grdDisplayFault", u"SSDBGrid"},
    {u"imgBackground", u"PictureBox"},  // behind the whole window
    {u"imgHeader", u"PictureBox"},      // behind drop-down, lamps and buttons
    {u"imgDetail", u"PictureBox"},      // behind the pane with the whole fault
    {u"mnuWhatsThis", u"Menu"},
    {u"itmWhatThis", u"Menu"},
}};

// The columns of grdDisplayFault: Fault, Alarm, Date, CPU, Description, Count.
inline constexpr int gridColumns = 6;

}  // namespace vordane
