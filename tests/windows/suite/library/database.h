// The suite's databases, as another program on this workstation sees them: with nothing but the embedded
// engine.
#pragma once

#include <string>

#include "library/layout.h"

namespace vordane::suite {

// The rows of a statement, one a line, columns parted by "|". Throws Failure when it can't be done.
std::string sql(const Path& file, const std::string& statement);
// The number of stored faults.
int stored();
// "ok", or what is wrong with the file.
std::string integrity(const Path& file);
// A job of the scheduler.
struct Job {
  int key = 1, wait = 0;
  bool errorStop = true;
  int runs = 1;
  std::string log = "ENDS";  // its name, without the key
  int thousands = 100;       // bytes that the log may take
};
void addJob(const Job& job);

}  // namespace vordane::suite
