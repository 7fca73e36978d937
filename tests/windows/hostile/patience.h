// How long the director waits for what must come.
#pragma once

namespace vordane::hostile {

// Milliseconds: two thirds of the test's own patience, 120 s or VORDANE_SUITE_PATIENCE seconds, so that the
// test hears what was waited for.
int patience();

}  // namespace vordane::hostile
