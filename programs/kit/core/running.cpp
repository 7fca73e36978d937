#include "kit/core/running.h"

#include <algorithm>

namespace vordane::kit {
namespace {

// Windows takes no longer command lines than 32,767 characters.
constexpr std::size_t longestFilter = 20000;
constexpr int secondsToList = 60;

std::string hexadecimal(unsigned long code) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string text = "0x";
  for (int shift = 28; shift >= 0; shift -= 4) text += digits[(code >> shift) & 15U];
  return text;
}

std::string howItEnded(const Ended& ended, int seconds) {
  if (ended.brokenOff) return "The run was broken off here.";
  if (!ended.inTime) return "It was ended after " + std::to_string(seconds) + " seconds.";
  return "The program ended inside it with " + hexadecimal(ended.exitCode) + '.';
}

// What a program printed, without the list of the tests that it was asked for.
std::string withoutFilter(const std::string& output) {
  constexpr std::string_view note = "Note: Google Test filter = ";
  return output.starts_with(note) ? output.substr(std::min(output.find('\n'), output.size() - 1) + 1)
                                  : output;
}

class Runner {
 public:
  Runner(ProgramResult& result, Processes& processes)
      : result_(result), program_(result.program), processes_(processes) {}

  void run(std::vector<std::string> names) {
    while (!names.empty() && !result_.brokenOff && result_.problem.empty()) {
      const std::size_t before = names.size();
      runSome(names);
      if (names.size() == before && result_.problem.empty() && !result_.brokenOff) giveUp(names.front());
    }
  }

 private:
  // One process; what it has dealt with goes from `names`.
  void runSome(std::vector<std::string>& names) {
    std::string filter = names.front();
    for (std::size_t i = 1; !program_.alone && i < names.size() && filter.size() < longestFilter; ++i)
      filter += ':' + names[i];
    const Ended ended = processes_.run(program_, {"--gtest_filter=" + filter}, program_.seconds);
    processes_.cleanUp();
    result_.milliseconds += ended.milliseconds;
    result_.brokenOff = ended.brokenOff;
    if (!ended.started) {
      result_.problem = ended.output;
      return;
    }
    take(parseRun(ended.output), ended, names);
  }

  void take(std::vector<TestResult> tests, const Ended& ended, std::vector<std::string>& names) {
    bool failed = false;
    for (TestResult& test : tests) {
      const auto asked = std::find(names.begin(), names.end(), test.name);
      if (asked == names.end()) continue;
      names.erase(asked);
      failed = failed || test.result == Result::failed || test.result == Result::broken;
      if (test.result == Result::broken) test.output += howItEnded(ended, program_.seconds);
      result_.tests.push_back(std::move(test));
    }
    // A program may fail outside of its tests, when it makes ready or clears up.
    const bool ownWords = ended.exitCode != 0 && !failed && ended.inTime && !ended.brokenOff;
    if (ownWords)
      result_.problem = "The program ended with " + hexadecimal(ended.exitCode) + " outside of its tests.\n" +
                        withoutFilter(ended.output);
  }

  // It ended without having begun a single one of the tests.
  void giveUp(const std::string& name) { result_.problem = "The program did not begin " + name + '.'; }

  ProgramResult& result_;
  const Program& program_;
  Processes& processes_;
};

}  // namespace

int ProgramResult::failures() const {
  const auto bad = std::count_if(tests.begin(), tests.end(), [](const TestResult& test) {
    return test.result == Result::failed || test.result == Result::broken;
  });
  return static_cast<int>(bad) + (problem.empty() || notHere ? 0 : 1);
}

ProgramResult runProgram(const Program& program, const Choice& choice, const std::vector<HeldBack>& held,
                         Processes& processes) {
  ProgramResult result{.program = program};
  const Ended listed = processes.run(program, {"--gtest_list_tests"}, secondsToList);
  result.brokenOff = listed.brokenOff;
  result.notHere = listed.notHere;
  std::vector<std::string> names = parseTestList(listed.output);
  if (!listed.started)
    result.problem = listed.output;
  else if (!listed.inTime || listed.exitCode != 0 || names.empty())
    result.problem =
        "The program did not list its tests (" + hexadecimal(listed.exitCode) + ").\n" + listed.output;
  if (!result.problem.empty() || result.brokenOff) return result;
  std::erase_if(names, [&](const std::string& name) {
    if (!choice.takes(program, name) || name.find("DISABLED_") != name.npos) return true;
    const std::string reason = reasonToHold(held, program, name);
    if (!reason.empty()) result.held.push_back({name, reason});
    return !reason.empty();
  });
  Runner(result, processes).run(std::move(names));
  return result;
}

}  // namespace vordane::kit
