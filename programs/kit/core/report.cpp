#include "kit/core/report.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>

namespace vordane::kit {
namespace {

using nlohmann::ordered_json;

Sums total(const Report& report) {
  Sums all;
  for (const ProgramResult& program : report.programs) {
    const Sums one = sumsOf(program);
    all.passed += one.passed;
    all.failed += one.failed;
    all.broken += one.broken;
    all.skipped += one.skipped;
    all.held += one.held;
  }
  return all;
}

ordered_json testJson(const TestResult& test) {
  ordered_json out{{"name", test.name}, {"result", nameOf(test.result)}, {"milliseconds", test.milliseconds}};
  if (test.result == Result::passed) return out;
  out["output"] = test.output;
  if (const auto lines = traceDifferences(test.output); !lines.empty()) out["differences"] = lines;
  return out;
}

ordered_json programJson(const ProgramResult& result) {
  ordered_json tests = ordered_json::array();
  for (const TestResult& test : result.tests) tests.push_back(testJson(test));
  ordered_json held = ordered_json::array();
  for (const HeldTest& test : result.held) held.push_back({{"name", test.name}, {"reason", test.reason}});
  return {{"program", result.program.name},
          {"wordSize", result.program.words},
          {"failures", result.failures()},
          {"problem", result.problem},
          {"notHere", result.notHere},
          {"milliseconds", result.milliseconds},
          {"tests", tests},
          {"leftOut", held}};
}

}  // namespace

Sums sumsOf(const ProgramResult& result) {
  Sums sums;
  const std::array counts{&sums.passed, &sums.failed, &sums.skipped, &sums.broken};
  for (const TestResult& test : result.tests) ++*counts[static_cast<std::size_t>(test.result)];
  sums.held = static_cast<int>(result.held.size());
  return sums;
}

bool allPassed(const Report& report) {
  const auto bad = [](const ProgramResult& program) { return program.failures() > 0; };
  const Sums sums = total(report);
  return report.putBackDone && !report.brokenOff && sums.passed > 0 &&
         std::none_of(report.programs.begin(), report.programs.end(), bad);
}

std::string summaryOf(const Report& report) {
  const Sums sums = total(report);
  int problems = 0;
  for (const ProgramResult& program : report.programs)
    problems += program.problem.empty() || program.notHere ? 0 : 1;
  std::string text = std::to_string(sums.passed + sums.failed + sums.broken) +
                     " tests: " + std::to_string(sums.passed) + " passed, " + std::to_string(sums.failed) +
                     " failed";
  if (sums.broken > 0) text += ", " + std::to_string(sums.broken) + " broken";
  text += "; " + std::to_string(sums.skipped) + " skipped, " + std::to_string(sums.held) + " left out";
  if (problems > 0) text += "; " + std::to_string(problems) + " programs with a problem";
  return text;
}

std::string jsonText(const Report& report) {
  ordered_json system = ordered_json::object();
  for (const auto& [name, value] : report.system) system[name] = value;
  ordered_json programs = ordered_json::array();
  for (const ProgramResult& program : report.programs) programs.push_back(programJson(program));
  ordered_json checks = ordered_json::array();
  for (const Check& check : report.checklist)
    checks.push_back(
        {{"number", check.number}, {"deed", check.deed}, {"outcome", check.outcome}, {"result", ""}});
  const Sums sums = total(report);
  const ordered_json whole{{"report", "Vordane on Windows"},
                           {"version", report.version},
                           {"begun", report.begun},
                           {"ended", report.ended},
                           {"allPassed", allPassed(report)},
                           {"brokenOff", report.brokenOff},
                           {"summary", summaryOf(report)},
                           {"passed", sums.passed},
                           {"failed", sums.failed},
                           {"broken", sums.broken},
                           {"skipped", sums.skipped},
                           {"leftOut", sums.held},
                           {"registration", {{"putBack", report.putBackDone}, {"words", report.putBack}}},
                           {"system", system},
                           {"programs", programs},
                           {"checklist", checks}};
  // What a program printed may be no UTF-8 at all.
  return whole.dump(1, ' ', false, ordered_json::error_handler_t::replace) + '\n';
}

}  // namespace vordane::kit
