// The window's design as data: its controls with what they are born with. The view decides where they stand.
#pragma once

#include "platform/action.h"
#include "platform/window.h"

namespace vordane::startup {

window::Form makeFormModel();

// The name of the button that sets an action as the next one; empty for one that no button sets. cmdLookUp
// has none.
std::u16string_view buttonOfAction(Action action);

}  // namespace vordane::startup
