#include "kit/core/checklist.h"

#include <set>
#include <stdexcept>

namespace vordane::kit {
namespace {

constexpr std::string_view blanks = " \t\r";

std::string trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == text.npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(blanks) - first + 1));
}

// The cells of "| a | b |"; "\|" is a bar in a cell.
std::vector<std::string> cellsOf(std::string_view line) {
  std::vector<std::string> cells;
  std::string cell;
  for (std::size_t i = line.find('|') + 1; i < line.size(); ++i) {
    if (line[i] == '\\' && i + 1 < line.size() && line[i + 1] == '|') {
      cell += line[++i];
    } else if (line[i] == '|') {
      cells.push_back(trimmed(cell));
      cell.clear();
    } else {
      cell += line[i];
    }
  }
  return cells;
}

bool isRule(const std::string& cell) {
  return cell.find_first_not_of("-:") == cell.npos;
}

}  // namespace

std::vector<Check> parseChecklist(std::string_view markdown) {
  std::vector<Check> checks;
  std::set<std::string> numbers;
  bool inside = false;
  while (!markdown.empty()) {
    const std::size_t end = markdown.find('\n');
    const std::string_view line = markdown.substr(0, end);
    markdown = end == markdown.npos ? std::string_view{} : markdown.substr(end + 1);
    const std::vector<std::string> cells = line.starts_with('|') ? cellsOf(line) : std::vector<std::string>{};
    if (cells.empty()) inside = false;
    if (!inside) {
      inside = !cells.empty() && cells[0] == "No.";
      continue;
    }
    if (isRule(cells[0]) && cells.size() > 1 && isRule(cells[1]) && !cells[0].empty()) continue;
    if (cells.size() < 3 || cells[0].empty() || cells[1].empty() || cells[2].empty())
      throw std::runtime_error("the checklist has half a row: " + std::string(line));
    if (!numbers.insert(cells[0]).second) throw std::runtime_error("the checklist has two rows " + cells[0]);
    checks.push_back({cells[0], cells[1], cells[2]});
  }
  if (checks.empty()) throw std::runtime_error("the checklist has no table");
  return checks;
}

}  // namespace vordane::kit
