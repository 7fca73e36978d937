// What a fuzz target says when a property does not hold: the fuzzer keeps the input that broke it.
#pragma once

#include <cstdlib>

namespace vordane::fuzz {

inline void require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace vordane::fuzz
