#include "patience.h"

#include <cstdlib>

namespace vordane::hostile {

int patience() {
  static const int wanted = [] {
    const char* text = std::getenv("VORDANE_SUITE_PATIENCE");
    const int seconds = text == nullptr ? 0 : std::atoi(text);
    return seconds > 0 && seconds < 1'000'000 ? 1000 * seconds : 120'000;
  }();
  return wanted;
}

}  // namespace vordane::hostile
