// What this test program has done so far.
#pragma once

#include <cstddef>

namespace vordane::work {

struct Work {
  std::size_t prepared = 0, rows = 0;    // statements, and rows that the engine handed over
  std::size_t allocations = 0;           // of the program; the engine has its own
  std::size_t bytes = 0, mostBytes = 0;  // held now, and at most since it was last set
};
extern Work counted;

}  // namespace vordane::work
