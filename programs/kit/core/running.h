// Runs the tests of one program, whatever it does: one that dies or hangs inside a test costs that test and
// nothing else. What starts processes is handed in.
#pragma once

#include <string>
#include <vector>

#include "kit/core/gtest_output.h"
#include "kit/core/plan.h"

namespace vordane::kit {

// What came of one process.
struct Ended {
  bool started = true;     // else `output` says why not
  bool notHere = false;    // this system runs no programs of that word size
  bool inTime = true;      // else it was ended
  bool brokenOff = false;  // somebody asked the kit to stop; it was ended
  unsigned long exitCode = 0;
  long long milliseconds = 0;
  std::string output{};
};

class Processes {
 public:
  virtual ~Processes() = default;
  // Runs a program of the kit to its end, with those arguments and no more than that many seconds.
  virtual Ended run(const Program& program, const std::vector<std::string>& arguments, int seconds) = 0;
  // Between two processes: whatever they have registered and left behind goes.
  virtual void cleanUp() = 0;
};

struct HeldTest {
  std::string name{};
  std::string reason{};
  bool operator==(const HeldTest&) const = default;
};

struct ProgramResult {
  Program program{};
  std::vector<TestResult> tests{};
  std::vector<HeldTest> held{};
  std::string problem{};  // why nothing, or not all of it, could be run; empty: it was
  bool notHere = false;   // the problem is that this system runs no programs of that word size
  bool brokenOff = false;
  long long milliseconds = 0;
  // Failed tests, broken ones included; a program that could not be run counts as one.
  int failures() const;
};

// Runs those of a program's tests that the choice takes and nothing holds back.
ProgramResult runProgram(const Program& program, const Choice& choice, const std::vector<HeldBack>& held,
                         Processes& processes);

}  // namespace vordane::kit
