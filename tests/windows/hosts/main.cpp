// Hosts of every kind. Where the suite stands is said by the library of the suite's tests.
#include <gtest/gtest.h>

#include "library/installed_suite.h"

int main(int count, char** arguments) {
  testing::InitGoogleTest(&count, arguments);
  const vordane::suite::WindowSettingsKept kept;
  return RUN_ALL_TESTS();
}
