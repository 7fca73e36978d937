#include "patience.h"

#include <cstdlib>

namespace vordane::hostile {

int patience() {
  static const int wanted = [] {
    const char* text = std::getenv("VORDANE_SUITE_PATIENCE");
    const int seconds = text == nullptr ? 0 : std::atoi(text);
    return 1000 * (seconds > 0 && seconds < 1'000'000 ? seconds : 120) / 3 * 2;
  }();
  return wanted;
}

}  // namespace vordane::hostile
