// The report of a run: for people as a page, for machines as JSON. Pure.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "kit/core/checklist.h"
#include "kit/core/running.h"

namespace vordane::kit {

struct Report {
  std::string version{};  // of the kit: the product's
  std::string begun, ended;
  std::vector<std::pair<std::string, std::string>> system{};  // what it is, in the order to show
  std::vector<ProgramResult> programs{};
  std::vector<Check> checklist{};
  std::string putBack{};  // what became of the registration that stood before
  bool putBackDone = false;
  bool brokenOff = false;
};

struct Sums {
  int passed = 0, failed = 0, broken = 0, skipped = 0, held = 0;
};
Sums sumsOf(const ProgramResult& result);

// Whether everything that can be run here was run and passed, and everything is as it was.
bool allPassed(const Report& report);

// One line: "421 tests: 420 passed, 1 failed; 12 skipped, 8 left out".
std::string summaryOf(const Report& report);

std::string jsonText(const Report& report);
std::string htmlText(const Report& report);

}  // namespace vordane::kit
