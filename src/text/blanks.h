// The blanks that a stored text may end in: texts are equal whatever their number.
#pragma once

#include <string_view>

#include "text/text.h"

namespace vordane::text {

constexpr std::u16string_view withoutTrailingBlanks(std::u16string_view text) {
  while (!text.empty() && text.back() == u' ') text.remove_suffix(1);
  return text;
}

// Equal as stored texts are: without regard to case and to those blanks.
inline bool equalAsStored(std::u16string_view a, std::u16string_view b) {
  return equalIgnoringCase(withoutTrailingBlanks(a), withoutTrailingBlanks(b));
}

}  // namespace vordane::text
