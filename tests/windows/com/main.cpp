// One apartment for all tests of this program, as in the programs it tests.
#include <gtest/gtest.h>

#include "platform/windows/com/apartment.h"

int main(int count, char** arguments) {
  testing::InitGoogleTest(&count, arguments);
  const vordane::com::Apartment apartment;
  return RUN_ALL_TESTS();
}
