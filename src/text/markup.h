// Texts in pages.
#pragma once

#include <string>
#include <string_view>

namespace vordane::text {

// In UTF-8 behind what `out` holds, so that it stands in a page's text or between the double quotes of a
// value as the characters that it has. Control characters that no page may hold become U+FFFD.
void appendMarkup(std::u16string_view text, std::string& out);

}  // namespace vordane::text
