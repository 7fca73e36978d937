// The window's design as data: its controls with what they are born with. The view decides where they stand.
#pragma once

#include "platform/window.h"

namespace vordane::startup {

window::Form makeFormModel();

// What a command button sets as the next action; nothing for cmdLookUp, which has none.
inline constexpr int actionRequest = 0, actionReset = 1, actionPrint = 2, actionClear = 3, actionClose = 4;

// The name of the button with an action code; empty for any other code.
std::u16string_view buttonOfAction(int action);

}  // namespace vordane::startup
