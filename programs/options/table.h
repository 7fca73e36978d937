// Help texts on a page of 100 columns.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace vordane::options {

// In lines of at most 100 columns, broken at blanks, each with its end; those behind the first begin with
// `indent` blanks. Line ends of the text stay.
std::string wrapped(const std::string& text, std::size_t indent = 0);

// Two columns: a name, and what it means.
std::string table(const std::vector<std::pair<std::string, std::string>>& rows);

}  // namespace vordane::options
