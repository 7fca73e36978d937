// How the font of a language row reaches a control: which properties take it and which character set goes
// with it depends on the control's type and on nothing else.
#pragma once

#include <string>

#include "platform/window.h"

namespace vordane::language {

// Throws window::PropertyError where the control lacks a property, and when the size is not above 0. An
// empty name keeps the face.
void setControlFont(window::Control& control, const std::u16string& name, float size);

// The same for one font, named by its property path ("Font", "StyleSets(0).Font"), without character set.
void setFont(window::Control& control, const std::u16string& path, const std::u16string& name, float size);

}  // namespace vordane::language
