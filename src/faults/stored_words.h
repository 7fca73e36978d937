// The words that stored descriptions are made of, in brief: whoever has other ones would store every fault
// that an exchange still reports once more.
#pragma once

#include <string>

#include "faults/fault_texts.h"

namespace vordane {

// 16 hexadecimal digits that tables share when their messages 5 to 164 and the kinds' lists are the same, on
// every system and in every later version. A missing text is another one than an empty text.
std::u16string markOfStoredWords(const FaultTextTable& texts);

}  // namespace vordane
