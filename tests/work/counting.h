// What this test program has done so far.
#pragma once

#include <cstddef>

namespace vordane::work {

struct Work {
  // Statements, and rows that the engine handed over. BEGIN and COMMIT, which the engine's own short cut
  // runs, are not among them, nor rows that it goes through by itself.
  std::size_t prepared = 0, rows = 0;
  std::size_t allocations = 0;                       // of the program; the engine has its own
  std::size_t bytes = 0, mostBytes = 0;              // held now, and at most since it was last set
  std::size_t engineBytes = 0, mostEngineBytes = 0;  // the same of the engine, its cache included
};
extern Work counted;

}  // namespace vordane::work
