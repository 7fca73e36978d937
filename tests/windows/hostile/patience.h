// How long the director waits for what must come.
#pragma once

namespace vordane::hostile {

// Milliseconds: 120 s, or VORDANE_SUITE_PATIENCE seconds.
int patience();

}  // namespace vordane::hostile
