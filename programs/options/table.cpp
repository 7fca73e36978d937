#include "options/table.h"

#include <algorithm>
#include <sstream>

namespace vordane::options {
namespace {

constexpr std::size_t pageWidth = 100;

}  // namespace

std::string wrapped(const std::string& text, std::size_t indent) {
  const std::string margin(indent, ' ');
  std::istringstream lines(text);
  std::string out;
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line);
    if (!out.empty()) out += margin;
    std::size_t column = indent;
    for (std::string word; words >> word;) {
      if (column > indent && column + 1 + word.size() > pageWidth) {
        out += '\n' + margin;
        column = indent;
      }
      if (column > indent) out += ' ', ++column;
      out += word;
      column += word.size();
    }
    out += '\n';
  }
  return out;
}

std::string table(const std::vector<std::pair<std::string, std::string>>& rows) {
  std::size_t widest = 0;
  for (const auto& [name, meaning] : rows) widest = std::max(widest, name.size());
  std::string out;
  for (const auto& [name, meaning] : rows)
    out += "  " + name + std::string(widest - name.size() + 2, ' ') + wrapped(meaning, widest + 4);
  return out;
}

}  // namespace vordane::options
