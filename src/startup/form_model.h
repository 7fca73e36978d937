// The window's design as data: its controls with what they are born with. The view decides where they stand.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "faults/fault_texts.h"
#include "platform/action.h"
#include "platform/window.h"

namespace vordane::startup {

window::Form makeFormModel();

// The texts that descriptions are made of: the messages, and the kinds' lists that the form holds. `texts` is
// replaced as far as they reach.
void readFaultTexts(const std::vector<std::u16string>& messages, window::Form& form, FaultTextTable& texts);

// The name of the button that sets an action as the next one; empty for one that no button sets. cmdLookUp
// has none.
std::u16string_view buttonOfAction(Action action);

}  // namespace vordane::startup
