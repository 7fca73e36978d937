// The blanks that a stored text may end in: texts are equal whatever their number.
#pragma once

#include <string_view>

namespace vordane::text {

constexpr std::u16string_view withoutTrailingBlanks(std::u16string_view text) {
  while (!text.empty() && text.back() == u' ') text.remove_suffix(1);
  return text;
}

}  // namespace vordane::text
