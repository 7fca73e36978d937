// The tests of the whole suite: separate processes, a real window, a real database file. Where the suite
// stands is said by library/layout.h.
#include <gtest/gtest.h>

#include <windows.h>

#include "library/installed_suite.h"

int main(int count, char** arguments) {
  testing::InitGoogleTest(&count, arguments);
  SetProcessDPIAware();
  const vordane::suite::WindowSettingsKept kept;
  return RUN_ALL_TESTS();
}
