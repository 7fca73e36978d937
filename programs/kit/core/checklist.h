// The checklist of what needs hands: read from the document that people read, so that the report has the same
// table.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vordane::kit {

struct Check {
  std::string number, deed, outcome;  // Markdown
  bool operator==(const Check&) const = default;
};

// The rows of the document's tables whose first column is "No.". Throws std::runtime_error when there is
// none, or when a number is missing, comes twice or has no deed or outcome.
std::vector<Check> parseChecklist(std::string_view markdown);

}  // namespace vordane::kit
