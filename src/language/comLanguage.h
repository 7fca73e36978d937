// Copies the texts of a language database onto the window, its controls and the application.
#pragma once

#include <array>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database.h"
#include "platform/window.h"

namespace vordane::comLanguage {

// The application object's texts of "tProject".
struct ProjectTexts {
  std::u16string Title;
  std::u16string OleServerBusyMsgTitle, OleServerBusyMsgText;
  std::u16string OleRequestPendingMsgTitle, OleRequestPendingMsgText;
};

// Each with its column.
struct ProjectText {
  std::u16string_view column;
  std::u16string ProjectTexts::*text;
};
inline constexpr std::array<ProjectText, 5> projectTexts{
    {{u"Title", &ProjectTexts::Title},
     {u"OleServerBusyMsgTitle", &ProjectTexts::OleServerBusyMsgTitle},
     {u"OleServerBusyMsgText", &ProjectTexts::OleServerBusyMsgText},
     {u"OleRequestPendingMsgTitle", &ProjectTexts::OleRequestPendingMsgTitle},
     {u"OleRequestPendingMsgText", &ProjectTexts::OleRequestPendingMsgText}}};

// Each returns true when its whole table was applied, false when an error stopped it; what was applied
// before stays.
bool LocaliseForm(window::Form& form, database::Database& database);
bool LocaliseControls(window::Form& form, database::Database& database);
bool LoadComboLists(window::Form& form, database::Database& database);
bool LocaliseGridHeadings(window::Form& form, database::Database& database);
bool LoadProjectTexts(std::u16string_view executableName, database::Database& database, ProjectTexts& texts);
bool LoadTextArray(std::vector<std::u16string>& array, std::u16string_view table,
                   database::Database& database);

// The help texts of the window's controls by control name, for What's This; empty where the database holds
// none. Its table is the product's own ("tHelp"), so a database without it is in order.
std::map<std::u16string, std::u16string> loadHelpTexts(const window::Form& form,
                                                       database::Database& database);

// A stored text in escape notation, expanded. `substitution` keeps the pieces not yet consumed.
std::u16string ExpandEscapes(std::u16string_view text, std::u16string& substitution);

}  // namespace vordane::comLanguage
