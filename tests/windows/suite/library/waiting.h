// Waiting for what must come. There is no right time for anything: a wait ends with what it is for, and only
// when that does not come within `patience` has the test failed.
#pragma once

#include <functional>
#include <stdexcept>
#include <string>

namespace vordane::suite {

// What a test can't go on after; ends the test that it is thrown in.
struct Failure : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// Milliseconds: 120 s, or VORDANE_SUITE_PATIENCE seconds.
unsigned long patience();

// Looks until `come` says so; `meanwhile` may throw when it never will. Throws Failure with `what` at the end
// of patience.
void await(const std::string& what, const std::function<bool()>& come,
           const std::function<void()>& meanwhile = {});

}  // namespace vordane::suite
