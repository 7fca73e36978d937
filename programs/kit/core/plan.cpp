#include "kit/core/plan.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>

namespace vordane::kit {
namespace {

std::vector<std::string> columnsOf(std::string_view line) {
  std::vector<std::string> columns;
  for (;;) {
    const std::size_t end = line.find('\t');
    columns.emplace_back(line.substr(0, end));
    if (end == line.npos) return columns;
    line.remove_prefix(end + 1);
  }
}

// Hands over each line's columns; a line that is refused is an error.
template <class Take>
void eachRow(std::string_view text, std::size_t width, Take take) {
  for (int number = 1; !text.empty(); ++number) {
    const std::size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    if (line.ends_with('\r')) line.remove_suffix(1);
    const std::vector<std::string> columns = columnsOf(line);
    const bool counts = !line.empty() && !line.starts_with('#');
    if (counts && (columns.size() != width || !take(columns)))
      throw std::runtime_error("line " + std::to_string(number) + " makes no sense: " + std::string(line));
    text = end == text.npos ? std::string_view{} : text.substr(end + 1);
  }
}

bool isWords(std::string_view text) {
  return text == "x64" || text == "x86";
}

// A wish in its parts; without a word size, or without tests, "*" stands for them.
struct Wish {
  std::string_view words = "*", program = "*", tests = "*";
};
Wish wishOf(std::string_view text) {
  Wish wish;
  if (const std::size_t colon = text.find(':'); colon != text.npos) {
    wish.tests = text.substr(colon + 1);
    text = text.substr(0, colon);
  }
  if (const std::size_t slash = text.find('/'); slash != text.npos) {
    wish.words = text.substr(0, slash);
    text = text.substr(slash + 1);
  }
  wish.program = text;
  return wish;
}

bool isOf(const Program& program, const Wish& wish) {
  return fits(program.words, wish.words) && fits(program.name, wish.program);
}

}  // namespace

std::vector<Program> parsePrograms(std::string_view text) {
  std::vector<Program> programs;
  eachRow(text, 5, [&](const std::vector<std::string>& column) {
    Program program{.words = column[0], .name = column[1], .path = column[2], .alone = column[4] == "alone"};
    const char* const end = column[3].data() + column[3].size();
    const auto read = std::from_chars(column[3].data(), end, program.seconds);
    programs.push_back(program);
    return isWords(program.words) && read.ptr == end && program.seconds > 0 &&
           (program.alone || column[4] == "whole");
  });
  return programs;
}

std::vector<HeldBack> parseHeldBack(std::string_view text) {
  std::vector<HeldBack> all;
  eachRow(text, 3, [&](const std::vector<std::string>& column) {
    all.push_back({column[0], column[1], column[2]});
    return !column[2].empty();
  });
  return all;
}

bool fits(std::string_view name, std::string_view pattern) {
  if (pattern.empty()) return name.empty();
  if (pattern.front() != '*')
    return !name.empty() && (pattern.front() == '?' || pattern.front() == name.front()) &&
           fits(name.substr(1), pattern.substr(1));
  for (std::size_t skipped = 0; skipped <= name.size(); ++skipped)
    if (fits(name.substr(skipped), pattern.substr(1))) return true;
  return false;
}

bool Choice::takes(const Program& program) const {
  return wishes_.empty() || std::any_of(wishes_.begin(), wishes_.end(),
                                        [&](const std::string& wish) { return isOf(program, wishOf(wish)); });
}

bool Choice::takes(const Program& program, std::string_view test) const {
  return wishes_.empty() || std::any_of(wishes_.begin(), wishes_.end(), [&](const std::string& text) {
           const Wish wish = wishOf(text);
           return isOf(program, wish) && fits(test, wish.tests);
         });
}

std::string reasonToHold(const std::vector<HeldBack>& all, const Program& program, std::string_view test) {
  for (const HeldBack& held : all)
    if (fits(program.name, held.program) && fits(test, held.tests)) return held.reason;
  return {};
}

}  // namespace vordane::kit
