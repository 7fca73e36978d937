// What a GoogleTest program prints, read back: its list of tests, and one run's results with what each test
// printed. A program that dies in the middle has said so much, and no file of results has to have been
// written. Pure; UTF-8.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vordane::kit {

// The full names, "Suite.Test", in the program's order.
std::vector<std::string> parseTestList(std::string_view printed);

enum class Result { passed, failed, skipped, broken };  // broken: the program ended, or was ended, inside it

std::string_view nameOf(Result result);

struct TestResult {
  std::string name{};
  Result result = Result::broken;
  long long milliseconds = 0;  // of a broken test: not known
  std::string output{};        // what was printed between its first line and its last
  bool operator==(const TestResult&) const = default;
};

// In the order of running. A test that has begun and not ended is broken.
std::vector<TestResult> parseRun(std::string_view printed);

// The lines of a failure that tell a difference between what was expected and what came, "-" and "+" in
// front, with the heads ("--- ", "+++ ", "@@ ") that stand above them; empty when it tells none.
std::vector<std::string> traceDifferences(std::string_view output);

}  // namespace vordane::kit
