// The printed report's layout in the language of a suite.
#pragma once

#include <string>
#include <string_view>

#include "language_source.h"

namespace vordane::tools {

// Fills the texts in double square brackets into `layout` (UTF-8): [[language]]; [[message N]], [[heading
// COLUMN]] of the grid and [[control NAME]] as the window shows them; any other from `texts` ("name TAB text"
// a line). The hosts' own places, in double braces, stay, in the texts too. Throws ToolError for a text that
// is not there, naming `place`.
std::string reportLayout(std::string_view layout, const LanguageSource& language, std::string_view texts,
                         const std::string& place);

}  // namespace vordane::tools
