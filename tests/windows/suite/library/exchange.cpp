#include "library/exchange.h"

#include <algorithm>

#include "library/program.h"
#include "library/text_files.h"
#include "library/waiting.h"

namespace vordane::suite {
namespace {

Path logFile() {
  return layout().exchange / L"Zulsim.log";
}

}  // namespace

void useScenario(const std::wstring& name) {
  endSuitePrograms(L"Zulsim.exe");
  copyFile(layout().tests() / L"scenarios" / (name + L".zul"), layout().exchange / L"Zulsim.zul");
}

void give(const std::wstring& word) {
  writeText(layout().exchange / word, {});
}

void keepLog() {
  writeText(logFile(), {});
}

std::size_t logged(std::string_view text) {
  const auto lines = linesOf(readText(logFile()));
  return static_cast<std::size_t>(std::count_if(lines.begin(), lines.end(), [&](const std::string& line) {
    return line.find(text) != std::string::npos;
  }));
}

void awaitLogged(std::string_view text, std::size_t times) {
  try {
    await("'" + std::string(text) + "', " + std::to_string(times) + " times, in the exchange's log",
          [&] { return logged(text) >= times; });
  } catch (const Failure& failure) {
    throw Failure(failure.what() + std::string(":\n") + readText(logFile()));
  }
}

}  // namespace vordane::suite
