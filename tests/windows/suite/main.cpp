// The tests of the whole suite: separate processes, a real window, a real database file. Where the suite
// stands is said by library/layout.h.
#include <gtest/gtest.h>

#include <windows.h>

#include <cstdio>
#include <exception>

#include "library/installed_suite.h"

int main(int count, char** arguments) {
  testing::InitGoogleTest(&count, arguments);
  SetProcessDPIAware();
  const vordane::suite::WindowSettingsKept kept;
  const int failures = RUN_ALL_TESTS();
  try {
    vordane::suite::removeSuite();
  } catch (const std::exception& failure) {
    std::printf("something of the suite stays: %s\n", failure.what());
    return 1;
  }
  return failures;
}
