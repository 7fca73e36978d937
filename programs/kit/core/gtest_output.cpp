#include "kit/core/gtest_output.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

namespace vordane::kit {
namespace {

template <class Take>
void eachLine(std::string_view text, Take take) {
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    if (line.ends_with('\r')) line.remove_suffix(1);
    take(line);
    text = end == text.npos ? std::string_view{} : text.substr(end + 1);
  }
}

std::string_view untilBlank(std::string_view text) {
  return text.substr(0, text.find_first_of(" \t"));
}

constexpr std::string_view begins = "[ RUN      ] ";
struct Ending {
  std::string_view mark;
  Result result;
};
constexpr std::array endings{Ending{"[       OK ] ", Result::passed}, Ending{"[  FAILED  ] ", Result::failed},
                             Ending{"[  SKIPPED ] ", Result::skipped}};

// "Suite.Test (12 ms)" or "Suite.Test, where GetParam() = ... (12 ms)"
long long millisecondsOf(std::string_view text) {
  const std::size_t open = text.rfind('(');
  long long value = 0;
  if (open != text.npos) std::from_chars(text.data() + open + 1, text.data() + text.size(), value);
  return value;
}

class RunReader {
 public:
  void take(std::string_view line) {
    if (begin(line) || end(line)) return;
    if (inside_) (results_.back().output += line) += '\n';
  }
  std::vector<TestResult> results() { return std::move(results_); }

 private:
  // The mark stands at the beginning of the line, or behind what a process printed without ending its line.
  std::optional<std::string_view> behind(std::string_view line, std::string_view mark) {
    const std::size_t at = line.find(mark);
    if (at == line.npos) return {};
    if (at > 0 && inside_) (results_.back().output += line.substr(0, at)) += '\n';
    return line.substr(at + mark.size());
  }

  bool begin(std::string_view line) {
    const auto name = behind(line, begins);
    if (!name) return false;
    results_.push_back({.name = std::string(*name)});
    return inside_ = true;
  }

  bool end(std::string_view line) {
    // Behind the last test the failed ones are listed once more.
    if (!inside_) return false;
    for (const Ending& ending : endings) {
      if (line.find(std::string(ending.mark) + results_.back().name) == line.npos) continue;
      const auto rest = behind(line, ending.mark);
      results_.back().result = ending.result;
      results_.back().milliseconds = millisecondsOf(*rest);
      inside_ = false;
      return true;
    }
    return false;
  }

  std::vector<TestResult> results_;
  bool inside_ = false;
};

}  // namespace

std::vector<std::string> parseTestList(std::string_view printed) {
  std::vector<std::string> names;
  std::string suite;
  eachLine(printed, [&](std::string_view line) {
    if (line.starts_with("  ") && !suite.empty()) {
      names.push_back(suite + std::string(untilBlank(line.substr(2))));
    } else {
      const std::string_view word = untilBlank(line);
      suite = word.ends_with('.') ? word : std::string_view{};
    }
  });
  return names;
}

std::string_view nameOf(Result result) {
  constexpr std::array names{"passed", "failed", "skipped", "broken"};
  return names[static_cast<std::size_t>(result)];
}

std::vector<TestResult> parseRun(std::string_view printed) {
  RunReader reader;
  eachLine(printed, [&](std::string_view line) { reader.take(line); });
  return reader.results();
}

std::vector<std::string> traceDifferences(std::string_view output) {
  std::vector<std::string> lines;
  bool inside = false;
  eachLine(output, [&](std::string_view line) {
    const bool head = line.starts_with("--- ") || line.starts_with("+++ ") || line.starts_with("@@ ");
    if (head) inside = true;
    const bool context = line.starts_with(' ') || line.empty();
    const bool different = line.starts_with('-') || line.starts_with('+');
    inside = inside && (head || context || different);
    // "host.expected, line 7: expected "a", got "b" in" tells its first one.
    const bool first = line.find(".expected, line ") != line.npos && line.find(", got ") != line.npos;
    if ((inside && (head || different)) || first) lines.emplace_back(line);
  });
  return lines;
}

}  // namespace vordane::kit
