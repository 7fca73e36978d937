// What a control of each type is born with. A form creates its controls from here by type name, so that a
// property which a type lacks is missing in the model too.
#pragma once

#include <map>
#include <string>
#include <string_view>

#include "platform/window.h"

namespace vordane::window {

using Properties = std::map<std::u16string, Value>;

// The designed properties of a type; those of a plain control (place, size, Visible, Enabled, ToolTipText,
// Font) for a type name that is not listed. Grids and data combos come without columns and style sets.
// "FontName" and "FontSize" are other names of "Font.Name" and "Font.Size" on every control.
Properties designedProperties(std::u16string_view typeName);

// Columns(0) to Columns(count - 1), each with Caption and Width, and Columns.Count.
void addColumns(Properties& properties, int count);

// StyleSets(0) to StyleSets(count - 1), each with a Font, and StyleSets.Count.
void addStyleSets(Properties& properties, int count);

}  // namespace vordane::window
