// Which controls of the form the window shows, and as what. The order is that of the Tab key.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <string_view>

#include "platform/action.h"

namespace vordane::window::win32 {

inline constexpr wchar_t windowClassName[] = L"VordaneWindow";
inline constexpr wchar_t helpClassName[] = L"VordaneHelp";  // the pop-up that explains a control

enum Id : int {
  idNone = 0,
  idExchangeLabel = 100,
  idExchange,
  idReceivedLabel,
  idReceived,
  idMajor,
  idMinor,
  idRequest,
  idReset,
  idPrint,
  idClear,
  idLookUp,
  idFilter,
  idClose,
  idLookUpLabel,
  idLookUpText,
  idLookUpNext,
  idLookUpClose,
  idLookUpMessage,
  idFilterTextLabel,
  idFilterText,
  idFilterMajor,
  idFilterMinor,
  idFilterNoted,
  idFilterKinds,
  idFilterProcessorLabel,
  idFilterProcessor,
  idFilterSinceLabel,
  idFilterSince,
  idFilterUntilLabel,
  idFilterUntil,
  idFilterClear,
  idFilterClose,
  idFilterOtherDates,
  idFilterMessage,
  idKindList,
  idShowAll,  // in the place of an empty grid
  idFlood,    // above the rows
  idNewer,
  idNotice,
  idGrid,
  idPane,
  idNoteLabel,
  idNoteText,
  idNoteMessage,
  idStatus,
  idAccount,  // in the status bar
  idCopy,
};

// Entries of the system menu: the system keeps the four lowest bits and what is above 0xF000.
inline constexpr UINT guideCommand = 0x0010, soundCommand = 0x0020;
constexpr bool isGuideCommand(WPARAM command) {
  return (command & 0xFFF0U) == guideCommand;
}

constexpr bool isSoundCommand(WPARAM command) {
  return (command & 0xFFF0U) == soundCommand;
}

// The languages that the window can be read in, and the line above them.
inline constexpr UINT mostLanguages = 15;
constexpr UINT languageCommand(UINT place) {
  return 0x0100 + 0x10 * place;
}
constexpr bool isLanguageCommand(WPARAM command) {
  return command >= languageCommand(0) && command < languageCommand(mostLanguages);
}

struct Child {
  Id id;
  std::u16string_view control;  // of the form
  const wchar_t* type;
  DWORD style, extendedStyle;
};

inline constexpr DWORD buttonStyle = WS_TABSTOP | BS_PUSHBUTTON | BS_NOTIFY;
inline constexpr Child children[] = {
    {idExchangeLabel, u"lblListups", WC_STATICW, SS_LEFT | SS_NOTIFY, 0},
    {idExchange, u"drpPBXList", WC_COMBOBOXW,
     WS_TABSTOP | WS_VSCROLL | CBS_DROPDOWNLIST | CBS_OWNERDRAWFIXED | CBS_HASSTRINGS, 0},
    {idReceivedLabel, u"lblTimetag", WC_STATICW, SS_LEFT | SS_NOTIFY, 0},
    {idReceived, u"txtTimeTag", WC_EDITW, WS_TABSTOP | ES_READONLY | ES_AUTOHSCROLL, WS_EX_CLIENTEDGE},
    {idMajor, u"lblMJ", WC_STATICW, SS_OWNERDRAW | SS_NOTIFY, 0},
    {idMinor, u"lblMN", WC_STATICW, SS_OWNERDRAW | SS_NOTIFY, 0},
    {idRequest, u"cmdRequest", WC_BUTTONW, buttonStyle, 0},
    {idReset, u"cmdReset", WC_BUTTONW, buttonStyle, 0},
    {idPrint, u"cmdPrint", WC_BUTTONW, buttonStyle, 0},
    {idClear, u"cmdClear", WC_BUTTONW, buttonStyle, 0},
    {idLookUp, u"cmdLookUp", WC_BUTTONW, buttonStyle, 0},
    {idFilter, u"cmdFilter", WC_BUTTONW, buttonStyle, 0},
    {idClose, u"cmdClose", WC_BUTTONW, buttonStyle, 0},
};

// The action a button stands for; looking up and filtering have none, since they are the
// window's own.
struct ButtonAction {
  Id id;
  Action action;
};
inline constexpr ButtonAction buttonActions[] = {
    {idRequest, Action::request}, {idReset, Action::reset}, {idPrint, Action::print},
    {idClear, Action::clear},     {idClose, Action::close},
};

inline constexpr std::u16string_view gridName = u"grdDisplayFault";
inline constexpr std::u16string_view lampFrameName = u"fraAlarmLamp";
inline constexpr std::u16string_view whatsThisItem = u"itmWhatThis";

// Controls that a right click explains.
constexpr bool isExplained(int id) {
  return id == idExchangeLabel || id == idMajor || id == idMinor || id == idReceivedLabel || id == idReceived;
}

}  // namespace vordane::window::win32
