// Fields of CSV files.
#pragma once

#include <string>
#include <string_view>

namespace vordane::text {

// In quotes, the quotes inside doubled.
std::string csvQuoted(std::string_view utf8);

// A spreadsheet takes a text that begins with =, +, -, @ (their full-width forms too), TAB, CR or LF for a
// formula and runs it; an apostrophe before it makes it a text.
std::u16string forSpreadsheet(std::u16string text);

}  // namespace vordane::text
