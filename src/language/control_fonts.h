// How the font of a language row reaches a control: which properties take it and which character set goes
// with it depends on the control's type and on nothing else.
#pragma once

#include <string>

#include "platform/window.h"

namespace vordane::language {

// `size` as the row holds it. Throws window::PropertyError where the control lacks a property and when the
// size is not above 0, automation::AutomationError when it is no number; the name is set by then. An empty
// name keeps the face.
void setControlFont(window::Control& control, const std::u16string& name, const window::Value& size);

// The same for one font, named by its property path ("Font", "StyleSets(0).Font"), without character set.
void setFont(window::Control& control, const std::u16string& path, const std::u16string& name,
             const window::Value& size);

}  // namespace vordane::language
