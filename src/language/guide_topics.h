// Which topic of the guide belongs to which part of the window. A topic is the name of an anchor in the guide
// of every language, and of the page that leads to it (tools/guide); a new one is a row here and a heading
// there.
#pragma once

#include <algorithm>
#include <array>
#include <string_view>

#include "language/form_controls.h"
#include "platform/view.h"

namespace vordane {

struct GuideTopic {
  std::u16string_view part;  // a control of the form, or a part of the drawing
  std::u16string_view topic;
};

inline constexpr std::array<GuideTopic, 21> guideTopics{{
    {u"lblListups", u"exchange"},
    {u"drpPBXList", u"exchange"},
    {u"lblTimetag", u"received"},
    {u"txtTimeTag", u"received"},
    {u"fraAlarmLamp", u"lamps"},
    {u"lblMJ", u"lamps"},
    {u"lblMN", u"lamps"},
    {u"cmdRequest", u"request"},
    {u"cmdReset", u"reset"},
    {u"cmdPrint", u"print"},
    {u"cmdClear", u"delete"},
    {u"cmdLookUp", u"find"},
    {u"cmdClose", u"close"},
    {u"grdDisplayFault", u"list"},
    {u"imgBackground", u"window"},
    {u"imgHeader", u"window"},
    {u"imgDetail", u"fault"},
    {u"mnuWhatsThis", u"whats-this"},
    {u"itmWhatThis", u"whats-this"},
    {window::lookUpBarPart, u"find"},
    {window::panePart, u"fault"},
}};

// Where the guide opens for everything else.
inline constexpr std::u16string_view guideBeginning = u"guide";

constexpr std::u16string_view guideTopicOf(std::u16string_view part) {
  for (const GuideTopic& row : guideTopics)
    if (row.part == part) return row.topic;
  return guideBeginning;
}

static_assert(std::all_of(formControls.begin(), formControls.end(),
                          [](const FormControl& control) {
                            return guideTopicOf(control.name) != guideBeginning;
                          }),
              "guideTopics: a control of the window has no topic");

}  // namespace vordane
